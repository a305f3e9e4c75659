#include "Console/TConsole.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <new>

#include "Console/Screen.h"
#include "Console/Signals.h"
#include "Interpreter/Checks.h"
#include "Shared/Interruption.h"
#include "Shared/Ranks.h"
#include "Shared/Say.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

constexpr std::string_view kPrompt = "Kiln>>";

}  // namespace

TConsole::TConsole(std::ostream& out, TManner manner) : out_(out), manner_(manner) {
  interpreter_.SetObserver([](int, double) { return !Interruption::IsRequested(); });
  if (manner.at_terminal) {
    interpreter_.SetScreen([] {
      return TScreen{Screen::Columns(STDOUT_FILENO), Screen::HasUnicode()};
    });
  }
  HaveSaid([this](std::string_view text, TSaying saying) {
    Write(text, out_);
    if (saying == TSaying::kLine) out_ << '\n';
    out_.flush();
  });
}

TConsole::~TConsole() {
  HaveSaid({});
}

bool TConsole::CarryOut(const TTask& task) {
  if (Interruption::IsRequested()) {
    Complain(TInterrupted().what(), std::cerr);
    return false;
  }
  const Signals::TCommandScope command;
  std::string failure;
  try {
    Perform(task);
  } catch (const std::bad_alloc&) {
    failure = "not enough memory";
  } catch (const std::exception& exception) {
    failure = exception.what();
  }
  if (guide_) guide_->End();
  if (failure.empty()) return true;
  out_.flush();
  Complain(failure, std::cerr);
  return false;
}

// Throws what is wrong.
void TConsole::Perform(const TTask& task) {
  if (task.kind == TTask::TKind::kFile) {
    if (guide_) guide_->Begin({});
    interpreter_.RunScript(task.text, [this](int code) { Answer(code); });
    return;
  }
  const std::string_view line = TrimBlanks(task.text);
  if (line.empty() || line.starts_with('#')) return;
  const int code = interpreter_.ExecuteOfScript(line, [this](std::string_view expanded) {
    if (guide_) guide_->Begin(expanded);
  });
  if (code < 0) Fail(interpreter_.GetError(), " (-e ", line, ")");
  Answer(code);
}

void TConsole::Converse(TLineSource& lines) {
  while (TakeLine(lines) != TOutcome::kEnd) {
  }
}

bool TConsole::ConverseUntilFailure(TLineSource& lines) {
  for (;;) {
    const TOutcome outcome = TakeLine(lines);
    if (outcome != TOutcome::kDone) return outcome == TOutcome::kEnd;
  }
}

TConsole::TOutcome TConsole::TakeLine(TLineSource& lines) {
  if (!lines.Next(manner_.is_quiet ? std::string_view() : kPrompt)) {
    if (manner_.at_terminal) out_ << '\n';
    return TOutcome::kEnd;
  }
  try {
    if (!lines.Fault().empty()) return Refuse(lines.Fault());
    line_ = lines.Line();
    if (line_.empty()) return TOutcome::kDone;
    if (EqualNoCase(line_, "quit") || EqualNoCase(line_, "exit")) return TOutcome::kEnd;
    const Signals::TCommandScope command;
    return Obey();
  } catch (const std::bad_alloc&) {
    Complain("not enough memory", out_);
    return TOutcome::kFailed;
  }
}

TConsole::TOutcome TConsole::Refuse(std::string_view fault) {
  if (fault == TInterrupted().what()) {
    out_ << '\n';  // the terminal shows the line that is dropped
    return TOutcome::kDone;
  }
  interpreter_.Refuse(fault);
  Complain(fault, out_);
  return TOutcome::kFailed;
}

TConsole::TOutcome TConsole::Obey() {
  if (line_ == "!!") {
    line_ = remembered_;
    Write(line_, out_);
    out_ << '\n';
  }
  return line_.starts_with('@') ? RunSystemCommand() : Execute();
}

// Carries out the line, says how it went, and remembers it if all went well.
TConsole::TOutcome TConsole::Execute() {
  if (guide_) guide_->Begin(line_);
  const int code = interpreter_.Execute(line_);
  if (guide_) guide_->End();
  if (code < 0) {
    Complain(interpreter_.GetError(), out_);
  } else {
    Answer(code);
  }
  if (guide_) {
    out_.flush();
    guide_->Remark(line_, code);
  }
  if (code < 0) return TOutcome::kFailed;
  remembered_.swap(line_);
  return TOutcome::kDone;
}

// Hands what stands behind the "@" to the command processor.
TConsole::TOutcome TConsole::RunSystemCommand() {
  out_.flush();
  Ranks::OnFirst([this] { [[maybe_unused]] const int outcome = std::system(line_.c_str() + 1); });
  remembered_.swap(line_);
  return TOutcome::kDone;
}

// Says how it went with a command that has not failed.
void TConsole::Answer(int code) {
  if (!guide_) return WriteAnswer(code);
  guide_->MakeRoom([&] {
    WriteAnswer(code);
    out_.flush();
  });
}

void TConsole::WriteAnswer(int code) {
  if (manner_.is_quiet && code == 0) return;
  if (code == 0) {
    out_ << "OK\n";
    return;
  }
  const std::string& result = interpreter_.GetResult();
  if (!manner_.is_quiet) out_ << "Result: ";
  Write(manner_.at_terminal ? result : OneLine(result), out_);
  out_ << '\n';
}

void TConsole::Complain(std::string_view why, std::ostream& out) const {
  std::ostream& place = manner_.is_quiet ? std::cerr : out;
  place << (manner_.has_colour && IsScreen(place) ? "\033[31mError:\033[0m " : "Error: ");
  Write(why, place);
  place << '\n';
}

void TConsole::Write(std::string_view text, std::ostream& out) const {
  if (IsScreen(out)) {
    out << Printable(text);
  } else {
    out << text;
  }
}

bool TConsole::IsScreen(const std::ostream& out) const {
  return &out == &std::cerr ? manner_.error_is_screen : manner_.out_is_screen;
}

}  // namespace kiln
