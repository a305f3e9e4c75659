#pragma once

#include <vector>

#include "Tarn/TFuzzyLayer.h"

namespace kiln {

// The layer that makes values of fuzzy actions. Output t is the centre of gravity of the action
// neurons that belong to it: with a the output of such a neuron and w the centre of its membership
// function,
//   o = sum(a w) / sum(a), or 0 where either sum is 0.
class TTarnOutputLayer : public TFuzzyLayer {
 public:
  // A neuron for each output, of as many membership functions as its count says.
  // REQUIRES: no count is negative.
  explicit TTarnOutputLayer(std::span<const int> mf_counts);

  // The same without groups, for a reader that sets them before it connects the layer.
  explicit TTarnOutputLayer(std::size_t neurons);

  void SetMFCounts(std::span<const int> counts) override;

  // Throws TAssertion unless the layer is connected as it should be. Where an output is not within
  // [0, 1], prints it and throws TAssertion.
  void Compute(std::span<const double> pattern) override;

  bool ComputesBlocks() const override;
  void ComputeBlock(std::span<const double> actions, std::span<double> outputs,
                    const TBlockShape& shape) override;

  std::string_view KindName() const override { return "Defuzzify"; }
  std::unique_ptr<TBasicLayer> Clone() const override;

  // sum(a) of each output in the last recall.
  std::span<const double> Sums() const { return sums_; }

  // The same for each pattern of the last ComputeBlock, in the shape of its outputs.
  std::span<const double> BlockSums() const { return block_sums_; }

 private:
  std::vector<double> sums_;
  std::vector<double> block_sums_;
};

}  // namespace kiln
