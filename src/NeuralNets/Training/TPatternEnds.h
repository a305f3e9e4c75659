#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "DataObject/Data.h"
#include "NeuralNets/TErrorObj.h"
#include "NeuralNets/Training/TTrainState.h"

namespace kiln {

// Where errors start on their way back: with y an output and t the desired one, its error term is
// y - t. Writes one for each output, `stride` places apart.
inline void SetOutputErrors(std::span<const double> desired, std::span<const double> actual,
                            double* errors, std::size_t stride = 1) {
  for (std::size_t i = 0; i < desired.size(); ++i) errors[i * stride] = actual[i] - desired[i];
}

// Where single patterns enter a network, and where their errors start.
class TPatternEnds {
 public:
  // REQUIRES: the state outlives the ends, and its network keeps its layers.
  explicit TPatternEnds(TTrainState& state)
      : inputs_(state.network->Layer(state.network->InputLayer()).Outputs()),
        outputs_(state.network->Layer(state.network->OutputLayer()).Outputs()),
        errors_(state.Errors(state.network->OutputLayer())) {}

  void SetInputs(const DataRow& row) { std::ranges::copy(row.Inputs, inputs_.begin()); }

  // Sets the error terms of the output layer, whose outputs are those for the row.
  void SetErrors(const DataRow& row) { SetOutputErrors(row.Outputs, outputs_, errors_.data()); }

  // Adds the error of these outputs to `error`.
  void AddError(const DataRow& row, TErrorObj& error) const {
    error.Accumulate(row.Outputs, outputs_);
  }

 private:
  std::span<double> inputs_;
  std::span<const double> outputs_;
  std::span<double> errors_;
};

}  // namespace kiln
