#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>

#include "Bramble/DeathCap.h"
#include "GA-Apps/GenTrain/TGenTrainEval.h"
#include "GA-Apps/GenTrain/TGenTrainReport.h"

namespace kiln {

// Trains a network by breeding its weights:
//
//   trainer.Initialise();
//   const double error = trainer.Train({.IntGenerations = 100}, 0.01, sets);
//
// The trainer shares its network, whose structure must not change while it is trained.
class TGenTrain {
 public:
  static constexpr std::size_t kMaxPopulation = std::size_t{1} << 20;
  static constexpr std::size_t kMaxGenes = std::size_t{1} << 28;  // of a whole population

  virtual ~TGenTrain() = default;

  const TBasicNetwork& Network() const { return *MbrPtrNetNetwork; }

  // Makes the population: random individuals and, last, one with the network's present weights.
  void Initialise();

  // Breeds from the population for as many generations, until one has an individual whose error is
  // at most `target_error` (with 0 or less only one without any error will do), or until the
  // observer ends it. Then writes the genes of the best individual of the last generation into the
  // network and returns the error that the network now has. The population becomes the last
  // generation, so another call goes on from there. `settings.FltTarget` does not matter.
  //
  // With a validation set the network ends with the weights of the individual, among the best ones
  // of all generations, that has the least error on it, and that error is returned. The population
  // is the last generation all the same.
  //
  // With no generations nothing changes and the error is the network's present one.
  //
  // Throws TException when the sets don't fit the network or no individual of a generation has an
  // error that is a number, TAssertion before Initialise and for settings that the engine refuses.
  // The network's weights are then what they were.
  double Train(RunSettings settings, double target_error, std::span<const Data* const> sets,
               const TGenerationObserver& observer = {},
               const TValidationSet* validation_set = nullptr);

  // The lowest error of every generation of all calls that have not failed.
  const TTrainHistory& History() const { return MbrHistory; }

  // The engine with its population; null before Initialise.
  const DeathCap* Driver() const { return MbrDtcTrainer ? &*MbrDtcTrainer : nullptr; }

  // The genes of the best individual, valid until the population changes. TAssertion before
  // Initialise.
  std::span<const GeneValue> ExportBest() const;

 protected:
  // Throws TException "Bad Parameter" unless the bounds are finite and not the wrong way round,
  // and the population has 1 to kMaxPopulation individuals and not more than kMaxGenes genes.
  TGenTrain(std::shared_ptr<TBasicNetwork> network, const TWeightBounds& bounds,
            std::size_t population);

  const TWeightBounds& Bounds() const { return MbrBndWeights; }

 private:
  // An evaluator for the network as it is.
  virtual std::unique_ptr<TGenTrainEval> MakeEvaluator() const = 0;

  double Evolve(const RunSettings& settings, const TGenerationObserver& observer,
                TValidation* validation);

  std::shared_ptr<TBasicNetwork> MbrPtrNetNetwork;
  TWeightBounds MbrBndWeights;
  std::size_t MbrNdxPopulation;
  std::unique_ptr<TGenTrainEval> MbrPtrEvlEvaluator;  // these two only after Initialise
  std::optional<DeathCap> MbrDtcTrainer;
  TTrainHistory MbrHistory;
};

}  // namespace kiln
