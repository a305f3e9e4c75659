// Kohonen maps: training, by pattern and by batch, and the search for winners.

#include <array>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "NeuralNets/Maps/TKohonenModule.h"
#include "Peers.h"
#include "RandomRows.h"
#include "Rows.h"
#include "TReport.h"

namespace kiln {

namespace {

constexpr int kPatterns = 2000;
constexpr double kRate = 0.05;
constexpr double kGoal = 4.0;

// What is written to a stream goes nowhere while this object lives.
class TSilence {
 public:
  explicit TSilence(std::ostream& stream) : stream_(stream), buffer_(stream.rdbuf(nullptr)) {}
  ~TSilence() { stream_.rdbuf(buffer_); }
  TSilence(const TSilence&) = delete;
  TSilence& operator=(const TSilence&) = delete;

 private:
  std::ostream& stream_;
  std::streambuf* buffer_;
};

std::shared_ptr<TKohonenNetwork> MakeMap(const TMapShape& shape) {
  const auto map =
      std::make_shared<TKohonenNetwork>(shape.inputs, std::vector{shape.side, shape.side});
  map->Randomize(0.0, 1.0);
  return map;
}

// Rate and radii stay as they are.
TWork TrainingByPattern(const TMapShape& shape, const Data& data) {
  return [trainer = std::make_shared<TKohonenModule>(MakeMap(shape)), &data,
          radius = shape.radius](int passes) {
    const TSilence silence(std::cout);
    std::array radii = {radius, radius};
    return SecondsOf([&] { trainer->Train(data, kRate, radii, passes, 1.0, 1.0); });
  };
}

// Units become the means of their neighbourhoods, as the peer's do.
TWork TrainingByBatch(const TMapShape& shape, const Data& data) {
  return [trainer = std::make_shared<TKohonenModule>(MakeMap(shape)), &data,
          radius = shape.radius](int passes) {
    const TSilence silence(std::cout);
    std::array radii = {radius, radius};
    return SecondsOf([&] { trainer->TrainByBatch(data, 1.0, radii, passes, 1.0, 1.0); });
  };
}

TWork Search(const TMapShape& shape, const Data& data) {
  return [map = MakeMap(shape), &data](int passes) {
    return SecondsOf([&] {
      for (int n = 0; n < passes; ++n) map->RecallCoordinates(&data);
    });
  };
}

using TMakeWork = TWork (*)(const TMapShape& shape, const Data& data);

void AddRow(TReport& report, const TScratch& scratch, const std::string& name,
            const TMapShape& shape, TMakeWork kiln, const std::string& mode) {
  const std::string side = std::to_string(shape.side);
  const std::string work = name + ", " + std::to_string(shape.inputs) + " on " + side + "×" + side;
  if (!report.Wants(work)) return;
  const auto data = RandomRows(kPatterns, shape.inputs);
  report.AddComparison(work, kiln(shape, *data), "kohonen, " + mode,
                       KohonenWork(scratch, mode, *data, shape, kRate), kPatterns, kGoal);
}

}  // namespace

void AddMapRows(TReport& report, const TScratch& scratch) {
  // Radii are a fifth of the side, as in the middle of a run.
  const std::array<TMapShape, 3> shapes = {{{4, 10, 2.0}, {16, 20, 4.0}, {64, 40, 8.0}}};
  for (const TMapShape& shape : shapes) {
    AddRow(report, scratch, "training a map", shape, TrainingByPattern, "online");
  }
  for (const TMapShape& shape : shapes) {
    AddRow(report, scratch, "training a map by batch", shape, TrainingByBatch, "pbatch");
  }
  AddRow(report, scratch, "winners of a set", {64, 100, 0.0}, Search, "map");
}

}  // namespace kiln
