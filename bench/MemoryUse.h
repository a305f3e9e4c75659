#pragma once

#include <functional>

namespace kiln {

// Bytes that the program has taken from the heap and not given back.
double HeapInUse();

// By how many bytes the resident memory of the program rises, at its highest, during an action.
double PeakDuring(const std::function<void()>& action);

}  // namespace kiln
