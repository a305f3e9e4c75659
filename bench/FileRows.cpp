// Data files: saving and loading a large table.

#include <string>

#include "FileHandler/Filer.h"
#include "Peers.h"
#include "RandomRows.h"
#include "Rows.h"
#include "TReport.h"
#include "TScratch.h"

namespace kiln {

void AddFileRows(TReport& report, const TScratch& scratch) {
  if (!report.Wants("saving a data file") && !report.Wants("loading a data file")) return;
  const auto table = RandomRows(1'000'000, 10);
  const std::string path = scratch.Path("table.dat");
  const TWork save = [&](int) { return SecondsOf([&] { Filer::Save(path, table.get()); }); };
  report.AddComparison("saving a data file", save, "pandas", PandasSaving(scratch, *table),
                       table->DataRows(), 1.5);
  const TWork load = [&](int) { return SecondsOf([&] { Filer::Load(path); }); };
  report.AddComparison("loading a data file", load, "pandas", PandasLoading(scratch, *table),
                       table->DataRows(), 1.5);
}

}  // namespace kiln
