#pragma once

#include "NeuralNets/TBasicNetwork.h"
#include "RuleObject/TNetLabel.h"

namespace kiln {

// Default labels for a network, of whatever kind. Its inputs are the neurons of layer 1. Where
// layer 2 makes them fuzzy, inputs have terms, and in a network of six layers of which the last
// makes values of fuzzy actions outputs have terms too. In any other network the outputs are the
// neurons of layer 3, or of layer 4 behind a fuzzy layer, or of the last layer where there are
// fewer.
TNetLabel MakeDefaultLabels(const TBasicNetwork& network);

}  // namespace kiln
