#include "Tarn/TCentreConnections.h"

#include <string>

#include "Shared/TException.h"
#include "Tarn/Centres.h"

namespace kiln {

void TCentreConnections::PlaceEvenly() {
  for (const TPatchShape& shape : Patches()) {
    PlaceCentresEvenly(Weights().subspan(shape.offset, shape.Size()));
  }
}

void TCentreConnections::MeasureDistances(std::span<double> distances) const {
  for (const TPatchShape& shape : Patches()) {
    MeasureCentreDistances(Weights().subspan(shape.offset, shape.Size()),
                           distances.subspan(shape.offset, shape.Size()));
  }
}

void TCentreConnections::MeasureGaps(std::span<double> gaps) const {
  for (const TPatchShape& shape : Patches()) {
    MeasureCentreGaps(Weights().subspan(shape.offset, shape.Size()),
                      gaps.subspan(shape.offset, shape.Size()));
  }
}

void TCentreConnections::ScaleGradients(std::span<double> gradients) const {
  for (const TPatchShape& shape : Patches()) {
    ScaleCentreGradients(Weights().subspan(shape.offset, shape.Size()),
                         gradients.subspan(shape.offset, shape.Size()));
  }
}

void TCentreConnections::LimitSteps(std::span<const double> before, double share) {
  for (const TPatchShape& shape : Patches()) {
    LimitCentreSteps(before.subspan(shape.offset, shape.Size()),
                     Weights().subspan(shape.offset, shape.Size()), share);
  }
}

void TCentreConnections::PutInOrder(std::span<const double> distances) {
  for (const TPatchShape& shape : Patches()) {
    const TWeightPatch patch = PatchOf(shape);
    PutCentresInOrder({patch.weights, patch.Size()}, distances.subspan(shape.offset, shape.Size()),
                      patch.masks);
  }
}

const TMFGroups& TCentreConnections::GroupsOf(const TFuzzyLayer* layer, std::size_t functions,
                                              std::size_t variables) const {
  if (!layer || layer->Groups().NumMF() != functions ||
      layer->Groups().NumVariables() != variables) {
    const std::string kind(KindName());
    throw TException(kind + " do not fit these layers", "Bad Parameter", "T" + kind + "::Layout");
  }
  return layer->Groups();
}

}  // namespace kiln
