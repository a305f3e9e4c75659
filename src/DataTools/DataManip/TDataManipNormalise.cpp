#include "DataTools/DataManip/TDataManip.h"

#include "DataTools/DataManip/ManipChecks.h"

namespace kiln {

namespace {

using TMapping = void (TColumnBounds::*)(std::span<double>) const;

// The source with each side's values mapped by its bounds.
std::unique_ptr<Data> Map(const Data* source, const TColumnBounds& input_bounds,
                          const TColumnBounds& output_bounds, TMapping mapping,
                          const char* operation) {
  const Data& from = CheckedSource(source, operation);
  if (!input_bounds.Fits(from.Inputs()) || !output_bounds.Fits(from.Outputs()))
    ThrowManip("Invalid number of bounds", operation);
  auto result = from.MakeAlike(from.DataRows());
  std::vector<double> inputs, outputs;
  for (int n = 0; n < from.DataRows(); ++n) {
    const DataRow row = from.Row(n);
    inputs.assign(row.Inputs.begin(), row.Inputs.end());
    outputs.assign(row.Outputs.begin(), row.Outputs.end());
    (input_bounds.*mapping)(inputs);
    (output_bounds.*mapping)(outputs);
    result->AddRow(inputs, outputs, row.Labels);
  }
  return result;
}

}  // namespace

std::unique_ptr<Data> TDataManip::Normalise(const Data* source, const TColumnBounds& inputs,
                                            const TColumnBounds& outputs) {
  return Map(source, inputs, outputs, &TColumnBounds::Normalise, "Normalise");
}

std::unique_ptr<Data> TDataManip::Denormalise(const Data* source, const TColumnBounds& inputs,
                                              const TColumnBounds& outputs) {
  return Map(source, inputs, outputs, &TColumnBounds::Denormalise, "Denormalise");
}

}  // namespace kiln
