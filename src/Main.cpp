#include <fcntl.h>
#include <kiln/kiln.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "Console/LineEditor.h"
#include "Console/Machines.h"
#include "Console/Options.h"
#include "Console/Signals.h"
#include "Console/TConsole.h"
#include "Console/TPlainLines.h"
#include "NeuralNets/Kernels/Kernels.h"
#include "Shared/Cores.h"
#include "Shared/Interruption.h"
#include "Shared/Ranks.h"
#include "Shared/TTeam.h"
#include "Shared/Text.h"

namespace {

constexpr int kWrongOptions = 2;
constexpr int kInterrupted = 130;  // as a shell tells of a program that SIGINT has ended

// Whether a person sits at both ends.
bool IsAtTerminal() {
  const char* const kind = std::getenv("TERM");
  return isatty(STDIN_FILENO) && isatty(STDOUT_FILENO) && kind && *kind &&
         std::strcmp(kind, "dumb") != 0;
}

kiln::TManner MannerFor(const kiln::TOptions& options, bool at_terminal) {
  const char* const no_colour = std::getenv("NO_COLOR");
  return {.is_quiet = options.is_quiet,
          .at_terminal = at_terminal,
          .has_colour = at_terminal && !(no_colour && *no_colour),
          .out_is_screen = isatty(STDOUT_FILENO) != 0,
          .error_is_screen = isatty(STDERR_FILENO) != 0};
}

std::unique_ptr<kiln::TLineSource> Lines(kiln::TConsole& console, bool at_terminal) {
  std::unique_ptr<kiln::TLineSource> lines;
  if (at_terminal) lines = kiln::MakeLineEditor(console.Interpreter(), std::cout);
  if (!lines) lines = std::make_unique<kiln::TPlainLines>(STDIN_FILENO, std::cout);
  return lines;
}

// Holds the conversation. Returns whether all went well, as far as that matters.
bool Converse(kiln::TConsole& console, const kiln::TOptions& options, bool at_terminal) {
  const std::unique_ptr<kiln::TLineSource> lines = Lines(console, at_terminal);
  if (at_terminal && isatty(STDERR_FILENO) && !options.is_quiet) {
    std::cerr << "Kiln " << kiln::Version() << ": type help, or quit to end.\n";
  }
  if (options.ends_at_failure) return console.ConverseUntilFailure(*lines);
  console.Converse(*lines);
  return true;
}

// Has workers share large work from now on: as many as wanted, else one for each core. A person is
// told of more than there are cores for.
void Employ(std::optional<std::size_t> wanted) {
  const std::size_t cores = kiln::Cores::Usable();
  const std::size_t workers = wanted.value_or(cores);
  kiln::TTeam::SetWorkers(workers);
  if (workers > cores && isatty(STDERR_FILENO)) {
    std::cerr << "kiln: " << workers << " workers share " << kiln::Counted(cores, "core") << '\n';
  }
}

// Carries out all tasks and then, where one is wanted, holds the conversation. Returns the status
// of the program.
int Run(kiln::TConsole& console, const kiln::TOptions& options, bool at_terminal) {
  const bool converses = options.tasks.empty() || options.talks_on;
  bool went_well = std::ranges::all_of(
      options.tasks, [&](const kiln::TTask& task) { return console.CarryOut(task); });
  if (!converses && kiln::Interruption::IsRequested()) return kInterrupted;
  if (converses && (went_well || !options.ends_at_failure)) {
    went_well = Converse(console, options, at_terminal) && went_well;
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

// Goes to the folder in which to work, where there is one. Other ranks open no files.
bool WorkIn(const std::filesystem::path& folder) {
  const bool is_there = folder.empty() || !kiln::Ranks::IsFirst() || chdir(folder.c_str()) == 0;
  if (!is_there) {
    std::cerr << "kiln: cannot work in " << folder.string() << ": " << std::strerror(errno) << '\n';
  }
  return kiln::Ranks::Shared(is_there);
}

// Shares the session with the other processes. Only the first one is heard and hears.
void JoinRanks(kiln::TTransport& machines) {
  kiln::Ranks::Join(machines);
  if (kiln::Ranks::IsFirst()) return;
  const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nowhere, stream);
}

// Different kernels may differ in the last digits of their results, so all ranks take those of the
// first. Returns whether all have them.
bool TakeSameKernels() {
  const bool has_them = kiln::ForceKernels(kiln::Ranks::Shared(kiln::KernelLevel()));
  if (!kiln::Ranks::OnAny(!has_them)) return true;
  std::cerr << "kiln: the processor of some rank lacks instructions that the first one has\n";
  return false;
}

int Tell(std::string_view text) {
  return std::cout << text << std::flush ? EXIT_SUCCESS : EXIT_FAILURE;
}

// The life of the program, once it knows its company.
int Live(int argc, char* argv[]) {
  const auto options = kiln::ReadOptions(argc, argv);
  if (kiln::Ranks::OnAny(!options)) {
    if (options) std::cerr << "kiln: another rank refuses its options or KILN_THREADS\n";
    return kWrongOptions;
  }
  if (options->asks_for_help) return Tell(kiln::HelpOnOptions());
  if (options->asks_for_version) return Tell("Kiln " + std::string(kiln::Version()) + "\n");
  if (!WorkIn(options->folder) || !TakeSameKernels()) return kWrongOptions;

  std::ios::sync_with_stdio(false);
  kiln::Signals::Install();
  const bool has_company = kiln::Ranks::AreSeveral();
  if (!has_company && (isatty(STDIN_FILENO) || options->talks_on)) kiln::Signals::CatchInterrupts();
  Employ(options->workers);
  const bool at_terminal = !has_company && !options->is_plain && IsAtTerminal();
  kiln::TConsole console(std::cout, MannerFor(*options, at_terminal));
  console.Interpreter().Define(options->definitions);
  if (options->is_strict) console.Interpreter().BeStrict();
  if (at_terminal && isatty(STDERR_FILENO)) console.Guide();
  const int status = Run(console, *options, at_terminal);
  return Close(console) ? status : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char* argv[]) {
  const std::unique_ptr<kiln::TTransport> machines = kiln::JoinMachines();
  if (machines) JoinRanks(*machines);
  const int status = Live(argc, argv);
  kiln::Ranks::Part();
  return kiln::Ranks::IsFirst() ? status : EXIT_SUCCESS;
}
