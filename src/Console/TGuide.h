#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <string_view>

#include "Console/TProgress.h"
#include "Interpreter/TInterpreter.h"

namespace kiln {

// Accompanies the commands of a person at a terminal: shows their progress, and remarks on what the
// person may not have meant. All of it goes to the standard error.
class TGuide {
 public:
  // Both must outlive the guide. Remarks of the library on `out` make room for the progress, and
  // passing ones, which the progress says better, are dropped.
  TGuide(TInterpreter& interpreter, std::ostream& out);
  ~TGuide();

  TGuide(const TGuide&) = delete;
  TGuide& operator=(const TGuide&) = delete;

  // To be called before a line is carried out, afterwards, and, with its code, when it has been
  // answered.
  void Begin(std::string_view line);
  void End();
  void Remark(std::string_view line, int code);

  // Calls `write` while nothing of the progress is to be seen.
  void MakeRoom(const std::function<void()>& write) { progress_.Interrupt(write); }

 private:
  TInterpreter& interpreter_;
  TProgress progress_;
  std::string hint_;  // on the line that is carried out
};

}  // namespace kiln
