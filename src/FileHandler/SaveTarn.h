#pragma once

#include "FileHandler/Syntax/Writer.h"

namespace kiln {
class TBasicLayer;
class TConditionLayer;
class TTarnOutputLayer;
}  // namespace kiln

// Writes the sections of a network file that only fuzzy layers have: how many membership functions
// belong to each input of a condition layer, and to each output of an output layer.
namespace kiln::NetworkFiler {

void SaveInputMF(FileTools::Writer& writer, const TConditionLayer& layer);
void SaveOutputMF(FileTools::Writer& writer, const TTarnOutputLayer& layer);

// The section that a layer of any kind has, if any.
void WriteMembership(FileTools::Writer& writer, const TBasicLayer& layer);

}  // namespace kiln::NetworkFiler
