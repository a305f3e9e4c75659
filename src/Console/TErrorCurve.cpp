#include "Console/TErrorCurve.h"

#include <algorithm>
#include <cmath>

#include "Console/Screen.h"
#include "Plot/HistoryPicture.h"
#include "Plot/TextPicture.h"

namespace kiln {

void TErrorCurve::Clear() {
  *this = {};
}

void TErrorCurve::Add(int done, double error) {
  if (done <= latest_ || !std::isfinite(error)) return;
  latest_ = done;
  if (++skipped_ < stride_) return;
  skipped_ = 0;
  points_.push_back({static_cast<double>(done), error});
  constexpr std::size_t kMany = 1024;  // more than there are dots in a line
  if (points_.size() < kMany) return;
  stride_ *= 2;
  for (std::size_t i = 0; i < kMany / 2; ++i) points_[i] = points_[2 * i];
  points_.resize(kMany / 2);
}

std::string TErrorCurve::Draw(std::size_t columns, std::size_t lines) const {
  constexpr std::size_t kNarrowest = 20;
  constexpr std::size_t kLowest = 5;
  if (points_.size() < 2 || columns < kNarrowest || lines < kLowest) return {};
  const auto [least, most] = std::ranges::minmax_element(points_, {}, &TPoint::y);
  TPanel panel;
  panel.y = ErrorAxis(least->y, most->y);
  panel.y.name.clear();
  panel.x = {"", points_.front().x, points_.back().x, false, {}, true};
  panel.series.push_back({"", TStroke::kLine, 0, points_});
  for (TPoint& point : panel.series.front().points) point.y = std::max(point.y, panel.y.lower);
  return DrawCurve(panel, columns, lines,
                   Screen::HasUnicode() ? TCharacters::kUnicode : TCharacters::kAscii);
}

}  // namespace kiln
