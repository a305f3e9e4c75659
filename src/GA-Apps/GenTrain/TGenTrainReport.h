#pragma once

#include <cstdint>
#include <functional>

#include "Bramble/Eval.h"
#include "GA-Apps/GenTrain/TGenTrainEval.h"

namespace kiln {

// Called after each generation with its number, from 1, and its lowest error; false asks training
// to stop.
using TGenerationObserver = std::function<bool(std::uint32_t generation, double error)>;

// Follows a training run: passes each generation on to an observer, keeps the last error, and ends
// a run in which there is nobody left to breed from.
class TGenTrainReport : public Reporter {
 public:
  // REQUIRES: the evaluator outlives the report.
  TGenTrainReport(const TGenTrainEval& evaluator, const TGenerationObserver& observer)
      : MbrEvlEvaluator(evaluator), MbrFunObserver(observer) {}

  bool Report(const Population& evaluated) override;

  // The final report: the error of the network that was made of the best individual.
  void ReportTrained(double error) { MbrDblLastError = error; }

  double LastError() const { return MbrDblLastError; }

 private:
  const TGenTrainEval& MbrEvlEvaluator;
  const TGenerationObserver& MbrFunObserver;
  double MbrDblLastError = 0.0;
};

}  // namespace kiln
