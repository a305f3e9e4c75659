#pragma once

#include <string_view>

#include "FileHandler/ParseTools.h"
#include "FileHandler/Writer.h"
#include "Tarn/TConditionLayer.h"
#include "Tarn/TTarnOutputLayer.h"

// The sections of a network file that only fuzzy layers have: how many membership functions belong
// to each input of a condition layer, and to each output of an output layer.
namespace kiln::NetworkFiler {

void SaveInputMF(FileTools::Writer& writer, const TConditionLayer& layer);
void SaveOutputMF(FileTools::Writer& writer, const TTarnOutputLayer& layer);

// Reads a section, behind its start tag, into the layer. `tag` is "INPUTMF" or "OUTPUTMF", in any
// case. Throws FileTools::Error, and TAssertion for an index that the layer does not have or a
// number of functions that no variable may have.
void LoadMF(FileTools::Reader& reader, TFuzzyLayer& layer, std::string_view tag);

// The same for layers of any kind: writes the section that the layer has, if any; reads it, where
// it must begin with `next`, and returns the first item behind it.
void WriteMembership(FileTools::Writer& writer, const TBasicLayer& layer);
FileTools::ParseItem ReadMembership(FileTools::Reader& reader, const FileTools::ParseItem& next,
                                    TBasicLayer& layer);

}  // namespace kiln::NetworkFiler
