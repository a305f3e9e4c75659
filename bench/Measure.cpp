#include "Measure.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace kiln {

namespace {

constexpr double kLongEnough = 0.2;  // seconds

}  // namespace

double Median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

int PassesFor(const TWork& work) {
  int passes = 1;
  while (work(passes) < kLongEnough) passes *= 2;
  return passes;
}

std::vector<double> MedianSeconds(std::span<const TMeasured> pieces, int repetitions) {
  std::vector<std::vector<double>> seconds(pieces.size());
  for (int n = 0; n < repetitions; ++n) {
    for (std::size_t i = 0; i < pieces.size(); ++i) {
      seconds[i].push_back(pieces[i].work(pieces[i].passes) / pieces[i].passes);
    }
  }
  std::vector<double> medians;
  std::ranges::transform(seconds, std::back_inserter(medians), Median);
  return medians;
}

}  // namespace kiln
