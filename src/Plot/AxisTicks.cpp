#include "Plot/AxisTicks.h"

#include <algorithm>
#include <cmath>

#include "Shared/NumberFormat.h"

namespace kiln {

namespace {

constexpr int kDigits = 6;

// The digits that tell numbers apart which are `step` from each other; where these are many, enough
// for whole numbers in full.
int DigitsFor(const TAxis& axis, double step) {
  const double largest = std::max(std::abs(axis.lower), std::abs(axis.upper));
  const double before_point = std::floor(std::log10(largest)) + 1.0;
  const double digits = before_point - std::floor(std::log10(step));
  if (!(digits > kDigits)) return kDigits;
  constexpr double kMost = 15.0;
  return static_cast<int>(std::min(std::max(digits, before_point), kMost));
}

// 1, 2 or 5 times a power of ten, at least `least`.
double RoundStep(double least) {
  const double power = std::pow(10.0, std::floor(std::log10(least)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    constexpr double kRounding = 1e-9;
    if (factor * power >= least * (1.0 - kRounding)) return factor * power;
  }
  return 10.0 * power;
}

std::vector<TTick> Linear(const TAxis& axis, std::size_t most) {
  std::vector<TTick> ticks;
  const double step = TickStep(axis, most);
  const int digits = DigitsFor(axis, step);
  const double first = std::ceil(axis.lower / step - 1e-9);
  for (std::size_t i = 0; i <= most; ++i) {
    const double at = (first + static_cast<double>(i)) * step;
    if (at > axis.upper + step * 1e-9) break;
    ticks.push_back({at, FormatGeneral(at, digits)});
  }
  return ticks;
}

// Powers of ten; where these are few, 2 and 5 times them too.
std::vector<TTick> Powers(const TAxis& axis, std::size_t most) {
  constexpr double kRounding = 1e-9;
  const int first = static_cast<int>(std::floor(std::log10(axis.lower) + kRounding));
  const int last = static_cast<int>(std::floor(std::log10(axis.upper) + kRounding));
  const int stride = std::max((last - first) / static_cast<int>(most), 1);
  const bool has_few = last - first <= 2;
  std::vector<TTick> ticks;
  for (int power = first; power <= last; power += stride) {
    for (const double factor : {1.0, 2.0, 5.0}) {
      const double at = factor * std::pow(10.0, power);
      const bool is_inside =
          at >= axis.lower * (1.0 - kRounding) && at <= axis.upper * (1.0 + kRounding);
      if (is_inside && (factor == 1.0 || has_few))
        ticks.push_back({at, FormatGeneral(at, kDigits)});
    }
  }
  return ticks;
}

}  // namespace

double TickStep(const TAxis& axis, std::size_t most) {
  const auto parts = static_cast<double>(std::max<std::size_t>(most, 2));
  const double step = RoundStep(axis.upper / parts - axis.lower / parts);
  return axis.is_whole ? std::max(step, 1.0) : step;
}

std::vector<TTick> RoundTicks(const TAxis& axis, std::size_t most) {
  most = std::max<std::size_t>(most, 2);
  return axis.is_logarithmic ? Powers(axis, most) : Linear(axis, most);
}

double ShareOf(const TAxis& axis, double value) {
  if (!axis.is_logarithmic) return (value - axis.lower) / (axis.upper - axis.lower);
  return std::log(value / axis.lower) / std::log(axis.upper / axis.lower);
}

}  // namespace kiln
