#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Plot/TPicture.h"

namespace kiln {

// The errors of a training that is under way, as a curve of characters.
class TErrorCurve {
 public:
  void Clear();

  // Takes the error after so many epochs; anything but a later epoch is passed over. Of many points
  // it keeps every second, fourth ... one.
  void Add(int done, double error);

  // Exactly so many lines of at most so many columns; nothing where there are too few points or too
  // little room.
  std::string Draw(std::size_t columns, std::size_t lines) const;

 private:
  std::vector<TPoint> points_;
  int stride_ = 1;   // of the calls of Add that bring something new
  int skipped_ = 0;  // since the last point
  int latest_ = 0;
};

}  // namespace kiln
