// Plays a recorded conversation against a console program and compares what it answers.
//
//   conversation_runner PROGRAM DATA_DIRECTORY CONVERSATION
//
// README.md in this folder describes the conversation format. The runner types a command only when
// the prompt stands there, as a person or a driving program does, and compares every line.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "Program.h"

namespace {

using kiln::Program;
namespace fs = std::filesystem;

constexpr std::string_view kPrompt = "Kiln>>";

struct Line {
  int number = 0;  // in the conversation file
  std::string text;
};

struct Step {
  enum class Kind { kType, kWriteFile, kShowFile };
  Kind kind;
  Line subject;             // the command, or the name of the file
  std::vector<Line> lines;  // the answer, or the content of the file
};

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path.string());
  return {std::istreambuf_iterator<char>(in), {}};
}

void WriteFile(const fs::path& path, const std::vector<Line>& lines) {
  std::ofstream out(path, std::ios::binary);
  for (const Line& line : lines) out << line.text << '\n';
  if (!out.flush()) throw std::runtime_error("cannot write " + path.string());
}

std::string Replace(std::string text, std::string_view token, std::string_view value) {
  for (std::size_t at = 0; (at = text.find(token, at)) != std::string::npos; at += value.size())
    text.replace(at, token.size(), value);
  return text;
}

// Reads a conversation file into steps, with @DATA@ replaced by the directory `data`.
class ConversationReader {
 public:
  ConversationReader(const fs::path& path, std::string_view data) {
    for (const std::string& line : SplitLines(Replace(ReadFile(path), "@DATA@", data)))
      lines_.push_back({static_cast<int>(lines_.size()) + 1, line});
  }

  std::vector<Step> Read() {
    while (next_ < lines_.size()) ReadStep();
    for (Step& step : steps_)
      if (step.kind == Step::Kind::kType) DropBlankEnd(step.lines);
    return std::move(steps_);
  }

 private:
  void ReadStep() {
    const Line& line = lines_[next_++];
    if (line.text.starts_with(kPrompt)) {
      answering_ = steps_.size();
      steps_.push_back({Step::Kind::kType, {line.number, line.text.substr(kPrompt.size())}, {}});
    } else if (line.text.starts_with("#file ")) {
      ReadBlock(Step::Kind::kWriteFile, {line.number, line.text.substr(6)});
    } else if (line.text.starts_with("#show ")) {
      ReadBlock(Step::Kind::kShowFile, {line.number, line.text.substr(6)});
    } else if (line.text.starts_with('#')) {
      return;
    } else if (answering_) {
      steps_[*answering_].lines.push_back(line);
    } else if (!line.text.empty()) {
      throw std::runtime_error(std::to_string(line.number) + ": an answer without a command");
    }
  }

  void ReadBlock(Step::Kind kind, const Line& subject) {
    answering_.reset();  // blocks stand between one answer and the next command
    Step step{kind, subject, {}};
    while (next_ < lines_.size() && lines_[next_].text != "#end")
      step.lines.push_back(lines_[next_++]);
    if (next_ == lines_.size())
      throw std::runtime_error(std::to_string(subject.number) + ": no #end closes this block");
    ++next_;
    steps_.push_back(std::move(step));
  }

  static void DropBlankEnd(std::vector<Line>& lines) {
    while (!lines.empty() && lines.back().text.empty()) lines.pop_back();
  }

  std::vector<Line> lines_;
  std::size_t next_ = 0;
  std::vector<Step> steps_;
  std::optional<std::size_t> answering_;  // the command whose answer is being read
};

// Plays the steps in order and counts the lines that differ.
class Player {
 public:
  Player(const fs::path& executable, std::string name)
      : name_(std::move(name)), program_(executable, std::string(kPrompt)) {}

  // Returns whether every answer was as expected and the program ended well.
  bool Play(const std::vector<Step>& steps) {
    Compare({0, "the start of the program"}, {}, program_.ReadAnswer());
    if (program_.AtEnd()) throw std::runtime_error("0: no prompt, but " + program_.AwaitEnd());
    for (const Step& step : steps) PlayStep(step);
    program_.CloseInput();
    Compare({0, "the end of the input"}, {}, program_.ReadAnswer());
    if (const std::string ending = program_.AwaitEnd(); ending != "status 0")
      Report(0, "the end of the program", "status 0", ending);
    return differences_ == 0;
  }

 private:
  void PlayStep(const Step& step) try {
    switch (step.kind) {
      case Step::Kind::kWriteFile:
        return WriteFile(step.subject.text, step.lines);
      case Step::Kind::kShowFile:
        return Compare(step.subject, step.lines, ReadFile(step.subject.text));
      case Step::Kind::kType:
        return Converse(step);
    }
  } catch (const std::exception& failure) {
    throw std::runtime_error(std::to_string(step.subject.number) + ": " + step.subject.text + ": " +
                             failure.what());
  }

  void Converse(const Step& step) {
    program_.Type(step.subject.text);
    Compare(step.subject, step.lines, program_.ReadAnswer());
    // Only a command that has no answer, such as a good-bye, may end the program.
    if (program_.AtEnd() && !step.lines.empty())
      throw std::runtime_error("the program has ended: " + program_.AwaitEnd());
  }

  void Compare(const Line& subject, const std::vector<Line>& expected, const std::string& got) {
    if (!got.empty() && got.back() != '\n')
      Report(subject.number, subject.text, "an end of line", got);
    const std::vector<std::string> lines = SplitLines(got);
    for (std::size_t i = 0; i < std::max(expected.size(), lines.size()); ++i) {
      if (i >= lines.size())
        Report(expected[i].number, subject.text, expected[i].text, "nothing");
      else if (i >= expected.size())
        Report(subject.number, subject.text, "nothing", lines[i]);
      else if (!Matches(expected[i].text, lines[i]))
        Report(expected[i].number, subject.text, expected[i].text, lines[i]);
    }
  }

  static bool Matches(const std::string& expected, const std::string& got) {
    return expected.starts_with('~') ? std::regex_match(got, std::regex(expected.substr(1)))
                                     : expected == got;
  }

  void Report(int number, const std::string& subject, const std::string& expected,
              const std::string& got) {
    ++differences_;
    std::cout << name_ << ':' << number << ": " << subject << "\n  expected: " << expected
              << "\n  got:      " << got << '\n';
  }

  std::string name_;
  Program program_;
  int differences_ = 0;
};

// What the program writes stays there after the test, for whoever looks into a failure.
void EnterScratchDirectory(const fs::path& name) {
  const fs::path scratch = "scratch" / name;
  fs::remove_all(scratch);
  fs::create_directories(scratch);
  fs::current_path(scratch);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: conversation_runner PROGRAM DATA_DIRECTORY CONVERSATION\n";
    return 2;
  }
  try {
    const fs::path program = fs::absolute(argv[1]);
    const std::vector<Step> steps =
        ConversationReader(argv[3], fs::absolute(argv[2]).string()).Read();
    EnterScratchDirectory(fs::path(argv[3]).stem());
    setenv("KILN", program.c_str(), 1);
    return Player(program, argv[3]).Play(steps) ? 0 : 1;
  } catch (const std::exception& failure) {
    std::cout << argv[3] << ':' << failure.what() << '\n';
    return 1;
  }
}
