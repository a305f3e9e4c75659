#pragma once

#include <cstddef>
#include <vector>

#include "NeuralNets/TPatternBlock.h"
#include "NeuralNets/Training/TTrainPass.h"
#include "NeuralNets/Training/TTrainRun.h"

namespace kiln {

// Back-propagation of several patterns at a time: what TBackpropModule does for each pattern of a
// batch, as products of matrices (see TPatternBlock).
class TBackpropBlock : public TTrainPass {
 public:
  // Whether a network can be trained in this way (see TPatternBlock), and gains by it on a set of
  // so many patterns.
  static bool Fits(const TBasicNetwork& network, int patterns);

  // REQUIRES: the network fits; `gradients` is a network of its shape; both outlive the block.
  TBackpropBlock(TBasicNetwork& network, TBasicNetwork& gradients);

  void Run(const Data& data, TTrainRun& run) override;

 private:
  // Takes the rows from `first` on, as many as a block takes.
  void RunBlock(const Data& data, int first, TTrainRun& run);
  void SetOutputErrors(const Data& data, int first, TTrainRun& run);
  void AddGradients(std::size_t to, std::size_t from);
  void Propagate(std::size_t to, std::size_t from);

  TBasicNetwork& network_;
  TBasicNetwork& gradients_;
  TPatternBlock outputs_;
  std::vector<std::vector<double>> errors_;  // neurons x kPatterns of each layer that is trained
  std::vector<double> rows_;                 // outputs of a layer, patterns x neurons
};

}  // namespace kiln
