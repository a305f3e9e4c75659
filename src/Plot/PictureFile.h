#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Plot/TPicture.h"

namespace kiln::PictureFile {

// Whether the path ends, in any case, in one of the endings that Save knows.
bool HasKnownEnding(std::string_view path);

// Those endings, for people.
inline constexpr char kEndings[] = ".svg, .png, .pdf, .txt or .gp";

// Draws a picture into the file at `path`, as its ending says: .svg, .png and .pdf are drawn by
// gnuplot, .gp is the script for it, .txt is of characters, 80 a line. A failure leaves an old file
// as it was. Throws FileTools::SaveError, TGnuplotError, TInterrupted.
// REQUIRES: HasKnownEnding(path).
void Save(const std::string& path, const TPicture& picture);

}  // namespace kiln::PictureFile
