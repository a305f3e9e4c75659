#include "NeuralNets/Training/TTrainHistory.h"

#include <algorithm>

namespace kiln {

void TTrainHistory::Reserve(int epochs) {
  const std::size_t more = static_cast<std::size_t>(std::max(epochs, 0) / stride_) + 1;
  const std::size_t needed = std::min(points_.size() + more, kMaxPoints);
  // Many short calls do not move all points each.
  if (needed > points_.capacity()) points_.reserve(std::max(needed, 2 * points_.capacity()));
}

void TTrainHistory::Add(double training, double validation, double average) {
  last_ = {epochs_ + 1, training, validation, average};
  if (validation < (least_ ? least_->validation : std::numeric_limits<double>::infinity())) {
    least_ = last_;
  }
  if (epochs_ % stride_ == 0) points_.push_back(*last_);
  ++epochs_;
  if (points_.size() < kMaxPoints - 1) return;
  stride_ *= 2;
  std::erase_if(points_, [this](const TTrainPoint& p) { return (p.epoch - 1) % stride_ != 0; });
}

void TTrainHistory::ReturnTo(const TMark& mark) {
  epochs_ = mark.epochs;
  least_ = mark.least;
  last_ = mark.last;
  std::erase_if(points_, [&](const TTrainPoint& point) { return point.epoch > mark.epochs; });
}

std::vector<TTrainPoint> TTrainHistory::Points() const {
  std::vector<TTrainPoint> points = points_;
  for (const auto& extra : {least_, last_}) {
    if (!extra) continue;
    const auto place = std::ranges::lower_bound(points, extra->epoch, {}, &TTrainPoint::epoch);
    if (place == points.end() || place->epoch != extra->epoch) points.insert(place, *extra);
  }
  return points;
}

}  // namespace kiln
