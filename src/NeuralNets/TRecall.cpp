#include "NeuralNets/TRecall.h"

#include "NeuralNets/TErrorObj.h"

namespace kiln {

TRecall::TRecall(TBasicNetwork& network) : network_(network), output_(network.NumOutputs()) {
  if (network.RecallsInBlocks()) block_.emplace(network, TPatternBlock::kPatterns);
}

void TRecall::MakeRoomFor(int rows) {
  const auto most = static_cast<std::size_t>(rows);
  if (TPatternBlock::PatternsFor(network_, most) > block_->Patterns()) {
    block_.emplace(network_, most);
  }
}

double TRecall::Error(const Data& set, TErrorObj& error) {
  ForEachRow(set, 0, set.DataRows(),
             [&error](int, const DataRow& row, std::span<const double> output) {
               error.Accumulate(row.Outputs, output);
             });
  return error.Value();
}

}  // namespace kiln
