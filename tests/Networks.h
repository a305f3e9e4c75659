#pragma once

#include <memory>
#include <string>

#include "DataObject/Data.h"
#include "Failures.h"
#include "NeuralNets/TErrorObj.h"
#include "NeuralNets/TMLPNetwork.h"
#include "Shared/Random.h"
#include "Values.h"

namespace kiln {

inline std::string AssertionText(const std::string& expression, const std::string& module,
                                 int line) {
  return "Assertion failed: " + expression + ", file " + module + ", line " + std::to_string(line);
}

// A perceptron whose weights are drawn from [-1, 1].
inline std::shared_ptr<TMLPNetwork> MakePerceptron(const TSizes& sizes, bool bias) {
  auto network = std::make_shared<TMLPNetwork>(sizes, bias);
  network->Randomize(-1.0, 1.0);
  return network;
}

// A ring that has wrapped, with random rows in [lower, upper].
inline std::unique_ptr<Data> MakePatterns(int rows, int inputs, int outputs, double lower,
                                          double upper) {
  auto data = std::make_unique<Data>(rows, inputs, outputs, false);
  for (int n = 0; n < rows + rows / 2; ++n) {
    TValues input(static_cast<std::size_t>(inputs));
    TValues output(static_cast<std::size_t>(outputs));
    for (double& value : input) value = Random::Uniform(lower, upper);
    for (double& value : output) value = Random::Uniform(lower, upper);
    data->AddRow(input, output);
  }
  return data;
}

// The root mean square error of a copy of the network.
inline double ErrorOn(const TBasicNetwork& network, const Data& data) {
  TErrorRMSObj error(network.NumOutputs());
  return network.Clone()->RecallError(&data, &error);
}

// The derivative of `function` by `x`, as a central difference.
template <typename TFunction>
double Slope(double& x, double step, const TFunction& function) {
  const double at = x;
  x = at + step;
  const double above = function();
  x = at - step;
  const double below = function();
  x = at;
  return (above - below) / (2 * step);
}

}  // namespace kiln
