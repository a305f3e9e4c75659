#pragma once

#include <cstddef>
#include <vector>

#include "NeuralNets/TPatternBlock.h"
#include "NeuralNets/TTrainRun.h"

namespace kiln {

// Back-propagation of several patterns at a time: what TBackpropModule does for each pattern of a
// batch, as products of matrices (see TPatternBlock).
class TBackpropBlock {
 public:
  // REQUIRES: the network fits a TPatternBlock; `gradients` is a network of its shape; both outlive
  // the block.
  TBackpropBlock(TBasicNetwork& network, TBasicNetwork& gradients);

  // Adds the errors of the rows from `first` on, as many as a block takes, to the error object of
  // the run, and what they give to the gradients. REQUIRES: as for TPatternBlock::Recall.
  void Train(const Data& data, int first, TTrainRun& run);

 private:
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
