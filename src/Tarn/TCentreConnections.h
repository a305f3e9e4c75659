#pragma once

#include "NeuralNets/TBasicConnections.h"

namespace kiln {

// A block whose weights are the centres of membership functions: one connection a function, and one
// patch for all functions of a variable. Its layers never change.
class TCentreConnections : public TBasicConnections {
 public:
  bool IsResizable() const override { return false; }

  // Apply to the centres of each variable what PlaceCentresEvenly, heedless of flags, and
  // PutCentresInOrder say.
  void PlaceEvenly();
  void PutInOrder();
};

}  // namespace kiln
