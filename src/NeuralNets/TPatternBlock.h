#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "NeuralNets/TBasicNetwork.h"
#include "Shared/TPlacedVector.h"

namespace kiln {

class Data;

// The recall of several patterns at a time, in which a block of weights meets all of them at once.
// The values of a layer are a matrix here: a row of Patterns() places for each neuron, in which its
// values for the patterns stand side by side.
class TPatternBlock {
 public:
  // How many patterns a block takes. The outputs of a small network then stay in the nearest cache;
  // one of more than kManyWeights has its weights read for more patterns at once, and one of more
  // than kMostWeights for more still, where there are more and their outputs take no more memory
  // than those of kMaxNeurons. Gradients are the same for both, since products add up
  // 128 terms at a time.
  static constexpr std::size_t kPatterns = 32;
  static constexpr std::size_t kManyPatterns = 128;
  static constexpr std::size_t kMostPatterns = 256;
  static constexpr std::size_t kManyWeights = std::size_t{1} << 17;
  static constexpr std::size_t kMostWeights = std::size_t{1} << 20;
  static std::size_t PatternsFor(const TBasicNetwork& network, std::size_t most);

  // Networks of more neurons, whose outputs would take more than 32 MiB, are recalled faster
  // pattern by pattern.
  static constexpr int kMaxNeurons = 1 << 17;

  // Whether a network can be recalled in this way: it is feed-forward and has at most kMaxNeurons,
  // and each of its layers either is plain, with no connection absent, or computes blocks by
  // itself.
  static bool Fits(const TBasicNetwork& network);

  // A block for recalls of `most` patterns at a time or fewer; of more it takes the first ones.
  // REQUIRES: the network fits, and outlives the block.
  TPatternBlock(TBasicNetwork& network, std::size_t most);

  // How many patterns there is room for.
  std::size_t Patterns() const { return patterns_; }

  // Recalls the rows first..last-1, counted from the oldest of the set, or the first Patterns() of
  // them. The layers of the network keep the outputs for the last row that was recalled.
  // REQUIRES: first < last <= data.DataRows(); the set's inputs fit the network.
  void Recall(const Data& data, int first, int last);

  // How many patterns the last call recalled, and that number rounded up to whole registers.
  std::size_t Count() const { return count_; }
  std::size_t Width() const;

  TBlockShape Shape() const { return {patterns_, count_}; }

  // neurons x Patterns(). In each row the first Count() places hold the outputs for the patterns;
  // the others are of no use.
  std::span<double> Outputs(std::size_t layer) { return outputs_[layer]; }

  // Copies the values of one pattern. REQUIRES: a place for each neuron of the layer.
  void GetPattern(std::size_t layer, std::size_t pattern, std::span<double> values) const;

 private:
  void SetInputs(const Data& data, int first);
  void Compute(std::size_t layer);
  void Activate(std::size_t layer);

  TBasicNetwork& network_;
  std::size_t patterns_;
  std::size_t count_ = 0;
  std::vector<TPlacedVector<double>> outputs_;  // of each layer
  TPlacedVector<double> net_inputs_;            // of the layer at hand
  std::vector<const double*> rows_;             // the inputs of the patterns
};

}  // namespace kiln
