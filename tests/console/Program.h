#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>

namespace kiln {

// A console program that runs beside us, its standard input and output in our hands. Nothing here
// waits longer than `kPatience`: what takes more is a failure, thrown as std::runtime_error.
class Program {
 public:
  static constexpr std::chrono::seconds kPatience{20};

  // Starts `executable` without arguments in the current directory; it asks for each line of input
  // by writing `prompt`.
  Program(const std::filesystem::path& executable, std::string prompt);

  // Ends the program and whatever it has started, if they still run.
  ~Program();

  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  void Type(std::string line);

  // Returns all that is written until the prompt stands at the end, without that prompt; or, when
  // the program closes its output, all that was left.
  std::string ReadAnswer();

  // Whether the program has closed its output.
  bool AtEnd() const { return at_end_; }

  void CloseInput();

  // Waits for the end of the program and says how it ended: "status 0" is well.
  std::string AwaitEnd();

 private:
  using Clock = std::chrono::steady_clock;

  void ReadSome(std::string& text, Clock::time_point deadline);

  std::string prompt_;
  pid_t pid_ = -1;
  int input_ = -1;
  int output_ = -1;
  bool at_end_ = false;
  bool reaped_ = false;
};

}  // namespace kiln
