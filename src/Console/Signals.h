#pragma once

// How the program meets the signals of the operating system.
namespace kiln::Signals {

// To be called once, when the program starts. From then on writing to a pipe that nobody reads, or
// beyond a quota, is a failed write; and a signal that ends the program has it remove the file that
// it was about to save first.
void Install();

// From now on SIGINT does not end the program at once. While a command runs the first one requests
// an interruption and the second one ends the program; otherwise it requests an interruption, which
// ends the reading of a line.
void CatchInterrupts();

// Stands for a person who edits a line at the terminal of the standard input, whose modes are not
// the usual ones meanwhile. A signal that ends or stops the program gives it these back first.
class TEditScope {
 public:
  TEditScope();
  ~TEditScope();

  TEditScope(const TEditScope&) = delete;
  TEditScope& operator=(const TEditScope&) = delete;
};

// What has happened to the screen while a line was edited.
enum class TScreenChange {
  kNone,
  kResized,  // the window has another size
  kResumed,  // the program had been stopped, and others have used the screen
};

// The latest change since the last call.
TScreenChange TakeScreenChange();

// Waits until there is a key to be read, or until a change or an interruption has come, which may
// have been before the wait.
void WaitForKey(int descriptor);

// Stands for a command that runs. Earlier requests of an interruption are forgotten.
class TCommandScope {
 public:
  TCommandScope();
  ~TCommandScope();

  TCommandScope(const TCommandScope&) = delete;
  TCommandScope& operator=(const TCommandScope&) = delete;
};

}  // namespace kiln::Signals
