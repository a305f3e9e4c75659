#pragma once

#include "NeuralNets/TBasicConnections.h"

namespace kiln {

// A weight from every neuron of one layer to every neuron of the other, for good: no connection can
// be pruned or frozen.
class TConnectedConnections : public TBasicConnections {
 public:
  std::string_view KindName() const override { return "FullyConnected"; }
  bool HasFlags() const override { return false; }
  std::unique_ptr<TBasicConnections> Clone() const override;

  void AddRow(std::size_t position) override;
  void RemoveRow(std::size_t position) override;
  void AddColumn(std::size_t position) override;
  void RemoveColumn(std::size_t position) override;

 protected:
  std::vector<TPatchShape> Layout(const TBasicLayer& to, const TBasicLayer& from) const override;
  const char* Module() const override { return "NeuralNets/TConnectedConnections"; }
};

}  // namespace kiln
