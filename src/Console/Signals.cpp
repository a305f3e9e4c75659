#include "Console/Signals.h"

#include <atomic>
#include <csignal>
#include <initializer_list>

#include "FileHandler/Syntax/SafeFile.h"
#include "Shared/Interruption.h"

namespace kiln::Signals {

namespace {

std::atomic<bool> command_runs = false;

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

// Ends the program in the way of this signal.
void End(int signal) {
  FileTools::RemoveTemporary();
  Handle(signal, SIG_DFL);
  raise(signal);
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

TCommandScope::TCommandScope() {
  Interruption::Forget();
  command_runs = true;
}

TCommandScope::~TCommandScope() {
  command_runs = false;
}

}  // namespace kiln::Signals
