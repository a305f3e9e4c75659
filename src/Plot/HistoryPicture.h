#pragma once

#include <string_view>

#include "NeuralNets/Training/TTrainHistory.h"
#include "Plot/TPicture.h"

namespace kiln {

// The errors that a trainer called `alias` has seen, by epoch or, where it breeds, by generation:
// in training, on a validation set, where that was measured with the epoch marked that was kept,
// and the average of a generation. REQUIRES: at least two points, see NumDrawn.
TPicture HistoryPicture(std::string_view alias, const TTrainHistory& history, bool breeds);

// How many points of the history can be drawn: errors that are finite numbers.
std::size_t NumDrawn(const TTrainHistory& history);

// An axis for positive values from `lower` to `upper`: logarithmic where they span decades.
TAxis ErrorAxis(double lower, double upper);

}  // namespace kiln
