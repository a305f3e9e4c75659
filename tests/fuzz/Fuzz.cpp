// Gives what libFuzzer thinks up to one of Kiln's readers, which KILN_FUZZ names: the readers of
// files, of messages and of command lines. Whatever comes, nothing may break, and what can be read
// has to be written and read again as the same text. tests/fuzz/run starts this program for each.
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <new>
#include <sstream>
#include <string>
#include <string_view>

#include "Interpreter/TInterpreter.h"
#include "KQmessage/TKQstructure.h"
#include "Shared/TAssertion.h"
#include "Shared/Text.h"

// Memory ends early, so that a few bytes that ask for a lot cost little time and are refused.
constexpr std::size_t kMostMemory = std::size_t{64} << 20;

void* operator new(std::size_t size) {
  void* const memory = size <= kMostMemory ? std::malloc(std::max<std::size_t>(size, 1)) : nullptr;
  if (!memory) throw std::bad_alloc();
  return memory;
}
void* operator new(std::size_t size, std::align_val_t place) {
  void* memory = nullptr;
  const bool is_there =
      size <= kMostMemory && posix_memalign(&memory, static_cast<std::size_t>(place), size) == 0;
  if (!is_there) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
  std::free(memory);
}

namespace {

using kiln::TInterpreter;
using kiln::TKQstructure;

void Demand(bool holds, std::string_view what) {
  if (holds) return;
  std::cerr << "fuzz: " << what << std::endl;
  std::abort();
}

std::string TextOf(const char* path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

// Loads `from` as `alias`, saves it as `to` and returns whether there was anything to load.
bool LoadAndSave(TInterpreter& interpreter, const std::string& kind, const std::string& alias,
                 const std::string& from, const std::string& to) {
  const std::string object = kind + " alias " + alias + " filename (";
  if (interpreter.Execute("load " + object + from + ")") < 0) return false;
  const int saved = interpreter.Execute("save " + object + to + ")");
  Demand(saved >= 0, "what was loaded is not saved: " + interpreter.GetError());
  return true;
}

void ReadFile(const std::string& kind, std::string_view input) {
  std::ofstream("given", std::ios::binary) << input;
  TInterpreter interpreter;
  if (!LoadAndSave(interpreter, kind, "a", "given", "once")) return;
  Demand(LoadAndSave(interpreter, kind, "b", "once", "twice"),
         "what was saved is not loaded: " + interpreter.GetError());
  Demand(TextOf("once") == TextOf("twice"), "what was saved is loaded as something else");
}

std::string Printed(std::string_view message) {
  std::ostringstream text;
  TKQstructure::Parse(message).Print(text);
  return text.str();
}

void ReadMessage(const std::string&, std::string_view input) {
  std::string once;
  try {
    once = Printed(input);
  } catch (const kiln::TAssertion&) {
    return;
  }
  Demand(Printed(once) == once, "a message is printed as another one");
}

// Lines that reach beyond the interpreter are passed over, and trainings end after an epoch.
void ReadLines(const std::string&, std::string_view input) {
  constexpr std::array<std::string_view, 4> kReaching = {"save", "load", "log", "run"};
  TInterpreter interpreter;
  interpreter.SetObserver([](int, double) { return false; });
  std::istringstream lines{std::string(input)};
  for (std::string line; std::getline(lines, line);) {
    const auto reaches = [folded = kiln::FoldCase(line)](std::string_view word) {
      return folded.find(word) != std::string::npos;
    };
    if (std::ranges::none_of(kReaching, reaches)) interpreter.Execute(line);
  }
}

struct TTarget {
  std::string_view name;
  void (*read)(const std::string& kind, std::string_view input);
  const char* kind;
};

constexpr TTarget kTargets[] = {{"data", ReadFile, "Data"},
                                {"network", ReadFile, "MLP"},
                                {"rules", ReadFile, "FuzzyRules"},
                                {"csv", ReadFile, "CSV"},
                                {"labels", ReadFile, "TarnLabels"},
                                {"message", ReadMessage, ""},
                                {"lines", ReadLines, ""}};

const TTarget& ChosenTarget() {
  const char* const name = std::getenv("KILN_FUZZ");
  const auto* const target =
      std::ranges::find(kTargets, std::string_view(name ? name : ""), &TTarget::name);
  Demand(target != std::end(kTargets), "KILN_FUZZ names no reader");
  return *target;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const TTarget& target = ChosenTarget();
  target.read(target.kind, {reinterpret_cast<const char*>(bytes), size});
  return 0;
}
