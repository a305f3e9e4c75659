#include "Shared/TTeam.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <exception>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>

#include "Shared/TSignalsBlocked.h"

namespace kiln {

namespace {

// Waking a worker and waiting for its last piece take up to 50 microseconds, in which a core makes
// about so many additions and multiplications.
constexpr double kOperationsToShare = 1e5;

// Whoever waits looks so many times, for some 50 microseconds, before it goes to sleep. The times
// between two loops of a training are shorter.
constexpr int kLooks = 2000;

}  // namespace

// One call of Run. It stands on the stack of the caller.
struct TTeamLoop {
  TTeamLoop(const TTeam::TWork& asked, std::size_t workers) : work(asked), places(workers) {}

  TTeam::TWork work;
  std::size_t places;
  alignas(TTeam::kApart) std::atomic<std::size_t> next = 0;  // the piece to be taken
  alignas(TTeam::kApart) std::mutex mutex;
  std::size_t failed = 0;  // the lowest piece that has thrown
  std::exception_ptr failure;

  void CarryOut(std::size_t place) {
    for (;;) {
      const std::size_t number = next.fetch_add(1, std::memory_order_relaxed);
      if (number >= work.pieces) return;
      try {
        work.carry_out(work.context, number, place);
      } catch (...) {
        Fail(number);
      }
    }
  }

  // Pieces are taken in order, so those before a piece that fails are at work or done: none needs
  // to be taken any more.
  void Fail(std::size_t number) {
    next = work.pieces;
    const std::lock_guard lock(mutex);
    if (failure && number > failed) return;
    failed = number;
    failure = std::current_exception();
  }
};

namespace {

// Everything that workers look at lives as long as the process, since they are asleep when it ends.
// None of it is lost when a fork leaves them behind: a loop waits only for workers that have
// entered it.
std::atomic<std::size_t> workers_wanted = 1;
std::atomic<bool> is_busy = false;  // a loop runs
std::size_t hired = 0;              // threads; REQUIRES: is_busy, set by the caller
std::size_t can_be_hired = TTeam::kMaxWorkers;

struct alignas(TTeam::kApart) TPlace {
  std::atomic<std::uint32_t> calls = 0;
};
std::array<TPlace, TTeam::kMaxWorkers> places;

// Through which workers enter the loop: how many are inside, and whether it is open.
constexpr std::uint32_t kOpen = std::uint32_t{1} << 31;
alignas(TTeam::kApart) std::atomic<std::uint32_t> gate = 0;
TTeamLoop* loop = nullptr;  // behind the gate

// Tells the processor that a thread only waits. Giving the core away instead would mean to get it
// back too late, where other programs are at work.
void Pause() {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#elif defined(__aarch64__)
  asm volatile("yield");
#endif
}

// Waits until a value is another than `old`, and returns it.
std::uint32_t WaitForChange(const std::atomic<std::uint32_t>& value, std::uint32_t old) {
  for (int look = 0; look < kLooks; ++look) {
    const std::uint32_t now = value.load(std::memory_order_acquire);
    if (now != old) return now;
    Pause();
  }
  value.wait(old, std::memory_order_acquire);
  return value.load(std::memory_order_acquire);
}

bool Enter() {
  std::uint32_t now = gate.load(std::memory_order_relaxed);
  while (now & kOpen) {
    if (gate.compare_exchange_weak(now, now + 1, std::memory_order_acquire,
                                   std::memory_order_relaxed)) {
      return true;
    }
  }
  return false;
}

void Leave() {
  if (gate.fetch_sub(1) == 1) gate.notify_one();
}

// Nobody enters any more; waits for those inside.
void Close() {
  std::uint32_t now = gate.fetch_and(~kOpen, std::memory_order_acq_rel) & ~kOpen;
  while (now != 0) now = WaitForChange(gate, now);
}

[[noreturn]] void Serve(std::size_t place) {
  std::uint32_t calls = 0;
  for (;;) {
    calls = WaitForChange(places[place].calls, calls);
    if (!Enter()) continue;
    if (place < loop->places) loop->CarryOut(place);
    Leave();
  }
}

// Hires up to so many threads; fewer where the system gives no more.
void Hire(std::size_t threads) {
  if (hired >= std::min(threads, can_be_hired)) return;
  const TSignalsBlocked blocked;
  try {
    while (hired < std::min(threads, can_be_hired)) {
      std::thread(Serve, hired + 1).detach();
      ++hired;
    }
  } catch (const std::system_error&) {
    can_be_hired = hired;
  } catch (const std::bad_alloc&) {
    can_be_hired = hired;
  }
}

}  // namespace

void TTeam::SetWorkers(std::size_t workers) {
  workers_wanted = workers;
}

std::size_t TTeam::Workers() {
  return workers_wanted.load(std::memory_order_relaxed);
}

std::size_t TTeam::WorkersFor(std::size_t pieces, double operations) {
  const std::size_t most = std::min(pieces, Workers());
  const double worth = static_cast<double>(pieces) * operations / kOperationsToShare;
  if (worth >= static_cast<double>(most)) return std::max<std::size_t>(most, 1);
  return std::max<std::size_t>(static_cast<std::size_t>(worth), 1);
}

void TTeam::Run(const TWork& work, std::size_t workers) {
  workers = std::min(workers, work.pieces);
  if (workers < 2 || is_busy.exchange(true, std::memory_order_acquire)) {
    for (std::size_t number = 0; number < work.pieces; ++number) {
      work.carry_out(work.context, number, 0);
    }
    return;
  }
  TTeamLoop present(work, workers);
  Hire(workers - 1);
  loop = &present;
  gate.store(kOpen, std::memory_order_release);
  for (std::size_t place = 1; place < std::min(workers, hired + 1); ++place) {
    places[place].calls.fetch_add(1);
    places[place].calls.notify_one();
  }
  present.CarryOut(0);
  Close();
  is_busy.store(false, std::memory_order_release);
  if (present.failure) std::rethrow_exception(present.failure);
}

}  // namespace kiln
