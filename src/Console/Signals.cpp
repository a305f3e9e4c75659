#include "Console/Signals.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <initializer_list>

#include "FileHandler/Syntax/SafeFile.h"
#include "Shared/Interruption.h"
#include "Shared/TSignalsBlocked.h"

namespace kiln::Signals {

namespace {

std::atomic<bool> command_runs = false;

std::atomic<bool> is_editing = false;
termios usual_modes;  // of the terminal, while a line is edited
std::atomic<TScreenChange> screen_change = TScreenChange::kNone;
static_assert(std::atomic<TScreenChange>::is_always_lock_free, "signal handlers set it");

void Handle(int signal, void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  sigaction(signal, &action, nullptr);  // without SA_RESTART: a signal ends waiting
}

// A process that was started with a signal ignored, as by nohup, goes on ignoring it.
void HandleUnlessIgnored(int signal, void (*handler)(int)) {
  struct sigaction present = {};
  if (sigaction(signal, nullptr, &present) == 0 && present.sa_handler != SIG_IGN) {
    Handle(signal, handler);
  }
}

// Gives the terminal its usual modes back, unless another program has it by now.
void ReleaseTerminal() {
  if (!is_editing || tcgetpgrp(STDIN_FILENO) != getpgrp()) return;
  tcsetattr(STDIN_FILENO, TCSANOW, &usual_modes);
}

// Ends the program in the way of this signal.
void End(int signal) {
  FileTools::RemoveTemporary();
  ReleaseTerminal();
  Handle(signal, SIG_DFL);
  raise(signal);
}

// Stops the program in the way of this signal until it is told to go on.
void Stop(int signal) {
  const int error = errno;
  ReleaseTerminal();
  Handle(signal, SIG_DFL);
  raise(signal);
  sigset_t this_one;
  sigemptyset(&this_one);
  sigaddset(&this_one, signal);
  pthread_sigmask(SIG_UNBLOCK, &this_one, nullptr);  // it takes effect here
  Handle(signal, Stop);
  errno = error;
}

void InterruptOrEnd(int signal) {
  if (command_runs && Interruption::IsRequested()) End(signal);
  Interruption::Request();
}

}  // namespace

void Install() {
  // Not SIG_IGN, which programs that we start would inherit.
  for (const int signal : {SIGPIPE, SIGXFSZ}) Handle(signal, [](int) {});
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGALRM, SIGUSR1, SIGUSR2, SIGXCPU}) {
    HandleUnlessIgnored(signal, End);
  }
}

void CatchInterrupts() {
  HandleUnlessIgnored(SIGINT, InterruptOrEnd);
}

TEditScope::TEditScope() {
  is_editing = tcgetattr(STDIN_FILENO, &usual_modes) == 0;
  screen_change = TScreenChange::kNone;
  HandleUnlessIgnored(SIGTSTP, Stop);
  Handle(SIGCONT, [](int) { screen_change = TScreenChange::kResumed; });
  Handle(SIGWINCH, [](int) { screen_change = TScreenChange::kResized; });
}

TEditScope::~TEditScope() {
  is_editing = false;
  HandleUnlessIgnored(SIGTSTP, SIG_DFL);
  Handle(SIGCONT, SIG_DFL);
  Handle(SIGWINCH, SIG_DFL);
}

TScreenChange TakeScreenChange() {
  return screen_change.exchange(TScreenChange::kNone);
}

void WaitForKey(int descriptor) {
  // Signals come during the wait or before the look, and not in between.
  const TSignalsBlocked blocked;
  if (screen_change != TScreenChange::kNone || Interruption::IsRequested()) return;
  pollfd key = {descriptor, POLLIN, 0};
  ppoll(&key, 1, nullptr, &blocked.Before());
}

TCommandScope::TCommandScope() {
  Interruption::Forget();
  command_runs = true;
}

TCommandScope::~TCommandScope() {
  command_runs = false;
}

}  // namespace kiln::Signals
