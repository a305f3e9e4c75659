#include "Console/Options.h"

#include <getopt.h>

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "Shared/TTeam.h"

namespace kiln {

namespace {

constexpr int kPlain = 256;  // of the options without a letter
constexpr char kLetters[] =  // "-": what is no option is taken in its place, as option 1
    "-e:iqbsD:C:j:hV";

constexpr option kOptions[] = {
    {"execute", required_argument, nullptr, 'e'},   {"interactive", no_argument, nullptr, 'i'},
    {"quiet", no_argument, nullptr, 'q'},           {"batch", no_argument, nullptr, 'b'},
    {"strict", no_argument, nullptr, 's'},          {"define", required_argument, nullptr, 'D'},
    {"directory", required_argument, nullptr, 'C'}, {"cores", required_argument, nullptr, 'j'},
    {"plain", no_argument, nullptr, kPlain},        {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, 'V'},         {nullptr, 0, nullptr, 0},
};

constexpr char kHelp[] = R"(Usage: kiln [OPTION]... [FILE]...
Carries out the commands in the files, of which - is the standard input, or,
without any, talks with you.

  -e, --execute LINE       carry out this command, in its place among the files
  -i, --interactive        go on talking after files and commands
  -q, --quiet              write results alone: no prompt, no OK
  -b, --batch              end a conversation at the first command that fails
  -s, --strict             refuse unknown tags, numbers that are none, and the like
  -D, --define NAME=VALUE  put VALUE in place of $NAME in files and -e commands
  -C, --directory DIR      work in this folder
  -j, --cores N            share large work among N cores: all, unless KILN_THREADS
                           says how many; the results are always the same
      --plain              treat a terminal like a pipe
  -h, --help               show this
  -V, --version            show the version

The status is 0 when all went well, 1 when a command failed, which ends files and
commands, 2 when an option is wrong and 130 after an interruption. Inside, type
"help" for the commands and "quit" to end.
)";

// Reads a number of cores that `source` has given. Returns whether it is one.
bool TakeWorkers(TOptions& options, const char* text, const char* source) {
  const char* const end = text + std::strlen(text);
  std::size_t workers = 0;
  const auto [rest, fault] = std::from_chars(text, end, workers);
  if (fault == std::errc() && rest == end && workers >= 1 && workers <= TTeam::kMaxWorkers) {
    options.workers = workers;
    return true;
  }
  std::cerr << "kiln: " << source << " takes a number of cores from 1 to " << TTeam::kMaxWorkers
            << ", not " << text << '\n';
  return false;
}

// Without an option the environment may say how many workers there are.
bool TakeDefaultWorkers(TOptions& options) {
  constexpr char kVariable[] = "KILN_THREADS";
  const char* const threads = std::getenv(kVariable);
  return !threads || !*threads || TakeWorkers(options, threads, kVariable);
}

TTask File(std::string_view name) {
  return {TTask::TKind::kFile, std::string(name == "-" ? "/dev/stdin" : name)};
}

// Takes note of one option. Returns whether it is right.
bool Take(TOptions& options, int letter, const char* argument) {
  switch (letter) {
    case 1:
      options.tasks.push_back(File(argument));
      break;
    case 'e':
      options.tasks.push_back({TTask::TKind::kLine, argument});
      break;
    case 'i':
      options.talks_on = true;
      break;
    case 'q':
      options.is_quiet = true;
      break;
    case 'b':
      options.ends_at_failure = true;
      break;
    case 's':
      options.is_strict = true;
      break;
    case 'C':
      options.folder /= argument;  // each from where the one before leads
      break;
    case 'j':
      return TakeWorkers(options, argument, "-j");
    case kPlain:
      options.is_plain = true;
      break;
    case 'h':
      options.asks_for_help = true;
      break;
    case 'V':
      options.asks_for_version = true;
      break;
    case 'D':
      if (options.definitions.Add(argument)) break;
      std::cerr << "kiln: -D takes NAME=VALUE, not " << argument << '\n';
      return false;
    default:
      return false;  // getopt has said why
  }
  return true;
}

}  // namespace

std::optional<TOptions> ReadOptions(int argc, char* argv[]) {
  TOptions options;
  for (;;) {
    const int letter = getopt_long(argc, argv, kLetters, kOptions, nullptr);
    if (letter == -1) break;
    if (!Take(options, letter, optarg)) {
      std::cerr << "kiln --help shows the options\n";
      return std::nullopt;
    }
  }
  if (!options.workers && !TakeDefaultWorkers(options)) return std::nullopt;
  // Behind "--" everything is a file.
  for (; optind < argc; ++optind) options.tasks.push_back(File(argv[optind]));
  return options;
}

std::string_view HelpOnOptions() {
  return kHelp;
}

}  // namespace kiln
