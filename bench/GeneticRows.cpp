// The genetic engine: breeding apart from what the evaluation costs.

#include <memory>
#include <string>

#include "Bramble/DeathCap.h"
#include "Peers.h"
#include "Rows.h"
#include "Shared/Random.h"
#include "TReport.h"

namespace kiln {

namespace {

constexpr double kGoal = 6.0;
constexpr int kIndividuals = 100;
// Less than one gene of an individual on average, so that both sides draw for each gene: from there
// on GAlib places that many mutations instead.
constexpr float kMutation = 0.0009F;

// The first gene is the fitness.
class FirstGene : public Evaluator {
 public:
  void EvaluatePopulation(std::span<const MetaGene>, std::span<const std::span<GeneValue>> genes,
                          std::span<float> fitness) override {
    for (std::size_t i = 0; i < genes.size(); ++i) fitness[i] = genes[i].front().Real();
  }
};

class Silent : public Reporter {
 public:
  bool Report(const Population&) override { return true; }
};

// The first generation of a run is not bred, so there is one more of them than passes.
TWork Breeding(int genes) {
  MetaChrom genome;
  for (int i = 0; i < genes; ++i) genome.Append(MetaGene::Real(0.0F, 1.0F));
  Random::Seed(1);
  const auto driver = std::make_shared<DeathCap>(genome);
  driver->Populate(kIndividuals);
  return [driver](int passes) {
    FirstGene evaluator;
    Silent reporter;
    const RunSettings settings{
        .IntGenerations = passes + 1, .FltTarget = 2.0F, .FltMutation = kMutation};
    return SecondsOf([&] { driver->Run(settings, evaluator, reporter); });
  };
}

}  // namespace

void AddGeneticRows(TReport& report) {
  for (const int genes : {20, 200, 1000}) {
    const std::string work = "breeding, " + std::to_string(genes) + " genes";
    if (!report.Wants(work)) continue;
    report.AddComparison(work, Breeding(genes), "GAlib",
                         GaLibBreeding(kIndividuals, genes, kMutation), 1.0, kGoal);
  }
}

}  // namespace kiln
