#pragma once

#include <cstddef>

#include "Export/TCSource.h"

namespace kiln {

class TBasicNetwork;
class TKohonenNetwork;

// The bodies of the function that a file of C defines, by the way in which a network computes.
namespace CFile {

// Layer by layer, each a weighted sum of lower ones, the fuzzy layers of a Tarn, or constant. Only
// layers that the output depends on are written.
// Throws TException for any other layer or block, before anything is written.
void CheckLayers(const TBasicNetwork& network);

// How many bytes of the stack the function takes for the values of layers.
// REQUIRES: CheckLayers has passed, here and below.
std::size_t StackOf(const TBasicNetwork& network);

void WriteLayers(TCSource& source, const TBasicNetwork& network);

// The search of a map for the nearest prototype.
void WriteMap(TCSource& source, const TKohonenNetwork& map);

}  // namespace CFile
}  // namespace kiln
