#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "NeuralNets/Training/TPatternEnds.h"
#include "NeuralNets/Training/TTrainIterators.h"
#include "NeuralNets/Training/TTrainPass.h"
#include "NeuralNets/Training/TTrainRun.h"
#include "NeuralNets/Training/TTrainState.h"

namespace kiln {

struct DataRow;

// Pattern by pattern and layer by layer: the way that any network can go. As it stands it trains
// layers of weighted sums; a network with other layers derives a pass of its own, which overrides
// TrainLayer for them.
class TLayerwisePass : public TTrainPass {
 public:
  // Moves weights where the run lets it and no connection leads back: such a connection is not
  // trained, but momentum and penalties act on it. Adds gradients otherwise.
  // REQUIRES: the layers can be trained; state and run outlive the pass.
  TLayerwisePass(TTrainState& state, const TTrainRun& run);

  void Run(const Data& data, int first, int last, TErrorObj& error) override;

  // Recalls one pattern and returns the outputs.
  std::span<const double> Recall(const DataRow& row);

  // Adds to the gradients the derivative of one output, for the pattern of the last Recall, by each
  // weight. REQUIRES: the pass adds gradients.
  void AddDerivatives(std::size_t output);

 protected:
  // Takes one pattern through the network and goes back through the layers with its errors.
  virtual void TrainPattern(const DataRow& row, TErrorObj& error);

  // Turns the error terms of a layer into deltas, hands TrainBlock its blocks from lower layers,
  // and so adds to the error terms of these layers. The outputs of all layers are those of the
  // pattern.
  virtual void TrainLayer(std::size_t layer);

  // Passes errors back through a block whose net inputs are weighted sums; then moves its weights
  // or adds up their gradients, as the kind of the pass says.
  void TrainBlock(std::size_t to, std::size_t from, const TBlockTerms& terms);

  TTrainState& State() { return state_; }

 private:
  void ClearErrors();
  void GoBack();

  TTrainState& state_;
  const TTrainRun& run_;
  TPatternEnds ends_;
  std::vector<double> output_;  // of the pattern at hand
};

}  // namespace kiln
