#pragma once

#include "Tarn/TCentreConnections.h"

namespace kiln {

// From inputs to a condition layer: each condition neuron is connected with its input alone, by the
// centre of its membership function. Other layers cannot be joined: TException.
class TToConditionConnections : public TCentreConnections {
 public:
  static constexpr std::string_view kKindName = "ToConditionConnections";

  std::string_view KindName() const override { return kKindName; }
  std::unique_ptr<TBasicConnections> Clone() const override;

 private:
  std::vector<TPatchShape> Layout(const TBasicLayer& to, const TBasicLayer& from) const override;
  const char* Module() const override { return "Tarn/TToConditionConnections"; }
};

}  // namespace kiln
