#pragma once

#include "NeuralNets/TBasicConnections.h"
#include "Tarn/TFuzzyLayer.h"

namespace kiln {

// A block whose weights are the centres of membership functions: one connection a function, and one
// patch for all functions of a variable. Its layers never change, and weight penalties pass it
// over: they would pull the centres to 0.
class TCentreConnections : public TBasicConnections {
 public:
  bool IsPenalised() const override { return false; }
  bool IsResizable() const override { return false; }

  // Apply to the centres of each variable, with its part of spans over the whole block, what
  // PlaceCentresEvenly, heedless of flags, MeasureCentreDistances, MeasureCentreGaps,
  // ScaleCentreGradients, LimitCentreSteps and PutCentresInOrder say. REQUIRES: spans have a value
  // for each weight.
  void PlaceEvenly();
  void MeasureDistances(std::span<double> distances) const;
  void MeasureGaps(std::span<double> gaps) const;
  void ScaleGradients(std::span<double> gradients) const;
  void LimitSteps(std::span<const double> before, double share);
  void PutInOrder(std::span<const double> distances);

 protected:
  // The groups of `layer`, which must have so many functions and variables. Throws TException
  // otherwise, and when the layer is null.
  const TMFGroups& GroupsOf(const TFuzzyLayer* layer, std::size_t functions,
                            std::size_t variables) const;
};

}  // namespace kiln
