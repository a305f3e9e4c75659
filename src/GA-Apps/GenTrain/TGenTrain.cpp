#include "GA-Apps/GenTrain/TGenTrain.h"

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "Bramble/Status.h"
#include "Shared/Narrowing.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"

namespace kiln {

namespace {

void CheckParameters(const TBasicNetwork& network, const TWeightBounds& bounds,
                     std::size_t population) {
  const auto fail = [](const std::string& message) {
    throw TException(message, "Bad Parameter", "TGenTrain::TGenTrain");
  };
  if (!std::isfinite(bounds.FltMinimum) || !std::isfinite(bounds.FltMaximum) ||
      bounds.FltMinimum > bounds.FltMaximum) {
    fail("weights cannot be drawn from such bounds");
  }
  if (population < 1 || population > TGenTrain::kMaxPopulation) {
    fail("a population of " + std::to_string(population) + " is not within 1 to " +
         std::to_string(TGenTrain::kMaxPopulation));
  }
  const std::size_t weights = network.GetNumWeights(FMaskAll);
  if (weights > TGenTrain::kMaxGenes / population) {
    fail("a population of " + std::to_string(population) + " with " + std::to_string(weights) +
         " genes each has more than " + std::to_string(TGenTrain::kMaxGenes));
  }
}

float TargetFitness(double error) {
  return error > 0.0 ? ToSingle(1.0 / error) : TGenTrainEval::kFitnessWithoutError;
}

}  // namespace

TGenTrain::TGenTrain(std::shared_ptr<TBasicNetwork> network, const TWeightBounds& bounds,
                     std::size_t population)
    : MbrPtrNetNetwork(std::move(network)), MbrBndWeights(bounds), MbrNdxPopulation(population) {
  Assert(MbrPtrNetNetwork != nullptr, "PtrNetNetwork != 0");
  CheckParameters(*MbrPtrNetNetwork, bounds, population);
}

void TGenTrain::Initialise() {
  MbrPtrEvlEvaluator = MakeEvaluator();
  MbrDtcTrainer.emplace(MbrPtrEvlEvaluator->Genome());
  MbrDtcTrainer->Populate(MbrNdxPopulation - 1);
  MbrDtcTrainer->Seed(MbrPtrEvlEvaluator->SeedGenome());
}

double TGenTrain::Train(RunSettings settings, double target_error,
                        std::span<const Data* const> sets, const TGenerationObserver& observer,
                        const TValidationSet* validation_set) {
  Assert(MbrDtcTrainer.has_value(), "MbrPtrDtcTrainer != 0");
  MbrPtrEvlEvaluator->SetData(sets);
  if (settings.IntGenerations < 1) return MbrPtrEvlEvaluator->Error();
  settings.FltTarget = TargetFitness(target_error);
  std::optional<TValidation> validation;
  if (validation_set) {
    validation.emplace(*MbrPtrNetNetwork, *validation_set,
                       std::make_unique<TErrorRMSObj>(MbrPtrNetNetwork->NumOutputs()));
  }
  THistoryOfCall history(MbrHistory, settings.IntGenerations);
  const std::vector<double> start = MbrPtrNetNetwork->GetWeights(FMaskAll);
  try {
    const double error = Evolve(settings, observer, validation ? &*validation : nullptr);
    history.End();
    return error;
  } catch (...) {
    MbrPtrNetNetwork->SetWeights(start, FMaskAll);
    throw;
  }
}

double TGenTrain::Evolve(const RunSettings& settings, const TGenerationObserver& observer,
                         TValidation* validation) {
  TGenTrainReport reporter(*MbrPtrEvlEvaluator, observer, MbrHistory, validation);
  const GeneticStatus status = MbrDtcTrainer->Run(settings, *MbrPtrEvlEvaluator, reporter);
  Assert(status == GeneticStatus::SUCCESS, "IntReturn == SUCCESS");
  if (!(MbrDtcTrainer->Working().Best().FltFitness > 0.0F)) {
    throw TException("no individual has an error that is a number", "Invalid Parameter",
                     "TGenTrain::Train");
  }
  MbrDtcTrainer->AdoptWorking();
  MbrPtrEvlEvaluator->SetGenes(ExportBest());
  if (validation && validation->WasMeasured()) {
    validation->Restore(*MbrPtrNetNetwork);
    return validation->LeastError();
  }
  reporter.ReportTrained(MbrPtrEvlEvaluator->Error());
  return reporter.LastError();
}

std::span<const GeneValue> TGenTrain::ExportBest() const {
  Assert(MbrDtcTrainer.has_value(), "MbrPtrDtcTrainer != 0");
  const Population& current = MbrDtcTrainer->Current();
  return current.At(current.Best().NdxPosition).Genes().Values();
}

}  // namespace kiln
