#pragma once

#include <string_view>

#include "FileHandler/Syntax/ParseTools.h"

namespace kiln {
class TBasicLayer;
class TFuzzyLayer;
}  // namespace kiln

// Reads what SaveTarn.h writes.
namespace kiln::NetworkFiler {

// Reads a section, behind its start tag, into the layer. `tag` is "INPUTMF" or "OUTPUTMF", in any
// case. Throws FileTools::Error, and TAssertion for an index that the layer does not have or a
// number of functions that no variable may have.
void LoadMF(FileTools::Reader& reader, TFuzzyLayer& layer, std::string_view tag);

// The section of a fuzzy layer, which has to begin with `next`; nothing for a layer of any other
// kind. Returns the first item behind it.
FileTools::ParseItem ReadMembership(FileTools::Reader& reader, const FileTools::ParseItem& next,
                                    TBasicLayer& layer);

}  // namespace kiln::NetworkFiler
