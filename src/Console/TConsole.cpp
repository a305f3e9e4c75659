#include "Console/TConsole.h"

#include <cstdlib>
#include <new>

#include "Console/Signals.h"
#include "Shared/Interruption.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

constexpr char kPrompt[] = "Kiln>>";

}  // namespace

TConsole::TConsole(int input, std::ostream& out) : input_(input), out_(out) {
  interpreter_.SetObserver([](int, double) { return !Interruption::IsRequested(); });
}

void TConsole::Converse() {
  while (out_ << kPrompt << std::flush && input_.Next()) {
    try {
      if (!ReadLine()) continue;
      if (EqualNoCase(line_, "quit") || EqualNoCase(line_, "exit")) return;
      const Signals::TCommandScope command;
      Obey();
    } catch (const std::bad_alloc&) {
      out_ << "Error: not enough memory\n";
    }
  }
}

// Takes the line that has been read. Returns whether there is something to do.
bool TConsole::ReadLine() {
  const std::string_view fault = input_.Fault();
  if (fault == TInterrupted().what()) {
    out_ << '\n';  // the terminal shows the line that is dropped
    return false;
  }
  if (!fault.empty()) {
    interpreter_.Refuse(fault);
    out_ << "Error: " << fault << '\n';
    return false;
  }
  line_ = input_.Line();
  return !line_.empty();
}

void TConsole::Obey() {
  if (line_ == "!!") {
    line_ = remembered_;
    out_ << line_ << '\n';
  }
  if (line_.starts_with('@')) {
    RunSystemCommand();
  } else {
    Answer();
  }
}

// Carries out the line, says how it went, and remembers it if all went well.
void TConsole::Answer() {
  const int code = interpreter_.Execute(line_);
  if (code < 0) {
    out_ << "Error: " << interpreter_.GetError() << '\n';
    return;
  }
  if (code > 0) {
    out_ << "Result: " << OneLine(interpreter_.GetResult()) << '\n';
  } else {
    out_ << "OK\n";
  }
  remembered_.swap(line_);
}

// Hands what stands behind the "@" to the command processor.
void TConsole::RunSystemCommand() {
  out_.flush();
  [[maybe_unused]] const int outcome = std::system(line_.c_str() + 1);
  remembered_.swap(line_);
}

}  // namespace kiln
