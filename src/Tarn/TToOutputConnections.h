#pragma once

#include "Tarn/TCentreConnections.h"

namespace kiln {

// From actions to an output layer: each action neuron is connected with its output alone, by the
// centre of its membership function. Other layers cannot be joined (TException), nor an output of
// fewer than two functions (TAssertion "NdxMF >= 2").
class TToOutputConnections : public TCentreConnections {
 public:
  static constexpr std::string_view kKindName = "ToOutputConnections";

  std::string_view KindName() const override { return kKindName; }
  std::unique_ptr<TBasicConnections> Clone() const override;

 private:
  std::vector<TPatchShape> Layout(const TBasicLayer& to, const TBasicLayer& from) const override;
  const char* Module() const override { return "Tarn/TToOutputConnections"; }
};

}  // namespace kiln
