#pragma once

#include <memory>
#include <string>
#include <vector>

#include "DataObject/Data.h"
#include "NeuralNets/TMLPNetwork.h"

namespace kiln {

// A perceptron with a bias and random weights, and random patterns for it.
struct TPerceptronTask {
  TPerceptronTask(std::vector<int> layer_sizes, int patterns);

  // As "4-8-3".
  std::string Shape() const;

  std::vector<int> sizes;
  std::shared_ptr<TMLPNetwork> network;
  Data data;
};

// The settings of every training here.
inline constexpr double kLearningRate = 0.001;
inline constexpr double kMomentum = 0.5;

}  // namespace kiln
