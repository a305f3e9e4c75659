#pragma once

#include <string>

#include "Plot/TPicture.h"

namespace kiln {

enum class TPictureFormat { kSvg, kPng, kPdf };

// A script for gnuplot (5.2 or later) that draws a picture and writes it to the standard output.
//
// Texts stand in single quotes, in which gnuplot obeys nothing, and are not scanned for markup;
// data blocks hold nothing but numbers. So no text can become a command.
std::string GnuplotScript(const TPicture& picture, TPictureFormat format);

}  // namespace kiln
