#pragma once

#include <cstdint>
#include <functional>

#include "Bramble/Eval.h"
#include "GA-Apps/GenTrain/TGenTrainEval.h"
#include "NeuralNets/Training/TTrainHistory.h"
#include "NeuralNets/Training/TValidation.h"

namespace kiln {

// Called after each generation with its number, from 1, and its lowest error; false asks training
// to stop.
using TGenerationObserver = std::function<bool(std::uint32_t generation, double error)>;

// Follows a training run: keeps the error of each generation, has the best individual validated,
// passes the generation on to an observer, and ends a run in which there is nobody left to breed
// from.
class TGenTrainReport : public Reporter {
 public:
  // `validation` may be null. REQUIRES: everything outlives the report.
  TGenTrainReport(TGenTrainEval& evaluator, const TGenerationObserver& observer,
                  TTrainHistory& history, TValidation* validation)
      : MbrEvlEvaluator(evaluator),
        MbrFunObserver(observer),
        MbrHistory(history),
        MbrPtrValidation(validation) {}

  bool Report(const Population& evaluated) override;

  // The final report: the error of the network that was made of the best individual.
  void ReportTrained(double error) { MbrDblLastError = error; }

  double LastError() const { return MbrDblLastError; }

 private:
  double Validate(const Population& evaluated);

  TGenTrainEval& MbrEvlEvaluator;
  const TGenerationObserver& MbrFunObserver;
  TTrainHistory& MbrHistory;
  TValidation* MbrPtrValidation;
  double MbrDblLastError = 0.0;
};

}  // namespace kiln
