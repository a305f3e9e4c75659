// Two workers beside one, and beside a program of two libraries. All times are those of the clock
// on the wall: processor time counts what both cores do.

#include <array>
#include <functional>
#include <memory>
#include <string>

#include "FileHandler/Filer.h"
#include "GA-Apps/GenTrain/TMLPGA.h"
#include "KilnWork.h"
#include "Peers.h"
#include "RandomRows.h"
#include "Rows.h"
#include "Shared/Random.h"
#include "Shared/TTeam.h"
#include "TReport.h"
#include "TScratch.h"

namespace kiln {

namespace {

constexpr std::size_t kWorkers = 2;

constexpr int kIndividuals = 100;
constexpr float kMutation = 0.009F;  // less than one gene of an individual on average

// The same work by so many workers, and on the wall clock.
TWork By(std::size_t workers, const TWork& work) {
  if (!work) return {};
  return [workers, work](int passes) {
    TTeam::SetWorkers(workers);
    const double start = WallTime();
    work(passes);
    const double seconds = WallTime() - start;
    TTeam::SetWorkers(1);
    return seconds;
  };
}

void AddRow(TReport& report, const std::string& work, const TWork& kiln, double items,
            double goal) {
  report.AddComparison(work, By(kWorkers, kiln), "one worker", By(1, kiln), items, goal);
}

// A pass is a generation.
TWork GeneticTraining(const TPerceptronTask& task) {
  auto trainer = std::make_shared<TMLPGA>(task.network, TWeightBounds{-1.0F, 1.0F}, kIndividuals);
  Random::Seed(1);
  trainer->Initialise();
  return [&task, trainer](int passes) {
    return SecondsOf([&] {
      trainer->Train({.IntGenerations = passes, .FltMutation = kMutation}, 0.0,
                     std::array<const Data*, 1>{&task.data});
    });
  };
}

TWork Repeated(const std::function<void()>& work) {
  return [work](int) { return SecondsOf(work); };
}

// Two workers beside two threads of another program.
void AddThreadRows(TReport& report, const TScratch& scratch) {
  constexpr int kRows = 1000;
  for (const std::vector<int>& sizes :
       {std::vector{64, 64, 10}, {784, 100, 10}, {784, 1000, 10}, {784, 2000, 1000, 10}}) {
    const TPerceptronTask task(sizes, kRows);
    const std::string work = "two threads, training by batch, " + task.Shape();
    if (!report.Wants(work)) continue;
    report.AddComparison(work, By(kWorkers, PerceptronTraining(task, true)),
                         "scikit-learn, two threads", ScikitTrainingByTwo(scratch, task), kRows,
                         1.2);
  }
}

}  // namespace

void AddTeamRows(TReport& report, const TScratch& scratch) {
  AddThreadRows(report, scratch);
  constexpr int kRows = 4096;
  for (const std::vector<int>& sizes : {std::vector{64, 64, 10}, std::vector{784, 100, 10}}) {
    const TPerceptronTask task(sizes, kRows);
    const std::string training = "two workers, training by batch, " + task.Shape();
    if (report.Wants(training)) {
      AddRow(report, training, PerceptronTraining(task, true), kRows, 1.6);
    }
    const std::string recall = "two workers, recall of a set, " + task.Shape();
    if (report.Wants(recall)) AddRow(report, recall, PerceptronRecall(task), kRows, 1.6);
  }
  const TPerceptronTask small({10, 8, 1}, 500);
  const std::string breeding = "two workers, genetic training, " + small.Shape();
  if (report.Wants(breeding)) AddRow(report, breeding, GeneticTraining(small), 1.0, 1.6);
  for (const std::size_t workers : {std::size_t{1}, kWorkers}) {
    const std::string work =
        "genetic training, " + small.Shape() + ", workers " + std::to_string(workers);
    if (!report.Wants(work)) continue;
    report.AddComparison(work, By(workers, GeneticTraining(small)), "FANN in GAlib",
                         By(1, FannGaLibTraining(small, kIndividuals, kMutation)), 1.0,
                         workers == 1 ? 3.6 : 6.0);
  }

  const std::string saving = "two workers, saving a data file";
  const std::string loading = "two workers, loading a data file";
  if (!report.Wants(saving) && !report.Wants(loading)) return;
  const auto table = RandomRows(1'000'000, 10);
  const std::string path = scratch.Path("team.dat");
  Filer::Save(path, table.get());
  if (report.Wants(saving)) {
    AddRow(report, saving, Repeated([&] { Filer::Save(path, table.get()); }), table->DataRows(),
           1.3);
  }
  if (report.Wants(loading)) {
    AddRow(report, loading, Repeated([&] { Filer::Load(path); }), table->DataRows(), 1.3);
  }
}

}  // namespace kiln
