#include "RandomRows.h"

#include <vector>

#include "Shared/Random.h"

namespace kiln {

std::unique_ptr<Data> RandomRows(int rows, int inputs) {
  auto data = std::make_unique<Data>(rows, inputs, 0, false);
  std::vector<double> row(static_cast<std::size_t>(inputs));
  Random::Seed(1);
  for (int n = 0; n < rows; ++n) {
    for (double& value : row) value = Random::Uniform(0.0, 1.0);
    data->AddRow(row, {});
  }
  return data;
}

}  // namespace kiln
