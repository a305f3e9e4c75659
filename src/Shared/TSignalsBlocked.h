#pragma once

#include <csignal>

namespace kiln {

// Keeps signals from the calling thread as long as it stands. A thread that is started meanwhile
// never gets one, so that signals go to whoever waits or works in the first thread.
class TSignalsBlocked {
 public:
  TSignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~TSignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

  TSignalsBlocked(const TSignalsBlocked&) = delete;
  TSignalsBlocked& operator=(const TSignalsBlocked&) = delete;

  // The signals that were kept from the thread before.
  const sigset_t& Before() const { return before_; }

 private:
  sigset_t before_ = {};
};

}  // namespace kiln
