#pragma once

#include <string_view>

#include "FileHandler/Syntax/ParseTools.h"
#include "FileHandler/Syntax/Writer.h"

namespace kiln {
class TBasicLayer;
class TConditionLayer;
class TFuzzyLayer;
class TTarnOutputLayer;
}  // namespace kiln

// The sections of a network file that only fuzzy layers have: how many membership functions belong
// to each input of a condition layer ("[InputMF]"), or to each output of an output layer
// ("[OutputMF]").
namespace kiln::NetworkFiler {

void SaveInputMF(FileTools::Writer& writer, const TConditionLayer& layer);
void SaveOutputMF(FileTools::Writer& writer, const TTarnOutputLayer& layer);

// Reads a section, behind its start tag, into the layer. `tag` is "InputMF" or "OutputMF", in any
// case. Throws FileTools::Error, and TAssertion for an index that the layer does not have.
void LoadMF(FileTools::Reader& reader, TFuzzyLayer& layer, std::string_view tag);

// Writes the section of a fuzzy layer, and nothing for a layer of any other kind.
void WriteMembership(FileTools::Writer& writer, const TBasicLayer& layer);

// Reads the section of a fuzzy layer, which `next` must open, and returns the first item behind it.
// For a layer of any other kind reads nothing and returns `next`.
FileTools::ParseItem ReadMembership(FileTools::Reader& reader, const FileTools::ParseItem& next,
                                    TBasicLayer& layer);

}  // namespace kiln::NetworkFiler
