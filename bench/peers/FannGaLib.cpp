// A perceptron of FANN, in double precision, whose weights GAlib breeds.

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "FannNetwork.h"
#include "GaLibBreeder.h"
#include "Peers.h"

namespace kiln {

namespace {

class TFannBreeder {
 public:
  TFannBreeder(const TPerceptronTask& task, int individuals, double mutation)
      : data_(task.data), network_(MakeFannNetwork(task.sizes)) {
    GARealGenome genome(network_->total_connections, GARealAlleleSet(-1.0F, 1.0F), Score, this);
    breeder_ = MakeGaLibBreeder(genome, individuals, mutation);
  }

  double Breed(int generations) {
    return SecondsOf([&] {
      for (int n = 0; n < generations; ++n) breeder_->step();
    });
  }

 private:
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
  TFannNetwork network_;
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
