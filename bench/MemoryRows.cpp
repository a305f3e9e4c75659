// What data sets, loading and trainers take.

#include <filesystem>
#include <memory>
#include <string>

#include "FileHandler/Filer.h"
#include "KilnWork.h"
#include "MemoryUse.h"
#include "NeuralNets/Training/TBackpropModule.h"
#include "RandomRows.h"
#include "Rows.h"
#include "TReport.h"
#include "TScratch.h"

namespace kiln {

namespace {

constexpr int kRows = 1'000'000;
constexpr int kColumns = 10;
constexpr double kSlack = 1.01;  // for the objects around the numbers

void AddDataRows(TReport& report, const TScratch& scratch) {
  const double before = HeapInUse();
  auto table = RandomRows(kRows, kColumns);
  const double taken = HeapInUse() - before;
  const double numbers = double{kRows} * kColumns;
  report.AddMemory("memory, a data set of 10,000,000 numbers", taken, "a byte a number", numbers,
                   8.5);

  const std::string path = scratch.Path("memory.dat");
  Filer::Save(path, table.get());
  table.reset();
  const double peak = PeakDuring([&] { Filer::Load(path); });
  const auto file = static_cast<double>(std::filesystem::file_size(path));
  report.AddMemory("memory, loading it, at the peak", peak, "the set and the file", taken + file,
                   kSlack);
}

void AddTrainerRow(TReport& report, bool batch) {
  const TPerceptronTask task({784, 100, 10}, 64);
  const double weights = 8.0 * static_cast<double>(task.network->GetNumWeights(FMaskAll));
  const double before = HeapInUse();
  const auto trainer = std::make_shared<TBackpropModule>(task.network);
  Training(trainer, task.data, batch)(1);
  report.AddMemory(
      std::string("memory, a trainer of 784-100-10, ") + (batch ? "by batch" : "by pattern"),
      HeapInUse() - before, "the weights", weights, 2.0 * kSlack);
}

}  // namespace

void AddMemoryRows(TReport& report, const TScratch& scratch) {
  if (!report.Wants("memory")) return;
  AddDataRows(report, scratch);
  AddTrainerRow(report, false);
  AddTrainerRow(report, true);
}

}  // namespace kiln
