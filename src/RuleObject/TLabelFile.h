#pragma once

#include <string>

#include "FileHandler/Syntax/ParseTools.h"
#include "FileHandler/Syntax/Writer.h"
#include "RuleObject/TNetLabel.h"

// Label files: how many terms each variable has, and the names of them all. docs/file-formats.md
// describes the text.
namespace kiln::TLabelFile {

// Writes the block of the labels, without the version line that a file starts with; missing names
// are left out. The second form writes a whole file and throws FileTools::SaveError, in which case
// what stood at `path` is left alone.
void SaveLabels(FileTools::Writer& out, const TNetLabel& labels);
void SaveLabels(const std::string& path, const TNetLabel& labels);

// Throws FileTools::Error for a fault in the text, counts that it has no room for included, and
// TException for a name whose number is out of bounds. The second form also throws
// FileTools::OpenError.
TNetLabel LoadLabels(FileTools::Reader& reader);
TNetLabel LoadLabels(const std::string& path);

}  // namespace kiln::TLabelFile
