#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "NeuralNets/Maps/TKohonenNetwork.h"
#include "Plot/TPicture.h"

namespace kiln {

// How far neighbouring units of a map are apart (the U-matrix): a cell for each unit, with the mean
// distance to its neighbours, and between two units one with the distance between these. Dark
// ridges divide light regions of similar units. A map of three or more dimensions is shown in
// planes of the last two, as many as there is room for. Of large maps each cell is the mean of
// several. Where a set with classes is given, units have the class of most of its rows that they
// win. REQUIRES: the map has two units; the inputs of `set`, if not null, fit the map.
TPicture DistancesPicture(std::string_view alias, const TKohonenNetwork& map, const Data* set);

// The component planes of these inputs: what the prototypes of units are there.
// REQUIRES: there are these inputs, with a name for each; the map has at most two dimensions.
TPicture ComponentsPicture(std::string_view alias, const TKohonenNetwork& map,
                           std::span<const std::size_t> inputs, std::span<const std::string> names);

}  // namespace kiln
