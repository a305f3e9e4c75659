#pragma once

#include <functional>

namespace kiln {

// Called after each epoch with its number, from 0, and its error; false asks training to stop. It
// does not change the network: training may go on in a copy of the weights.
using TEpochObserver = std::function<bool(int epoch, double error)>;

}  // namespace kiln
