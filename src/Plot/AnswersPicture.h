#pragma once

#include <string_view>

#include "DataObject/Data.h"
#include "NeuralNets/TBasicNetwork.h"
#include "NeuralNets/TScore.h"
#include "Plot/TPicture.h"

namespace kiln {

// More classes than these make no table that anybody could read.
inline constexpr std::size_t kMostClassesInTable = 60;

// Which classes were taken for which: a row for each expected class, shaded by its share of the
// row. REQUIRES: the classes are at most kMostClassesInTable, and those of the set.
TPicture ConfusionPicture(std::string_view network_alias, std::string_view set_alias,
                          const Data& set, const TConfusion& classes);

// What a network answers against what is expected of it, a panel for each output; the diagonal is
// where both agree. Of many rows every so many-th is shown, and the title says so.
// REQUIRES: the set fits the network and has rows.
TPicture AnswersPicture(std::string_view network_alias, std::string_view set_alias,
                        const TBasicNetwork& network, const Data& set);

}  // namespace kiln
