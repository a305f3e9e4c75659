// Data files and tables: saving and loading a large set.

#include <functional>
#include <string>

#include "FileHandler/CsvFile.h"
#include "FileHandler/Filer.h"
#include "Peers.h"
#include "RandomRows.h"
#include "Rows.h"
#include "TReport.h"
#include "TScratch.h"

namespace kiln {

namespace {

constexpr double kSavingGoal = 6.0;
constexpr double kLoadingGoal = 2.0;

// Rows for one kind of file, "a data file", against tables of pandas.
void AddRows(TReport& report, const TScratch& scratch, const std::string& kind, const Data& table,
             const std::function<void()>& save, const std::function<void()>& load) {
  report.AddComparison(
      "saving " + kind, [=](int) { return SecondsOf(save); }, "pandas",
      PandasSaving(scratch, table), table.DataRows(), kSavingGoal);
  report.AddComparison(
      "loading " + kind, [=](int) { return SecondsOf(load); }, "pandas",
      PandasLoading(scratch, table), table.DataRows(), kLoadingGoal);
}

}  // namespace

void AddFileRows(TReport& report, const TScratch& scratch) {
  const bool wants_data = report.Wants("saving a data file") || report.Wants("loading a data file");
  const bool wants_csv = report.Wants("saving CSV") || report.Wants("loading CSV");
  if (!wants_data && !wants_csv) return;
  const auto table = RandomRows(1'000'000, 10);
  const std::string data = scratch.Path("table.dat");
  const std::string csv = scratch.Path("table.csv");
  AddRows(
      report, scratch, "a data file", *table, [&] { Filer::Save(data, table.get()); },
      [&] { Filer::Load(data); });
  AddRows(
      report, scratch, "CSV", *table, [&] { CsvFile::Save(csv, *table); },
      [&] { CsvFile::Load(csv, {}); });
}

}  // namespace kiln
