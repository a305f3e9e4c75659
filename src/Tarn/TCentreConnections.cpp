#include "Tarn/TCentreConnections.h"

#include "Tarn/Centres.h"

namespace kiln {

void TCentreConnections::PlaceEvenly() {
  for (const TPatchShape& shape : Patches()) {
    PlaceCentresEvenly(Weights().subspan(shape.offset, shape.Size()));
  }
}

void TCentreConnections::PutInOrder() {
  for (const TPatchShape& shape : Patches()) {
    const TWeightPatch patch = PatchOf(shape);
    PutCentresInOrder({patch.weights, patch.Size()}, patch.masks);
  }
}

}  // namespace kiln
