#pragma once

#include <string_view>

#include "FileHandler/Syntax/ParseTools.h"
#include "FileHandler/Syntax/Writer.h"
#include "Membership/TMFSetList.h"

// Lists of membership functions as a section "[MFList]" of a larger file. docs/file-formats.md
// describes the text.
namespace kiln::TFuzzyMFFiler {

// Writes a section. Numbers get seven decimals. A slot without a function is written as one of the
// type "Empty", which LoadMFlist leaves empty again. Throws TAssertion for a function of a type
// that the format does not have. REQUIRES: every slot of the list holds a set.
void SaveMFList(FileTools::Writer& out, const TMFSetList& list);

// Reads the section that comes next in the block `current_block`. A function goes into the slot
// that its index names; one of an unknown type is passed over and its slot stays empty.
//
// Throws FileTools::Error for a fault in the text, counts that the text has no room for included,
// and TException for a range that is upside down ("UpperBound must be > LowerBound") and a slot
// that its set does not have.
TMFSetList LoadMFlist(FileTools::Reader& reader, std::string_view current_block);

}  // namespace kiln::TFuzzyMFFiler
