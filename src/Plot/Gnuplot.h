#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kiln {

// gnuplot cannot be run, or has not done what it was told.
class TGnuplotError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// There is no gnuplot on the path.
class TGnuplotMissing : public TGnuplotError {
 public:
  TGnuplotMissing() : TGnuplotError("gnuplot is not installed") {}
};

// Runs gnuplot, which is looked for on the path, without a shell and without anybody's settings,
// gives it the script and hands on what it writes to its standard output, piece by piece.
//
// Throws TGnuplotError when it fails, is killed or draws nothing, TInterrupted when the end of the
// command is requested meanwhile, and whatever `take` throws. gnuplot has then ended too.
void RunGnuplot(std::string_view script, const std::function<void(std::string_view piece)>& take);

}  // namespace kiln
