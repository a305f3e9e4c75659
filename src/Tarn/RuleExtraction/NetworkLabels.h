#pragma once

#include <span>
#include <string>

#include "DataObject/Data.h"
#include "NeuralNets/TBasicNetwork.h"
#include "RuleObject/TNetLabel.h"

namespace kiln {

// Default labels for a network, of whatever kind. Its inputs are the neurons of layer 1. Where
// layer 2 makes them fuzzy, inputs have terms, and in a network of six layers of which the last
// makes values of fuzzy actions outputs have terms too. In any other network the outputs are the
// neurons of layer 3, or of layer 4 behind a fuzzy layer, or of the last layer where there are
// fewer.
TNetLabel MakeDefaultLabels(const TBasicNetwork& network);

// Names the variables of a side as the columns of a data set are called, where these have names and
// are as many. Names become words of the file syntax, and of names that come out the same all but
// the first get a number.
void NameVariables(TNetLabel& labels, const ColumnNames& names);

// Names the terms of every input, or output, that has as many terms as there are words.
void NameInputTerms(TNetLabel& labels, std::span<const std::string> terms);
void NameOutputTerms(TNetLabel& labels, std::span<const std::string> terms);

}  // namespace kiln
