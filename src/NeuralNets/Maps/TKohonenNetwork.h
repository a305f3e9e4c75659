#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "NeuralNets/Maps/TMapGrid.h"
#include "NeuralNets/TBasicNetwork.h"

namespace kiln {

// A self-organising map: units on a grid, each with a prototype of as many values as a pattern has.
// The winner for a pattern is the unit with the nearest prototype, the first of several, and that
// prototype is the output.
//
// Layer 0 is empty, layer 1 the input, layer 2 the units, both linear. One fully connected block
// joins them; row u of its weights is the prototype of unit u.
class TKohonenNetwork : public TBasicNetwork {
 public:
  // Every prototype 0. Throws TException when there are no inputs, a size is below 1 or the whole
  // exceeds the limits of a network, TAssertion "dims != 0" without a size.
  TKohonenNetwork(int inputs, std::vector<int> sizes);

  // Empty layers that are not connected, for a reader that fills them. Throws as above.
  explicit TKohonenNetwork(std::vector<int> sizes);

  // Whether the layers, and the block that joins them, are those of a map of this grid. Everything
  // below REQUIRES it; only a reader can leave it otherwise.
  bool IsComplete() const;

  std::string_view KindName() const override { return "Kohonen"; }
  std::unique_ptr<TBasicNetwork> Clone() const override;
  std::size_t NumOutputs() const override { return NumInputs(); }

  const TMapGrid& Grid() const { return grid_; }

  // Puts the same units on another grid. Throws as the constructor, and TException when it has
  // another number of units.
  void SetDimensions(std::vector<int> sizes);

  // The prototypes of all units, one row after the other, and that of one unit. REQUIRES: the unit
  // exists.
  std::span<double> Prototypes();
  std::span<const double> Prototypes() const;
  std::span<const double> Prototype(std::size_t unit) const;

  // Copies the winner's prototype and returns its index. Throws TAssertion "bestsofar >= 0" when
  // every squared distance is 1e30 or more, or NaN. Each call lays all prototypes out for its
  // search; for many patterns it is faster to recall a data set. REQUIRES: a value for each input
  // in both spans.
  std::size_t FindWinner(std::span<const double> pattern, std::span<double> prototype) const;
  void RecallPattern(std::span<const double> input, std::span<double> output) override;

  // Each of the following looks for the winner of every row, oldest first. They throw TAssertion
  // for a null pointer and as FindWinner does, and TException unless the set has as many inputs as
  // the map.

  // The rows (input, prototype of the winner), the prototypes alone, or the rows (input,
  // coordinates of the winner), with the labels of the input rows where these carry any.
  std::unique_ptr<Data> Recall(const Data* in) override;
  std::unique_ptr<Data> RecallOutputOnly(const Data* in) override;
  std::unique_ptr<Data> RecallCoordinates(const Data* in) const;

  // Feeds (input, prototype of the winner) to the error object, whose value is then the
  // quantisation error. The outputs of the set don't count.
  double RecallError(const Data* in, TErrorObj* err) override;

 private:
  TMapGrid grid_;
};

}  // namespace kiln
