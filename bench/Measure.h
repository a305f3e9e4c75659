#pragma once

#include <ctime>
#include <functional>
#include <span>
#include <vector>

namespace kiln {

// The seconds of processor time that `passes` passes of a piece of work take, whatever stands
// around them left out. An empty one stands for a peer that is not installed.
using TWork = std::function<double(int passes)>;

// A piece of work and how often it is done in one measurement.
struct TMeasured {
  TWork work;
  int passes;
};

// Seconds of processor time of this process: other programs on the machine matter less than on the
// wall clock.
inline double ProcessorTime() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// Seconds on the clock on the wall, for what several cores do.
inline double WallTime() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double Median(std::vector<double>& values);

template <typename TAction>
double SecondsOf(const TAction& action) {
  const double start = ProcessorTime();
  action();
  return ProcessorTime() - start;
}

// A number of passes that takes long enough for the clock and the scheduler not to matter.
int PassesFor(const TWork& work);

// Measures each piece of work in turn, `repetitions` times over, so that whatever disturbs the
// machine meets all of them. Returns the median of the seconds that a pass took, one for each.
std::vector<double> MedianSeconds(std::span<const TMeasured> pieces, int repetitions);

}  // namespace kiln
