#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>

#include "Console/Options.h"
#include "Console/Signals.h"
#include "Console/TConsole.h"
#include "Console/TPlainLines.h"
#include "Shared/Interruption.h"

namespace {

constexpr int kWrongOptions = 2;
constexpr int kInterrupted = 130;  // as a shell tells of a program that SIGINT has ended

// Carries out all tasks and then, where one is wanted, holds the conversation. Returns the status
// of the program.
int Run(kiln::TConsole& console, const kiln::TOptions& options) {
  const bool converses = options.tasks.empty() || options.talks_on;
  bool went_well = std::ranges::all_of(
      options.tasks, [&](const kiln::TTask& task) { return console.CarryOut(task); });
  if (!converses && kiln::Interruption::IsRequested()) return kInterrupted;
  if (converses) {
    kiln::TPlainLines lines(STDIN_FILENO, std::cout);
    if (!options.ends_at_failure) {
      console.Converse(lines);
    } else {
      went_well = went_well && console.ConverseUntilFailure(lines);
    }
  }
  return went_well ? EXIT_SUCCESS : EXIT_FAILURE;
}

// Ends the session. Returns whether all that was to be written has been.
bool Close(kiln::TConsole& console) {
  try {
    console.Close();
  } catch (const std::exception& failure) {
    std::cerr << "kiln: " << failure.what() << '\n';
    return false;
  }
  return static_cast<bool>(std::cout.flush());
}

int Tell(std::string_view text) {
  return std::cout << text << std::flush ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char* argv[]) {
  const auto options = kiln::ReadOptions(argc, argv);
  if (!options) return kWrongOptions;
  if (options->asks_for_help) return Tell(kiln::HelpOnOptions());
  if (options->asks_for_version) return Tell("Kiln " KILN_VERSION "\n");
  if (!options->folder.empty() && chdir(options->folder.c_str()) != 0) {
    std::cerr << "kiln: cannot work in " << options->folder << ": " << std::strerror(errno) << '\n';
    return kWrongOptions;
  }

  std::ios::sync_with_stdio(false);
  kiln::Signals::Install();
  if (isatty(STDIN_FILENO) || options->talks_on) kiln::Signals::CatchInterrupts();
  kiln::TConsole console(std::cout, {.is_quiet = options->is_quiet});
  console.Interpreter().Define(options->definitions);
  if (options->is_strict) console.Interpreter().BeStrict();
  const int status = Run(console, *options);
  return Close(console) ? status : EXIT_FAILURE;
}
