// FANN's perceptrons, in double precision.

#include <doublefann.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "FannNetwork.h"
#include "Peers.h"
#include "Shared/Random.h"

namespace kiln {

namespace {

fann_train_data* Copy(const Data& data) {
  fann_train_data* copy = fann_create_train(static_cast<unsigned>(data.DataRows()),
                                            static_cast<unsigned>(data.Inputs()),
                                            static_cast<unsigned>(data.Outputs()));
  for (int n = 0; n < data.DataRows(); ++n) {
    const DataRow row = data.Row(n);
    std::ranges::copy(row.Inputs, copy->input[n]);
    std::ranges::copy(row.Outputs, copy->output[n]);
  }
  return copy;
}

class TFannTask {
 public:
  explicit TFannTask(const TPerceptronTask& task)
      : network_(MakeFannNetwork(task.sizes)), data_(Copy(task.data), fann_destroy_train) {
    fann_randomize_weights(network_.get(), -0.5, 0.5);
    fann_set_learning_rate(network_.get(), static_cast<float>(kLearningRate));
    fann_set_learning_momentum(network_.get(), static_cast<float>(kMomentum));
  }

  double Train(fann_train_enum algorithm, int epochs) {
    fann_set_training_algorithm(network_.get(), algorithm);
    return SecondsOf([&] {
      for (int n = 0; n < epochs; ++n) fann_train_epoch(network_.get(), data_.get());
    });
  }

  double Recall(int passes) {
    std::vector<double> outputs(std::size_t{data_->num_data} * data_->num_output);
    return SecondsOf([&] {
      for (int n = 0; n < passes; ++n) RunAll(outputs);
    });
  }

 private:
  void RunAll(std::vector<double>& outputs) {
    auto place = outputs.begin();
    for (unsigned n = 0; n < data_->num_data; ++n) {
      place = std::copy_n(fann_run(network_.get(), data_->input[n]), data_->num_output, place);
    }
  }

  TFannNetwork network_;
  std::unique_ptr<fann_train_data, decltype(&fann_destroy_train)> data_;
};

// An error over all rows, in the unit of a task.
double ErrorOn(fann* network, const fann_train_data& data, double unit) {
  double sum = 0.0;
  for (unsigned n = 0; n < data.num_data; ++n) {
    const double* outputs = fann_run(network, data.input[n]);
    for (unsigned i = 0; i < data.num_output; ++i) {
      sum += (outputs[i] - data.output[n][i]) * (outputs[i] - data.output[n][i]);
    }
  }
  return std::sqrt(sum / data.num_data / data.num_output) / unit;
}

TWork Training(const TPerceptronTask& task, fann_train_enum algorithm) {
  return [peer = std::make_shared<TFannTask>(task), algorithm](int passes) {
    return peer->Train(algorithm, passes);
  };
}

}  // namespace

TWork FannPatternTraining(const TPerceptronTask& task) {
  return Training(task, FANN_TRAIN_INCREMENTAL);
}

TWork FannBatchTraining(const TPerceptronTask& task) {
  return Training(task, FANN_TRAIN_BATCH);
}

TWork FannRecall(const TPerceptronTask& task) {
  return [peer = std::make_shared<TFannTask>(task)](int passes) { return peer->Recall(passes); };
}

TArrival FannArrival(const TArrivalTask& task, double error) {
  return [&task, error](int seed) {
    constexpr int kEpochs = 10000;
    const TFannNetwork network = MakeFannNetwork(task.sizes);
    const std::unique_ptr<fann_train_data, decltype(&fann_destroy_train)> learn(Copy(*task.learn),
                                                                                fann_destroy_train);
    const std::unique_ptr<fann_train_data, decltype(&fann_destroy_train)> judged(
        Copy(*task.judged), fann_destroy_train);
    fann_set_activation_function_hidden(network.get(), FANN_SIGMOID_SYMMETRIC);
    fann_set_activation_function_output(network.get(),
                                        task.has_linear_output ? FANN_LINEAR : FANN_SIGMOID);
    fann_set_training_algorithm(network.get(), FANN_TRAIN_RPROP);
    Random::Seed(static_cast<std::uint32_t>(seed));
    std::generate_n(network->weights, network->total_connections,
                    [] { return Random::Uniform(-1.0, 1.0); });
    double seconds = 0.0;
    for (int n = 0; n < kEpochs; ++n) {
      seconds += SecondsOf([&] { fann_train_epoch(network.get(), learn.get()); });
      if (ErrorOn(network.get(), *judged, task.unit) < error) return seconds;
    }
    return std::numeric_limits<double>::infinity();
  };
}

}  // namespace kiln
