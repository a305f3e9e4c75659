#pragma once

#include <cstddef>

namespace kiln {

class TBasicNetwork;

// Whether every block leads from a layer to a later one, so that no output outlives its pattern.
bool IsFeedForward(const TBasicNetwork& network);

// Whether a layer of the network is the input layer, or passes weighted sums of others through
// activation functions, and does nothing else.
bool IsPlainLayer(const TBasicNetwork& network, std::size_t index);

// Whether the network is feed-forward and every layer but the input layer passes weighted sums of
// lower layers through activation functions, and does nothing else. How such a network computes can
// be laid out in advance.
bool IsPlain(const TBasicNetwork& network);

// Computes the layers of a plain network that nothing leads to, such as a bias. Their outputs stay
// the same from pattern to pattern.
void ComputeConstantLayers(TBasicNetwork& network);

}  // namespace kiln
