#include "Peers.h"

namespace kiln {

TWork FannPatternTraining(const TPerceptronTask&) {
  return {};
}

TWork FannBatchTraining(const TPerceptronTask&) {
  return {};
}

TWork FannRecall(const TPerceptronTask&) {
  return {};
}

TArrival FannArrival(const TArrivalTask&, double) {
  return {};
}

}  // namespace kiln
