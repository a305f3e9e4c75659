// What an item costs as there are more of them: weights, rows and objects.

#include <array>
#include <cmath>
#include <fstream>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Interpreter/TInterpreter.h"
#include "KilnWork.h"
#include "Rows.h"
#include "TReport.h"
#include "TScratch.h"

namespace kiln {

namespace {

constexpr int kPatterns = 64;

// A perceptron of three layers of n neurons has about 2 n^2 weights. Those of the first three, with
// their last changes, fit into a second-level cache of 2 MB.
constexpr std::array kLayers = {22, 70, 223, 400, 707};

constexpr std::array<std::size_t, 4> kRowCounts = {1'000, 10'000, 100'000, 1'000'000};
constexpr std::array<std::size_t, 4> kObjectCounts = {10, 100, 1'000, 10'000};

// A work that uses a task, and keeps it.
using TMakeWork = std::function<TWork(const TPerceptronTask&)>;

TWork Keeping(std::shared_ptr<const TPerceptronTask> task, const TMakeWork& make) {
  return [task, work = make(*task)](int passes) { return work(passes); };
}

// A number with its thousands apart.
std::string Grouped(std::size_t number) {
  if (number < 1000) return std::to_string(number);
  const std::string last = std::to_string(1000 + number % 1000);
  return Grouped(number / 1000).append(",").append(last, 1, 3);
}

void AddWeightRows(TReport& report, const std::string& work, const TMakeWork& make) {
  if (!report.Wants(work)) return;
  std::vector<TReport::TSize> sizes;
  for (const int size : kLayers) {
    const auto task = std::make_shared<TPerceptronTask>(std::vector(3, size), kPatterns);
    const std::size_t weights = task->network->GetNumWeights(FMaskAll);
    sizes.push_back({Grouped(weights) + " weights", Keeping(task, make),
                     static_cast<double>(weights) * kPatterns});
  }
  report.AddGrowth(work, sizes);
}

void Execute(TInterpreter& interpreter, const std::string& command) {
  if (interpreter.Execute(command) < 0) throw std::runtime_error(interpreter.GetError());
}

// A pass runs a script that makes a data set and appends that many rows.
TWork Appending(const TScratch& scratch, std::size_t rows) {
  const std::string path = scratch.Path("append" + std::to_string(rows));
  std::ofstream script(path);
  script << "create Data alias d inputs 4 outputs 1 rows " << rows << " labels false\n";
  for (std::size_t n = 0; n < rows; ++n) {
    script << "append alias d inputs {0.25, " << n << ", 0.7071, -1.5} outputs {0.125}\n";
  }
  script.close();
  return [path](int passes) {
    TInterpreter interpreter;
    return SecondsOf([&] {
      for (int n = 0; n < passes; ++n) {
        Execute(interpreter, "run filename (" + path + ")");
        interpreter.Purge();
      }
    });
  };
}

void AddAppendRows(TReport& report, const TScratch& scratch) {
  const std::string work = "growth, a row appended by a script";
  if (!report.Wants(work)) return;
  std::vector<TReport::TSize> sizes;
  for (const std::size_t rows : kRowCounts) {
    sizes.push_back({Grouped(rows) + " rows", Appending(scratch, rows), static_cast<double>(rows)});
  }
  report.AddGrowth(work, sizes);
}

// A pass creates that many data sets, asks for the structure of each, in another order, and
// destroys them in a third.
TWork HandlingObjects(std::size_t objects) {
  return [objects](int passes) {
    TInterpreter interpreter;
    const auto for_each = [&](std::size_t stride, const std::string& before,
                              const std::string& after) {
      for (std::size_t n = 0; n < objects; ++n) {
        Execute(interpreter, before + std::to_string(n * stride % objects) + after);
      }
    };
    return SecondsOf([&] {
      for (int n = 0; n < passes; ++n) {
        for_each(1, "create Data alias x", " inputs 2 outputs 1 rows 4 labels false");
        for_each(7, "query structureof x", "");
        for_each(3, "destroy x", "");
      }
    });
  };
}

void AddObjectRows(TReport& report) {
  const std::string work = "growth, an object made, asked and destroyed";
  if (!report.Wants(work)) return;
  std::vector<TReport::TSize> sizes;
  for (const std::size_t objects : kObjectCounts) {
    sizes.push_back(
        {Grouped(objects) + " objects", HandlingObjects(objects), static_cast<double>(objects)});
  }
  report.AddGrowth(work, sizes);
}

}  // namespace

void AddGrowthRows(TReport& report, const TScratch& scratch) {
  const auto by_pattern = [](const TPerceptronTask& task) {
    return PerceptronTraining(task, false);
  };
  const auto by_batch = [](const TPerceptronTask& task) { return PerceptronTraining(task, true); };
  AddWeightRows(report, "growth, a weight trained by pattern", by_pattern);
  AddWeightRows(report, "growth, a weight trained by batch", by_batch);
  AddWeightRows(report, "growth, a weight in recall", PerceptronRecall);
  AddAppendRows(report, scratch);
  AddObjectRows(report);
}

}  // namespace kiln
