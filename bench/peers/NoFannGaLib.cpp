#include "Peers.h"

namespace kiln {

TWork FannGaLibTraining(const TPerceptronTask&, int, double) {
  return {};
}

}  // namespace kiln
