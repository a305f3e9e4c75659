#include <algorithm>
#include <cmath>
#include <numeric>

#include "DataTools/DataManip/TDataManip.h"
#include "DataTools/DataManip/TDivision.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/Manipulation.h"
#include "Shared/Text.h"

namespace kiln::commands {

namespace {

std::vector<std::string_view> RequiredDestinations(const TInterpreter& interpreter,
                                                   const TCommandLine& line) {
  auto aliases = RequiredWords(line, "destination", "tag destination not found");
  for (std::size_t i = 0; i < aliases.size(); ++i) {
    RefuseReserved(aliases[i]);
    const auto others = std::span(aliases).first(i);
    if (interpreter.Exists(aliases[i]) || FindNoCase(others, aliases[i])) {
      Fail(aliases[i], " already exists");
    }
  }
  return aliases;
}

// The sizes of parts of so many rows that have the shares in the list "shares".
std::vector<int> RowsOfShares(const TCommandLine& line, int all_rows) {
  std::vector<int> rows;
  double end = 0.0;
  int rows_before = 0;
  for (const double share : Required(line.Doubles("shares"), kNoArray)) {
    if (!(share > 0.0)) Fail("shares must be above 0");
    end += share;
    if (!(end <= 1.0 + 1e-9)) Fail("shares must add up to 1 at most");
    const int rows_so_far = std::min(all_rows, static_cast<int>(std::lround(end * all_rows)));
    rows.push_back(AtLeast(1, rows_so_far - rows_before, "the rows of each share"));
    rows_before = rows_so_far;
  }
  return rows;
}

}  // namespace

TAnswer Divide(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view source = RequiredAlias(line, "source");
  const TRegistryNode& node = RequiredEntry(interpreter, source);
  const auto aliases = RequiredDestinations(interpreter, line);
  const auto set = RequiredObject<Data>(node, source, " is not of type Data");
  const bool by_shares = line.Word("shares").code == TReadCode::kRead;
  if (by_shares && line.Word("rows").code == TReadCode::kRead) Fail("rows or shares, not both");
  const auto sizes = by_shares ? RowsOfShares(line, set->DataRows()) : RequiredRows(line);
  RequireAsMany(by_shares ? "shares" : "rows", sizes.size(), "destination", aliases.size());
  const auto asked = std::accumulate(sizes.begin(), sizes.end(), std::int64_t{0});
  if (asked > set->DataRows()) {
    Fail(source, " has ", std::to_string(set->DataRows()), " rows, not ", std::to_string(asked));
  }
  const bool stratified =
      line.Word("stratified").code == TReadCode::kRead && RequiredBoolean(line, "stratified");
  if (stratified && !set->HasLabels() && set->Outputs() == 0) {
    Fail(source, " has neither labels nor outputs");
  }

  const TParts parts = stratified ? DivideByClass(ClassesOf(*set), sizes) : DivideInOrder(sizes);
  std::vector<std::unique_ptr<Data>> sets;
  for (const auto& rows : parts) sets.push_back(TDataManip::Rows(set.get(), rows));
  for (std::size_t i = 0; i < sets.size(); ++i) {
    interpreter.Insert({aliases[i], std::move(sets[i])});
  }
  set->ResetCursor();
  return kDone;
}

}  // namespace kiln::commands
