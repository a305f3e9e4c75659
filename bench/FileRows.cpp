// Data files and tables: saving and loading a large set.

#include <algorithm>
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

// How a kind of file is written and read.
struct TFileKind {
  const char* name;
  std::function<void()> save;
  std::function<void()> load;
};

// Rows for one kind of file beside tables of pandas.
void AddRows(TReport& report, const TScratch& scratch, const Data& table, const TFileKind& kind) {
  const std::string saving = std::string("saving ") + kind.name;
  const std::string loading = std::string("loading ") + kind.name;
  if (report.Wants(saving)) {
    const TWork save = [&](int) { return SecondsOf(kind.save); };
    report.AddComparison(saving, save, "pandas", PandasSaving(scratch, table), table.DataRows(),
                         kSavingGoal);
  }
  if (report.Wants(loading)) {
    kind.save();
    const TWork load = [&](int) { return SecondsOf(kind.load); };
    report.AddComparison(loading, load, "pandas", PandasLoading(scratch, table), table.DataRows(),
                         kLoadingGoal);
  }
}

}  // namespace

void AddFileRows(TReport& report, const TScratch& scratch) {
  constexpr const char* kNames[] = {"saving a data file", "loading a data file", "saving CSV",
                                    "loading CSV"};
  if (std::ranges::none_of(kNames, [&](const char* name) { return report.Wants(name); })) return;
  const auto table = RandomRows(1'000'000, 10);
  const std::string data = scratch.Path("rows.dat");
  const std::string csv = scratch.Path("rows.csv");
  AddRows(report, scratch, *table,
          {"a data file", [&] { Filer::Save(data, table.get()); }, [&] { Filer::Load(data); }});
  AddRows(report, scratch, *table,
          {"CSV", [&] { CsvFile::Save(csv, *table); }, [&] { CsvFile::Load(csv, {}); }});
}

}  // namespace kiln
