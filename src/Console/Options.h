#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Interpreter/TDefinitions.h"

namespace kiln {

// A file of commands, or a single one, that the command line asks to be carried out.
struct TTask {
  enum class TKind { kFile, kLine };

  TKind kind;
  std::string text;  // the path, or the command
};

// What the command line of the program says.
struct TOptions {
  std::vector<TTask> tasks;      // in the order given
  std::filesystem::path folder;  // in which to work; empty: the present one
  TDefinitions definitions;
  // Where none are given there is a worker for each core.
  std::optional<std::size_t> workers;
  bool talks_on = false;         // has a conversation after the tasks
  bool is_quiet = false;         // writes results alone
  bool ends_at_failure = false;  // ends a conversation at the first command that fails
  bool is_strict = false;
  bool is_plain = false;  // treats a terminal like a pipe
  bool asks_for_help = false;
  bool asks_for_version = false;
};

// Reads the command line and, for what it may say instead, the environment. Nothing when either is
// wrong, which the standard error then says.
std::optional<TOptions> ReadOptions(int argc, char* argv[]);

// What "--help" shows: all options, on less than a screen.
std::string_view HelpOnOptions();

}  // namespace kiln
