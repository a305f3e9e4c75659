#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "Shared/TTransport.h"

// The processes, on one machine or on many, that hold one session together. Each rank carries out
// the same commands on objects of its own, which stay the same everywhere, since the same commands
// make the same objects. Whatever comes from outside (lines, files, the clock) the first rank takes
// and hands on; whatever goes outside (files, the transcript, answers) it alone writes. Large work
// is shared out, and its results go to all.
//
// A program is the first rank and the only one unless it joins others. All ranks call these
// functions in the same order, from the main thread. When they find that they no longer do the
// same, because one has run out of memory or runs another program, the session ends on all of them.
namespace kiln::Ranks {

// Talks to the others by `transport` from now on; it must outlive all other calls.
void Join(TTransport& transport);

// Whether there are others to talk to. Not so within OnFirst and while a share is carried out.
bool AreSeveral();

// Whether this is the rank that sees the outside.
bool IsFirst();

// Waits until all ranks have come to their end. One that ends before others ends the session.
void Part();

// Takes note of an answer. With the next message the ranks compare what they have noted.
void Note(std::string_view answer);

namespace internal {

void CarryOutOnFirst(const std::function<void()>& action);
void CarryOutShare(std::span<std::byte> results, std::size_t size, std::size_t grain,
                   const std::function<void(std::size_t first, std::size_t end)>& carry_out);

}  // namespace internal

// Gives all ranks the bytes that the first one has, as many as they have room for.
void ShareBytes(std::span<std::byte> bytes);

// The value that the first rank has.
template <typename TValue>
TValue Shared(TValue value) {
  static_assert(std::is_trivially_copyable_v<TValue>);
  if (AreSeveral()) ShareBytes(std::as_writable_bytes(std::span(&value, 1)));
  return value;
}

// Whether something is so on any rank.
bool OnAny(bool is_so);

// Gives each rank the sums of the values that those on its machine have, at each place by itself.
void AddUpOnMachine(std::span<std::uint64_t> values);

// Gives all ranks the text that the first one has.
void ShareText(std::string& text);

// Carries out an action on the first rank alone. What it throws is thrown on all, with the same
// message.
template <typename TAction>
void OnFirst(const TAction& action) {
  if (!AreSeveral()) return action();
  internal::CarryOutOnFirst(action);
}

// The additions and multiplications from which on work is worth messages, which take up to a
// millisecond.
inline constexpr double kOperationsToShare = 2e6;

// Makes all results: carry_out(first, end) makes those with numbers from `first` to before `end`,
// of about so many additions and multiplications each. Where there are several ranks and the work
// is worth it, each makes its share, which begins at a multiple of `grain`. What carry_out throws
// on one rank is thrown on all, with the same message. Nothing but the results may tell of the
// work.
template <typename TResult, typename TCarryOut>
void Collect(std::span<TResult> results, double operations, std::size_t grain,
             const TCarryOut& carry_out) {
  static_assert(std::is_trivially_copyable_v<TResult>);
  const bool is_worth_it = static_cast<double>(results.size()) * operations >= kOperationsToShare;
  if (!is_worth_it || !AreSeveral()) return carry_out(std::size_t{0}, results.size());
  internal::CarryOutShare(std::as_writable_bytes(results), sizeof(TResult), grain, carry_out);
}

// A binary tree of sums, of which each rank adds up a branch where there are several and the work,
// in additions and multiplications for all leaves, is worth it.
class TSumTree {
 public:
  // REQUIRES: `leaves` is a power of two.
  TSumTree(std::size_t leaves, double operations);

  // The branch of this rank: the leaves from First() to before End(). There are none for a rank
  // that is left over, as their number need be no power of two.
  std::size_t First() const { return first_; }
  std::size_t End() const { return end_; }

  // Carries out `add_up`, which returns the sums of the branch, or zeros where it has no leaves,
  // and puts those of the whole tree in their place. What add_up throws on one rank is thrown on
  // all, with the same message. `others` has room for as many numbers.
  void AddUp(const std::function<std::span<double>()>& add_up, std::span<double> others) const;

 private:
  std::size_t branches_;  // 1 where nothing is shared
  std::size_t first_;
  std::size_t end_;
};

}  // namespace kiln::Ranks
