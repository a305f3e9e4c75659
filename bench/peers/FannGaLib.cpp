// A perceptron of FANN, in double precision, whose weights GAlib breeds.

#include <doublefann.h>
#include <ga/GARealGenome.h>
#include <ga/GASimpleGA.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "Peers.h"

namespace kiln {

namespace {

class TFannBreeder {
 public:
  TFannBreeder(const TPerceptronTask& task, int individuals, double mutation)
      : data_(task.data), network_(Create(task.sizes), fann_destroy) {
    fann_set_activation_function_hidden(network_.get(), FANN_SIGMOID);
    fann_set_activation_function_output(network_.get(), FANN_SIGMOID);
    fann_set_activation_steepness_hidden(network_.get(), 0.5);
    fann_set_activation_steepness_output(network_.get(), 0.5);
    GARealGenome genome(network_->total_connections, GARealAlleleSet(-1.0F, 1.0F), Score, this);
    genome.mutator(GARealUniformMutator);
    breeder_ = std::make_unique<GASimpleGA>(genome);
    breeder_->populationSize(static_cast<unsigned>(individuals));
    breeder_->pCrossover(1.0F);
    breeder_->pMutation(static_cast<float>(mutation));
    breeder_->crossover(GARealOnePointCrossover);
    breeder_->selectScores(GAStatistics::NoScores);
    breeder_->initialize(1);
  }

  double Breed(int generations) {
    return SecondsOf([&] {
      for (int n = 0; n < generations; ++n) breeder_->step();
    });
  }

 private:
  static fann* Create(const std::vector<int>& sizes) {
    const std::vector<unsigned> layers(sizes.begin(), sizes.end());
    return fann_create_standard_array(static_cast<unsigned>(layers.size()), layers.data());
  }

  // The inverse of the root mean square error, Kiln's fitness.
  static float Score(GAGenome& genome) {
    auto& self = *static_cast<TFannBreeder*>(genome.userData());
    const auto& genes = static_cast<GARealGenome&>(genome);
    for (unsigned i = 0; i < self.network_->total_connections; ++i) {
      self.network_->weights[i] = genes.gene(i);
    }
    return static_cast<float>(1.0 / self.Error());
  }

  double Error() {
    double sum = 0.0;
    for (int n = 0; n < data_.DataRows(); ++n) {
      const DataRow row = data_.Row(n);
      std::ranges::copy(row.Inputs, inputs_.begin());
      const double* const outputs = fann_run(network_.get(), inputs_.data());
      for (std::size_t i = 0; i < row.Outputs.size(); ++i) {
        sum += (outputs[i] - row.Outputs[i]) * (outputs[i] - row.Outputs[i]);
      }
    }
    return std::sqrt(sum / data_.DataRows() / data_.Outputs());
  }

  const Data& data_;
  std::unique_ptr<fann, decltype(&fann_destroy)> network_;
  std::vector<double> inputs_ = std::vector<double>(static_cast<std::size_t>(data_.Inputs()));
  std::unique_ptr<GASimpleGA> breeder_;
};

}  // namespace

TWork FannGaLibTraining(const TPerceptronTask& task, int individuals, double mutation) {
  return [breeder = std::make_shared<TFannBreeder>(task, individuals, mutation)](int passes) {
    return breeder->Breed(passes);
  };
}

}  // namespace kiln
