#pragma once

#include <atomic>
#include <exception>

// The wish of whoever sits at the terminal that the command at work may end. A signal makes it;
// loops that may take long ask for it between two steps and end in good order.
namespace kiln::Interruption {

inline std::atomic<bool> requested = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

inline void Request() noexcept {
  requested = true;
}

inline void Forget() noexcept {
  requested = false;
}

inline bool IsRequested() noexcept {
  return requested.load(std::memory_order_relaxed);
}

}  // namespace kiln::Interruption

namespace kiln {

// Thrown where a command waits for something that may never come, or has not come to an end, once
// that is requested.
class TInterrupted : public std::exception {
 public:
  const char* what() const noexcept override { return "interrupted"; }
};

namespace Interruption {

// For commands that have changed nothing yet.
inline void Check() {
  if (IsRequested()) throw TInterrupted();
}

}  // namespace Interruption

}  // namespace kiln
