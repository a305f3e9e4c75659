#pragma once

#include <algorithm>
#include <functional>
#include <span>

#include "DataObject/Data.h"
#include "NeuralNets/TBasicNetwork.h"
#include "NeuralNets/Training/TTrainRun.h"

namespace kiln {

// Where patterns enter a network, and where their errors start on their way back.
class TPatternEnds {
 public:
  // The net inputs of `errors`, a network of the same shape, hold the error terms.
  TPatternEnds(TBasicNetwork& network, TBasicNetwork& errors)
      : inputs_(network.Layer(network.InputLayer()).Outputs()),
        outputs_(network.Layer(network.OutputLayer()).Outputs()),
        errors_(errors.Layer(network.OutputLayer()).NetInputs()) {}

  void SetInputs(const DataRow& row) { std::ranges::copy(row.Inputs, inputs_.begin()); }

  // Sets the error terms of the outputs.
  void SetErrors(const DataRow& row) {
    std::ranges::transform(outputs_, row.Outputs, errors_.begin(), std::minus<>());
  }

  // Adds the error of the outputs to that of a run.
  void AddError(const DataRow& row, TTrainRun& run) const {
    run.error->Accumulate(row.Outputs, outputs_);
  }

 private:
  std::span<double> inputs_;
  std::span<const double> outputs_;
  std::span<double> errors_;
};

}  // namespace kiln
