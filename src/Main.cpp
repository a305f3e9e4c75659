#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

#include "Interpreter/TInterpreter.h"
#include "Interpreter/TLineReader.h"
#include "Shared/Text.h"

namespace {

constexpr std::size_t kLongestTypedLine = 255;

// Runs a command and tells the user how it went. Returns whether it succeeded: only then does "!!"
// repeat it.
bool Answer(kiln::TInterpreter& interpreter, std::string_view line) {
  const int code = interpreter.Execute(line);
  if (code < 0) {
    std::cout << "Error: " << interpreter.GetError() << '\n';
  } else if (code > 0) {
    std::cout << "Result: " << interpreter.GetResult() << '\n';
  } else {
    std::cout << "OK\n";
  }
  return code >= 0;
}

// Hands a line that begins with "@" to the command processor, which gets the usual treatment of
// broken pipes back.
void RunSystemCommand(std::string line) {
  line.front() = ' ';
  std::cout.flush();
  std::signal(SIGPIPE, SIG_DFL);
  [[maybe_unused]] const int outcome = std::system(line.c_str());
  std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace

int main() {
  std::ios::sync_with_stdio(false);
  std::signal(SIGPIPE, SIG_IGN);  // a reader that goes away is a failed write, not our end
  kiln::TInterpreter interpreter;
  kiln::TLineReader input(std::cin, kLongestTypedLine);
  std::string remembered;
  // The prompt is flushed, and every answer before it, so that a program can drive the console.
  while (std::cout << "Kiln>>" << std::flush && input.Next()) {
    if (!input.Fault().empty()) {
      std::cout << "Error: " << input.Fault() << '\n';
      continue;
    }
    std::string line(input.Line());
    if (kiln::EqualNoCase(line, "quit") || kiln::EqualNoCase(line, "exit")) break;
    if (line.empty()) continue;
    if (line == "!!") {
      line = remembered;
      std::cout << line << '\n';
    }
    if (line.starts_with('@')) {
      RunSystemCommand(line);
      remembered = line;
    } else if (Answer(interpreter, line)) {
      remembered = line;
    }
  }
  return std::cout ? EXIT_SUCCESS : EXIT_FAILURE;
}
