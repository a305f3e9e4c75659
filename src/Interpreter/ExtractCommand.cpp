#include "DataTools/DataManip/TDataManip.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/Manipulation.h"
#include "Shared/NumberScan.h"
#include "Shared/TNameIndex.h"
#include "Shared/Text.h"

namespace kiln::commands {

namespace {

using TSide = std::span<const double> DataRow::*;

// Finds columns of a set by name, among those of one side first, or by number on that side.
class TColumnFinder {
 public:
  TColumnFinder(std::string_view alias, const Data& set) : alias_(alias), set_(set) {
    for (const std::string& name : set.Names().Inputs) inputs_.Add(name);
    for (const std::string& name : set.Names().Outputs) outputs_.Add(name);
  }

  ColumnPlace Find(std::string_view word, TSide side) const {
    const TSide other = side == &DataRow::Inputs ? &DataRow::Outputs : &DataRow::Inputs;
    for (const TSide candidate : {side, other}) {
      const TNameIndex& names = Names(candidate);
      if (names.HasSeveral(word)) Fail(alias_, " has several columns ", word);
      if (const auto named = names.Find(word)) return {candidate, static_cast<int>(*named)};
    }
    const auto numbered = ScanPlace(word, static_cast<std::size_t>(Columns(side)));
    if (!numbered) Fail(alias_, " has no column ", word);
    return {side, static_cast<int>(*numbered)};
  }

  std::vector<ColumnPlace> All(TSide side) const {
    std::vector<ColumnPlace> places;
    places.reserve(static_cast<std::size_t>(Columns(side)));
    for (int c = 0; c < Columns(side); ++c) places.push_back({side, c});
    return places;
  }

 private:
  const TNameIndex& Names(TSide side) const {
    return side == &DataRow::Inputs ? inputs_ : outputs_;
  }
  int Columns(TSide side) const {
    return side == &DataRow::Inputs ? set_.Inputs() : set_.Outputs();
  }

  std::string_view alias_;
  const Data& set_;
  TNameIndex inputs_;
  TNameIndex outputs_;
};

// The columns of one side of the new set; all of that side where the line does not name them.
std::vector<ColumnPlace> ListedColumns(const TCommandLine& line, std::string_view tag,
                                       const TColumnFinder& finder, TSide side) {
  if (line.Word(tag).code != TReadCode::kRead) return finder.All(side);
  std::vector<ColumnPlace> places;
  for (const std::string_view word : Required(line.Words(tag), kNoArray)) {
    places.push_back(finder.Find(TrimBlanks(word), side));
  }
  return places;
}

}  // namespace

TAnswer Extract(TInterpreter& interpreter, const TCommandLine& line) {
  const TRemake remake = RequiredRemake(interpreter, line);
  const TColumnFinder finder(remake.source_alias, *remake.source);
  const auto inputs = ListedColumns(line, "inputs", finder, &DataRow::Inputs);
  const auto outputs = ListedColumns(line, "outputs", finder, &DataRow::Outputs);
  interpreter.Insert(
      {remake.destination, TDataManip::Rearrange(remake.source.get(), inputs, outputs)});
  remake.source->ResetCursor();
  return kDone;
}

}  // namespace kiln::commands
