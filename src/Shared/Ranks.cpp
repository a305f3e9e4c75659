#include "Shared/Ranks.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace kiln::Ranks {

namespace {

// What a message is for.
enum class TPurpose : std::uint64_t {
  kBytes,
  kAction,
  kResults,
  kBranches,
  kQuestion,
  kMachine,
  kEnd
};

TTransport* carrier = nullptr;  // null for the only rank
bool works_alone = false;       // at something that is this rank's own

constexpr std::uint64_t kNothingNoted = 14695981039346656037U;
std::uint64_t noted = kNothingNoted;  // a hash (FNV-1a) of all answers

class TWorkAlone {
 public:
  TWorkAlone() { works_alone = true; }
  ~TWorkAlone() { works_alone = false; }

  TWorkAlone(const TWorkAlone&) = delete;
  TWorkAlone& operator=(const TWorkAlone&) = delete;
};

// Ends the session on all ranks. The first one, which alone can be heard, has a second to say so.
[[noreturn]] void End() {
  if (IsFirst()) {
    std::cerr
        << "kiln: the ranks do not answer alike any more; has one other options, or too little "
           "memory?\n";
  } else {
    std::this_thread::sleep_for(std::chrono::seconds(1));
  }
  carrier->EndAll();
  std::abort();
}

std::span<std::byte> BytesOf(std::string& text) {
  return std::as_writable_bytes(std::span(text));
}

// What has been thrown, in a form that can be handed to other ranks.
struct TFailure {
  bool is_memory = false;
  std::string message;

  static TFailure Of(const std::exception_ptr& thrown) {
    try {
      std::rethrow_exception(thrown);
    } catch (const std::bad_alloc&) {
      return {true, {}};
    } catch (const std::length_error&) {
      return {true, {}};
    } catch (const std::exception& failure) {
      return {false, failure.what()};
    }
  }
};

// Throws on all ranks what the rank `from` has thrown.
[[noreturn]] void ThrowOnAll(std::size_t from, const std::exception_ptr& own) {
  TFailure failure = from == carrier->Own() ? TFailure::Of(own) : TFailure();
  std::uint64_t size[] = {failure.is_memory, failure.message.size()};
  carrier->Broadcast(std::as_writable_bytes(std::span(size)), from);
  failure.message.resize(size[1]);
  carrier->Broadcast(BytesOf(failure.message), from);
  if (from == carrier->Own()) std::rethrow_exception(own);
  if (size[0] != 0) throw std::bad_alloc();
  throw std::runtime_error(failure.message);
}

// Waits until all ranks are here, for the same purpose and after the same answers. When something
// has been thrown on some of them, throws that of the first of these on all.
void Meet(TPurpose purpose, std::size_t size, const std::exception_ptr& thrown = {}) {
  const std::uint64_t aim = static_cast<std::uint64_t>(purpose) + 8 * std::uint64_t{size};
  const std::uint64_t ranks = carrier->Count();
  // The largest complement is that of the smallest value.
  std::uint64_t values[] = {aim, ~aim, noted, ~noted, thrown ? ranks - carrier->Own() : 0};
  carrier->Maximise(values);
  if (values[0] != ~values[1] || values[2] != ~values[3]) End();
  if (values[4] != 0) ThrowOnAll(ranks - values[4], thrown);
}

// Carries out an action of this rank's own. Returns what it has thrown.
template <typename TAction>
std::exception_ptr Attempt(const TAction& action) {
  const TWorkAlone alone;
  try {
    action();
  } catch (...) {
    return std::current_exception();
  }
  return nullptr;
}

}  // namespace

void Join(TTransport& transport) {
  if (transport.Count() > 1) carrier = &transport;
}

bool AreSeveral() {
  return carrier && !works_alone;
}

bool IsFirst() {
  return !carrier || carrier->Own() == 0;
}

void Part() {
  if (AreSeveral()) Meet(TPurpose::kEnd, 0);
}

void Note(std::string_view answer) {
  constexpr std::uint64_t kPrime = 1099511628211U;
  if (!AreSeveral()) return;
  for (const char c : answer) noted = (noted ^ static_cast<unsigned char>(c)) * kPrime;
  noted = (noted ^ answer.size()) * kPrime;
}

void ShareBytes(std::span<std::byte> bytes) {
  if (!AreSeveral()) return;
  Meet(TPurpose::kBytes, bytes.size());
  carrier->Broadcast(bytes, 0);
}

bool OnAny(bool is_so) {
  if (!AreSeveral()) return is_so;
  Meet(TPurpose::kQuestion, 0);
  std::uint64_t values[] = {is_so};
  carrier->Maximise(values);
  return values[0] != 0;
}

void AddUpOnMachine(std::span<std::uint64_t> values) {
  if (!AreSeveral()) return;
  Meet(TPurpose::kMachine, values.size());
  carrier->AddUpOnMachine(values);
}

void ShareText(std::string& text) {
  if (!AreSeveral()) return;
  text.resize(Shared(text.size()));
  ShareBytes(BytesOf(text));
}

void internal::CarryOutOnFirst(const std::function<void()>& action) {
  Meet(TPurpose::kAction, 0, IsFirst() ? Attempt(action) : nullptr);
}

void internal::CarryOutShare(std::span<std::byte> results, std::size_t size, std::size_t grain,
                             const std::function<void(std::size_t, std::size_t)>& carry_out) {
  const std::size_t ranks = carrier->Count();
  const std::size_t own = carrier->Own();
  const std::size_t count = results.size() / size;
  const std::size_t grains = (count + grain - 1) / grain;
  const auto end_of = [&](std::size_t rank) {
    return std::min(grains * (rank + 1) / ranks * grain, count);
  };
  std::vector<std::size_t> ends(ranks);
  for (std::size_t rank = 0; rank < ranks; ++rank) ends[rank] = end_of(rank) * size;
  const std::exception_ptr thrown =
      Attempt([&] { carry_out(own == 0 ? 0 : end_of(own - 1), end_of(own)); });
  Meet(TPurpose::kResults, results.size(), thrown);
  carrier->Gather(results, ends);
}

TSumTree::TSumTree(std::size_t leaves, double operations) : branches_(1), first_(0), end_(leaves) {
  if (!AreSeveral() || operations < kOperationsToShare) return;
  branches_ = std::min(std::bit_floor(carrier->Count()), leaves);
  first_ = std::min(leaves / branches_ * carrier->Own(), leaves);
  end_ = std::min(first_ + leaves / branches_, leaves);
}

// Each rank adds the sums of its neighbour to its own, then each of a pair those of a neighbouring
// pair, and so on. The order of two summands makes no difference, so all come to the same sums.
void TSumTree::AddUp(const std::function<std::span<double>()>& add_up,
                     std::span<double> others) const {
  std::span<double> sums;
  if (branches_ == 1) {
    add_up();
    return;
  }
  const std::exception_ptr thrown = Attempt([&] { sums = add_up(); });
  Meet(TPurpose::kBranches, others.size(), thrown);
  const std::size_t own = carrier->Own();
  for (std::size_t step = 1; step < branches_ && own < branches_; step *= 2) {
    carrier->Swap(own ^ step, sums, others);
    std::ranges::transform(sums, others, sums.begin(), std::plus());
  }
  if (branches_ < carrier->Count()) carrier->Broadcast(std::as_writable_bytes(sums), 0);
}

}  // namespace kiln::Ranks
