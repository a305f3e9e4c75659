#include "Console/TGuide.h"

#include <unistd.h>

#include <iostream>

#include "Console/Hints.h"
#include "Shared/Interruption.h"
#include "Shared/Say.h"
#include "Shared/Text.h"

namespace kiln {

TGuide::TGuide(TInterpreter& interpreter, std::ostream& out)
    : interpreter_(interpreter), progress_(STDERR_FILENO) {
  interpreter_.SetObserver([this](int step, double error) {
    progress_.Step(step + 1, error);
    return !Interruption::IsRequested();
  });
  interpreter_.SetScriptObserver(
      [this](const std::string& path, std::int64_t number, std::string_view line) {
        progress_.EnterLine(path, number, line);
      });
  HaveSaid([this, &out](std::string_view text, TSaying saying) {
    if (saying == TSaying::kPassing) return;
    progress_.Interrupt([&] { out << Printable(text) << '\n' << std::flush; });
  });
}

TGuide::~TGuide() {
  HaveSaid({});
}

void TGuide::Begin(std::string_view line) {
  hint_ = HintOn(interpreter_, line);
  progress_.Begin(line);
}

void TGuide::End() {
  progress_.End();
}

void TGuide::Remark(std::string_view line, int code) {
  if (code >= 0 && hint_.empty()) hint_ = HintBehind(interpreter_, line);
  // Strict reading has made an error of it.
  if (hint_.empty() || interpreter_.GetError() == hint_) return;
  std::cerr << Printable(hint_) << std::endl;
}

}  // namespace kiln
