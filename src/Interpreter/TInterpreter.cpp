#include "Interpreter/TInterpreter.h"

#include <fcntl.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <new>
#include <stdexcept>
#include <utility>

#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/LineCheck.h"
#include "Interpreter/TLineReader.h"
#include "Shared/Interruption.h"
#include "Shared/Ranks.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

constexpr std::size_t kDeepestScript = 64;

// The codes of Execute.
constexpr int kFailed = -1;
constexpr int kSucceeded = 0;
constexpr int kAnswered = 1;

// Keeps the path of a script in the list of running scripts for as long as the script runs.
class TRunningScript {
 public:
  TRunningScript(std::vector<std::string>& running, const std::string& path) : running_(running) {
    if (running.size() == kDeepestScript) Fail("scripts nested too deeply");
    running.push_back(path);
  }
  ~TRunningScript() { running_.pop_back(); }

  TRunningScript(const TRunningScript&) = delete;
  TRunningScript& operator=(const TRunningScript&) = delete;

 private:
  std::vector<std::string>& running_;
};

// Whether two paths lead to the same existing file.
bool AreSameFile(const std::string& a, const std::string& b) {
  std::error_code not_there;
  return std::filesystem::equivalent(a, b, not_there);
}

// Why a text cannot be one line; null when it can.
const char* FaultIn(std::string_view text) {
  if (text.find('\n') != text.npos) return "line holds a line end";
  if (text.find('\0') != text.npos) return "line holds a null character";
  return nullptr;
}

// What strict reading demands of a line.
void RequireSound(const TCommand& command, const TForm& form, std::string_view line) {
  if (const std::optional<TOddity> oddity = FindOddity(command, form, line)) Fail(oddity->fault);
}

}  // namespace

int TInterpreter::Execute(std::string_view text) {
  if (const char* const fault = FaultIn(text)) {
    Refuse(fault);
    error_message_ = fault;
    return kFailed;
  }
  const TCommandLine line(text);
  const int code = Answer(line);
  Ranks::Note(code < 0 ? error_message_ : code > 0 ? result_message_ : std::string_view());
  if (transcript_.IsOpen() && !EqualNoCase(line.CommandWord(), "log")) Record(text, code);
  return code;
}

int TInterpreter::ExecuteOfScript(std::string_view text,
                                  const std::function<void(std::string_view line)>& seen) {
  std::string room;
  try {
    text = definitions_.Expanded(text, room);
  } catch (const TCommandFailure& failure) {
    error_message_ = failure.what();
    return kFailed;
  }
  seen(text);
  return Execute(text);
}

int TInterpreter::Answer(const TCommandLine& line) {
  try {
    const TCommand* const command = FindCommand(line.CommandWord());
    if (!command) Fail("Unknown command");
    const TForm& form = command->choose(*command, *this, line);
    if (is_strict_ || command->is_strict) RequireSound(*command, form, line.Text());
    TAnswer answer = form.handler(*this, TCommandLine(line.Text(), form));
    if (!answer) return kSucceeded;
    result_message_ = std::move(*answer);
    return kAnswered;
  } catch (const std::bad_alloc&) {
    error_message_ = "not enough memory";
  } catch (const std::length_error&) {
    error_message_ = "not enough memory";
  } catch (const std::exception& failure) {
    error_message_ = failure.what();
  }
  return kFailed;
}

void TInterpreter::Record(std::string_view line, int code) {
  transcript_.Write(line);
  if (code < 0) transcript_.Write("Error: ", GetError());
  if (code > 0) transcript_.Write("#Result: ", OneLine(GetResult()));
}

void TInterpreter::StartTranscript(const std::string& path) {
  const auto is_same = [&](const std::string& script) { return AreSameFile(script, path); };
  Ranks::OnFirst([&] {
    if (std::ranges::any_of(running_scripts_, is_same)) Fail("file ", path, " is being run");
    transcript_.Open(path);
  });
}

void TInterpreter::StopTranscript() {
  Ranks::OnFirst([this] { transcript_.Close(); });
}

TAnswer TInterpreter::RunScript(const std::string& path,
                                const std::function<void(int code)>& answered) {
  // Every command of a script that is the open transcript would make the script longer.
  if (Ranks::Shared(transcript_.Is(path))) Fail("file ", path, " is the open transcript");
  const TRunningScript running(running_scripts_, path);
  TDescriptor script;
  Ranks::OnFirst([&] {
    script = TDescriptor::Open(path, O_RDONLY);
    if (!script.IsOpen()) Fail("cannot open file ", path);
  });
  TLineReader reader(script.Number());
  const auto fail = [&](std::string_view why) {
    Fail("line ", std::to_string(reader.Number()), " of file ", path, " Error: ", why);
  };
  const std::function<void(std::string_view)> seen = [&](std::string_view line) {
    if (script_observer_) script_observer_(path, reader.Number(), line);
  };
  int code = kSucceeded;
  while (reader.Next()) {
    if (Interruption::IsRequested()) fail(TInterrupted().what());
    if (!reader.Fault().empty()) fail(reader.Fault());
    if (reader.Line().empty() || reader.Line().starts_with('#')) continue;
    code = ExecuteOfScript(reader.Line(), seen);
    if (code < 0) fail(GetError());
    if (answered) answered(code);
  }
  if (reader.HasFailed()) Fail("cannot read file ", path);
  return code == kAnswered ? TAnswer(GetResult()) : std::nullopt;
}

}  // namespace kiln
