// Kohonen maps: training.

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

struct TMapShape {
  int inputs;
  int side;
  double radius;  // a fifth of the side, as in the middle of a run
};

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

// Rate and radius stay as they are.
TWork MapTraining(const TMapShape& shape, const Data& data) {
  const auto map =
      std::make_shared<TKohonenNetwork>(shape.inputs, std::vector{shape.side, shape.side});
  map->Randomize(0.0, 1.0);
  return
      [trainer = std::make_shared<TKohonenModule>(map), &data, radius = shape.radius](int passes) {
        const TSilence silence(std::cout);
        std::array radii = {radius, radius};
        return SecondsOf([&] { trainer->Train(data, kRate, radii, passes, 1.0, 1.0); });
      };
}

}  // namespace

void AddMapRows(TReport& report, const TScratch& scratch) {
  for (const TMapShape& shape : {TMapShape{4, 10, 2.0}, {16, 20, 4.0}, {64, 40, 8.0}}) {
    const std::string side = std::to_string(shape.side);
    const std::string work =
        "training a map, " + std::to_string(shape.inputs) + " on " + side + "×" + side;
    if (!report.Wants(work)) continue;
    const auto data = RandomRows(kPatterns, shape.inputs);
    report.AddComparison(work, MapTraining(shape, *data), "kohonen",
                         KohonenTraining(scratch, *data, shape.side, shape.radius, kRate),
                         kPatterns, 3.0);
  }
}

}  // namespace kiln
