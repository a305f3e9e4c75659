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

  // Apply the function of Centres.h with the longer name (PlaceCentresEvenly, MeasureCentreGaps)
  // to the centres of each variable. PlaceEvenly moves frozen centres too.
  // REQUIRES: spans have a value for each weight of the block.
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
