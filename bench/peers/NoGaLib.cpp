#include "Peers.h"

namespace kiln {

TWork GaLibBreeding(int, int, double) {
  return {};
}

}  // namespace kiln
