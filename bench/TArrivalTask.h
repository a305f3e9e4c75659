#pragma once

#include <memory>
#include <string>
#include <vector>

#include "DataObject/Data.h"

namespace kiln {

// Something to be learned by a perceptron until the error is small enough. Errors are root mean
// square ones over a unit.
struct TArrivalTask {
  std::string name;
  std::vector<int> sizes;  // of the layers, one of them hidden: tanh
  bool has_linear_output;  // else sigmoid
  std::shared_ptr<const Data> learn;
  std::shared_ptr<const Data> judged;  // the rows whose error counts
  double unit;
  std::string method;  // with which Kiln learns it
};

// The Mackey-Glass series, as in examples/series: 500 rows, judged on the 500 that follow, in units
// of the standard deviation of the series.
TArrivalTask SeriesTask();

// The 100 flowers from which examples/iris learns, judged on the same.
TArrivalTask IrisTask();

// The hilly function `peaks` of two variables at 400 random places, judged on the same, in units of
// its standard deviation there.
TArrivalTask PeaksTask();

// Kiln from the weights of a seed: the seconds of processor time until the error is
// below `error`, infinity where it does not come to that in 2000 epochs.
double KilnArrival(const TArrivalTask& task, double error, int seed);

// The same with a Tarn of 16 rules and 5 terms an input. REQUIRES: a task within [0, 1].
double KilnTarnArrival(const TArrivalTask& task, double error, int seed);

}  // namespace kiln
