#include "TPerceptronTask.h"

#include <sstream>
#include <utility>

#include "Shared/Random.h"

namespace kiln {

TPerceptronTask::TPerceptronTask(std::vector<int> layer_sizes, int patterns)
    : sizes(std::move(layer_sizes)),
      network(std::make_shared<TMLPNetwork>(sizes, true)),
      data(patterns, sizes.front(), sizes.back(), false) {
  Random::Seed(1);
  network->Randomize(-0.5, 0.5);
  std::vector<double> input(network->NumInputs());
  std::vector<double> output(network->NumOutputs());
  for (int n = 0; n < patterns; ++n) {
    for (double& value : input) value = Random::Uniform(0.0, 1.0);
    for (double& value : output) value = Random::Uniform(0.1, 0.9);
    data.AddRow(input, output);
  }
}

std::string TPerceptronTask::Shape() const {
  std::ostringstream shape;
  for (const int size : sizes) shape << (shape.view().empty() ? "" : "-") << size;
  return shape.str();
}

}  // namespace kiln
