#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "DataObject/Data.h"
#include "Interpreter/Answers.h"
#include "Interpreter/TInterpreter.h"

namespace kiln {

class TCommandLine;

// What the commands that make data sets out of others share, and the larger ones of them.
namespace commands {

inline constexpr char kNoArray[] = "error parsing array";

// What a command is told that makes one set of another.
struct TRemake {
  std::string_view source_alias;
  std::shared_ptr<Data> source;
  std::string_view destination;
};

TRemake RequiredRemake(const TInterpreter& interpreter, const TCommandLine& line);

// Each element of a list as one word. There is at least one.
std::vector<std::string_view> RequiredWords(const TCommandLine& line, std::string_view tag,
                                            std::string_view message);

// The numbers of rows in the list "rows".
std::vector<int> RequiredRows(const TCommandLine& line);

// Fails unless the list `tag` has as many elements as the list `other`.
void RequireAsMany(std::string_view tag, std::size_t values, std::string_view other,
                   std::size_t wanted);

TAnswer Divide(TInterpreter& interpreter, const TCommandLine& line);
TAnswer Extract(TInterpreter& interpreter, const TCommandLine& line);
TAnswer Normalise(TInterpreter& interpreter, const TCommandLine& line);
TAnswer Denormalise(TInterpreter& interpreter, const TCommandLine& line);

}  // namespace commands
}  // namespace kiln
