#include "Console/Machines.h"

namespace kiln {

std::unique_ptr<TTransport> JoinMachines() {
  return nullptr;
}

}  // namespace kiln
