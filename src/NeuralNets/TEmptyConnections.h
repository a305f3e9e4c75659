#pragma once

#include "NeuralNets/TBasicConnections.h"

namespace kiln {

// What stands between two layers that are not connected: it has no weights and contributes nothing.
class TEmptyConnections : public TBasicConnections {
 public:
  bool IsConnected() const override { return false; }
  std::string_view KindName() const override { return "Empty"; }
  std::unique_ptr<TBasicConnections> Clone() const override;

  void AddRow(std::size_t) override {}
  void RemoveRow(std::size_t) override {}
  void AddColumn(std::size_t) override {}
  void RemoveColumn(std::size_t) override {}

 private:
  std::vector<TPatchShape> Layout(const TBasicLayer& to, const TBasicLayer& from) const override;
  const char* Module() const override { return "NeuralNets/TEmptyConnections"; }
};

}  // namespace kiln
