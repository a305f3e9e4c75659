#include "TArrivalTask.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>

#include "FileHandler/Filer.h"
#include "KQmessage/TKQstructure.h"
#include "Measure.h"
#include "NeuralNets/TErrorObj.h"
#include "NeuralNets/TMLPNetwork.h"
#include "NeuralNets/Training/TBackpropModule.h"
#include "Shared/Random.h"
#include "Tarn/TTarnBP.h"

namespace kiln {

namespace {

// Steps of a tenth, by Runge-Kutta of fourth order; every tenth value is one of the series.
std::vector<double> MackeyGlass(std::size_t count) {
  constexpr std::size_t kSteps = 10;
  constexpr std::size_t kDelay = 17 * kSteps;
  constexpr double kStep = 1.0 / kSteps;
  std::vector<double> x(kDelay + count * kSteps + 1);  // 0 before the start
  x[kDelay] = 1.2;
  const auto slope = [](double now, double delayed) {
    return 0.2 * delayed / (1.0 + std::pow(delayed, 10)) - 0.1 * now;
  };
  for (std::size_t k = kDelay; k + 1 < x.size(); ++k) {
    const double first = x[k - kDelay];
    const double last = x[k - kDelay + 1];
    const double middle = (first + last) / 2.0;
    const double k1 = slope(x[k], first);
    const double k2 = slope(x[k] + kStep / 2.0 * k1, middle);
    const double k3 = slope(x[k] + kStep / 2.0 * k2, middle);
    const double k4 = slope(x[k] + kStep * k3, last);
    x[k + 1] = x[k] + kStep / 6.0 * (k1 + 2.0 * k2 + 2.0 * k3 + k4);
  }
  std::vector<double> series(count);
  for (std::size_t t = 0; t < count; ++t) series[t] = x[kDelay + t * kSteps];
  const auto [low, high] = std::minmax_element(series.begin() + 100, series.end());
  const double base = *low;
  const double range = *high - base;
  for (double& value : series) value = 0.1 + 0.8 * (value - base) / range;
  return series;
}

double Peaks(double x, double y) {
  return 3.0 * (1.0 - x) * (1.0 - x) * std::exp(-x * x - (y + 1.0) * (y + 1.0)) -
         10.0 * (x / 5.0 - x * x * x - std::pow(y, 5)) * std::exp(-x * x - y * y) -
         std::exp(-(x + 1.0) * (x + 1.0) - y * y) / 3.0;
}

double Spread(std::span<const Data* const> sets) {
  double sum = 0.0;
  double squares = 0.0;
  double count = 0.0;
  for (const Data* set : sets) {
    for (int n = 0; n < set->DataRows(); ++n) {
      const double value = set->Row(n).Outputs[0];
      sum += value;
      squares += value * value;
      count += 1.0;
    }
  }
  return std::sqrt(squares / count - sum / count * (sum / count));
}

// Looking at the judged rows after each epoch is left out.
double Arrival(TTrainModule& trainer, TBasicNetwork& network, const TArrivalTask& task,
               double error) {
  TKQstructure settings = TKQstructure::Parse("(Params :Method " + task.method + ")");
  TErrorRMSObj measure(network.NumOutputs());
  double seconds = 0.0;
  bool has_arrived = false;
  int epochs = 2000;
  double start = ProcessorTime();
  trainer.Train(*task.learn, settings, epochs, [&](int, double) {
    seconds += ProcessorTime() - start;
    measure.Reset();
    has_arrived = network.RecallError(task.judged.get(), &measure) / task.unit < error;
    start = ProcessorTime();
    return !has_arrived;
  });
  return has_arrived ? seconds : std::numeric_limits<double>::infinity();
}

}  // namespace

TArrivalTask SeriesTask() {
  const std::vector<double> x = MackeyGlass(1124);
  const auto learn = std::make_shared<Data>(500, 4, 1, false);
  const auto judged = std::make_shared<Data>(500, 4, 1, false);
  for (std::size_t n = 0; n < 1000; ++n) {
    const std::size_t t = 118 + n;
    const std::array inputs = {x[t - 18], x[t - 12], x[t - 6], x[t]};
    (n < 500 ? learn : judged)->AddRow(inputs, std::array{x[t + 6]});
  }
  const double unit = Spread(std::array<const Data*, 2>{learn.get(), judged.get()});
  return {"Mackey-Glass 4-10-1", {4, 10, 1}, true, learn, judged, unit, "levenberg"};
}

TArrivalTask IrisTask() {
  const std::shared_ptr<Data> flowers = Filer::Load(KILN_EXAMPLES "/iris/train.dat").expected;
  return {"iris 4-6-3", {4, 6, 3}, false, flowers, flowers, 1.0, "rprop"};
}

TArrivalTask PeaksTask() {
  Random::Seed(1);
  const auto hills = std::make_shared<Data>(400, 2, 1, false);
  for (int n = 0; n < 400; ++n) {
    const double x = Random::Uniform(-1.0, 1.0);
    const double y = Random::Uniform(-1.0, 1.0);
    hills->AddRow(std::array{x, y}, std::array{Peaks(3.0 * x, 3.0 * y) / 8.0});
  }
  const double unit = Spread(std::array<const Data*, 1>{hills.get()});
  return {"peaks 2-25-1", {2, 25, 1}, true, hills, hills, unit, "levenberg"};
}

double KilnArrival(const TArrivalTask& task, double error, int seed) {
  const auto network = std::make_shared<TMLPNetwork>(task.sizes, true);
  network->Layer(2).SetActivation(ActTanh);
  if (task.has_linear_output) network->Layer(3).SetActivation(ActLinear);
  Random::Seed(static_cast<std::uint32_t>(seed));
  network->Randomize(-1.0, 1.0);
  TBackpropModule trainer(network);
  return Arrival(trainer, *network, task, error);
}

double KilnTarnArrival(const TArrivalTask& task, double error, int seed) {
  const std::vector<int> terms(static_cast<std::size_t>(task.sizes.front()), 5);
  const auto network = std::make_shared<TTarn>(terms, 16, std::array{3});
  Random::Seed(static_cast<std::uint32_t>(seed));
  network->InitWeights(-1.0, 1.0);
  TTarnBP trainer(network);
  return Arrival(trainer, *network, task, error);
}

}  // namespace kiln
