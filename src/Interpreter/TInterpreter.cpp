#include "Interpreter/TInterpreter.h"

#include <exception>
#include <new>
#include <stdexcept>
#include <utility>

#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/LineReader.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

constexpr int kDeepestScript = 64;
constexpr std::size_t kLongestScriptLine = 1023;
constexpr int kFailed = -1;

constexpr TCommand kCommands[] = {
    {"create", commands::Create},
    {"save", commands::Save},
    {"load", commands::Load},
    {"recall", commands::Recall},
    {"map", commands::Map},
    {"label", commands::Label},
    {"purge", commands::Purge},
    {"train", commands::Train},
    {"gettrained", commands::GetTrained},
    {"destroy", commands::Destroy},
    {"copy", commands::Copy},
    {"log", commands::Log},
    {"run", commands::Run},
    {"query", commands::Query},
    {"append", commands::Append},
    {"resetdata", commands::ResetData},
    {"purgedata", commands::PurgeData},
    {"shuffle", commands::Shuffle},
    {"normalise", commands::Normalise},
    {"denormalise", commands::Denormalise},
    {"labeltarn", commands::LabelTarn},
    {"retarn", commands::RETarn},
    {"ritarn", commands::RITarn},
};

// Counts a script for as long as it runs.
class ScriptLevel {
 public:
  explicit ScriptLevel(int& level) : level_(level) {
    if (level == kDeepestScript) Fail("scripts nested too deeply");
    ++level_;
  }
  ~ScriptLevel() { --level_; }

  ScriptLevel(const ScriptLevel&) = delete;
  ScriptLevel& operator=(const ScriptLevel&) = delete;

 private:
  int& level_;
};

}  // namespace

int TInterpreter::Execute(std::string_view text) {
  const CommandLine line(text);
  const int code = Answer(line);
  if (transcript_.is_open() && !EqualNoCase(line.CommandWord(), "log")) Record(text, code);
  return code;
}

int TInterpreter::Answer(const CommandLine& line) {
  try {
    return Dispatch(kCommands, line.CommandWord(), "Unknown command", *this, line);
  } catch (const std::bad_alloc&) {
    SetError("not enough memory");
  } catch (const std::length_error&) {
    SetError("not enough memory");
  } catch (const std::exception& failure) {
    SetError(failure.what());
  }
  return kFailed;
}

void TInterpreter::Record(std::string_view line, int code) {
  transcript_ << line << std::endl;
  if (code < 0) transcript_ << "Error: " << GetError() << std::endl;
  if (code > 0) transcript_ << "#Result: " << GetResult() << std::endl;
}

void TInterpreter::StartTranscript(const std::string& path) {
  std::ofstream transcript(path);
  if (!transcript) Fail("cannot open file ", path);
  transcript_ = std::move(transcript);
}

int TInterpreter::RunScript(const std::string& path) {
  const ScriptLevel level(script_level_);
  std::ifstream script(path);
  if (!script) Fail("cannot open file ", path);
  LineReader reader(script, kLongestScriptLine);
  const auto fail = [&](std::string_view why) {
    Fail("line ", std::to_string(reader.Number()), " of file ", path, " Error: ", why);
  };
  int code = kDone;
  while (reader.Next()) {
    if (!reader.Fault().empty()) fail(reader.Fault());
    if (reader.Line().empty() || reader.Line().starts_with('#')) continue;
    code = Execute(reader.Line());
    if (code < 0) fail(GetError());
  }
  if (script.bad()) Fail("cannot read file ", path);
  return code;
}

}  // namespace kiln
