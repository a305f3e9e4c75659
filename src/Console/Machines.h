#pragma once

#include <memory>

#include "Shared/TTransport.h"

namespace kiln {

// Joins the processes that were started together with this one, as by mpirun; null when it was
// started by itself or has been built without MPI. The processes part when the transport goes.
std::unique_ptr<TTransport> JoinMachines();

}  // namespace kiln
