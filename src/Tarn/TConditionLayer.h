#pragma once

#include "Tarn/TFuzzyLayer.h"

namespace kiln {

// The layer that makes inputs fuzzy: a neuron for each membership function of each input, whose net
// input is the value of that input and whose output is the value's membership (see Centres.h).
class TConditionLayer : public TFuzzyLayer {
 public:
  // A neuron for each membership function. Throws TAssertion "NdxMF >= 2" for an input with fewer
  // functions, TException when there are more than kMaxNeurons.
  explicit TConditionLayer(std::span<const int> mf_counts);

  // The same without groups, for a reader that sets them before it connects the layer.
  explicit TConditionLayer(std::size_t neurons);

  void SetMFCounts(std::span<const int> counts) override;

  void Compute(std::span<const double> pattern) override;
  void Activate() override;
  bool ComputesBlocks() const override;
  void ComputeBlock(std::span<const double> inputs, std::span<double> outputs,
                    const TBlockShape& shape) override;
  std::string_view KindName() const override { return "FuzzyCondition"; }
  std::unique_ptr<TBasicLayer> Clone() const override;

  // The following throw TAssertion unless the layer is connected as it should be.

  // The membership of x in the function of a neuron. REQUIRES: neuron < NumNeurons().
  double Membership(std::size_t neuron, double x) const;

  // Adds to `gradients` the derivative of an error by each centre, at the net inputs of the last
  // recall, given its derivative by each output. REQUIRES: both have a value for each neuron.
  void AddGradients(std::span<const double> errors, std::span<double> gradients) const;

  // The same for several patterns, whose inputs are given; errors behind the last pattern are 0.
  void AddBlockGradients(std::span<const double> inputs, std::span<const double> errors,
                         const TBlockShape& shape, std::span<double> gradients) const;

 private:
  explicit TConditionLayer(const TMFGroups& groups);

  // The centres of all functions, in the order of the neurons.
  std::span<const double> Centres() const;

  // Calls visit(first, centres, x) for each input: its first neuron, the centres of its functions
  // and its value in the last recall.
  template <typename TVisit>
  void ForEachInput(const TVisit& visit) const;
};

}  // namespace kiln
