#include "NeuralNets/TTeamRecall.h"

#include <algorithm>

#include "NeuralNets/PlainNetworks.h"
#include "NeuralNets/TErrorObj.h"

namespace kiln {

namespace {

// Copies of larger networks would take more memory than they are worth.
constexpr std::size_t kMaxWeights = std::size_t{1} << 20;

// Whole blocks of patterns that are worth taking a piece for.
int RowsOfPiece(double operations) {
  constexpr double kOperationsOfPiece = 5e5;
  constexpr int kMaxBlocks = 512;
  const double blocks = kOperationsOfPiece / (operations * TPatternBlock::kPatterns);
  return static_cast<int>(TPatternBlock::kPatterns * std::clamp(blocks, 1.0, 1.0 * kMaxBlocks));
}

}  // namespace

// Where connections lead back, rows have to come one after the other.
TTeamRecall::TTeamRecall(TBasicNetwork& network)
    : recall_(network),
      copies_(network),
      operations_(2.0 * static_cast<double>(network.GetNumWeights(FMaskAll)) + 1.0),
      is_shared_(network.GetNumWeights(FMaskAll) <= kMaxWeights && IsFeedForward(network)),
      rows_of_piece_(RowsOfPiece(operations_)) {}

double TTeamRecall::Error(const Data& set, TErrorObj& error) {
  if (WorkersFor(set) == 1) return recall_.Error(set, error);
  errors_.resize(static_cast<std::size_t>(set.DataRows()));
  ForEachRow(set, [&](int n, const DataRow& row, std::span<const double> output) {
    errors_[static_cast<std::size_t>(n)] = error.OfPattern(row.Outputs, output);
  });
  for (const double row : errors_) error.AddPattern(row);
  return error.Value();
}

std::size_t TTeamRecall::PiecesOf(const Data& set) const {
  return static_cast<std::size_t>((set.DataRows() + std::int64_t{rows_of_piece_} - 1) /
                                  rows_of_piece_);
}

std::size_t TTeamRecall::WorkersFor(const Data& set) const {
  return is_shared_ ? TTeam::WorkersFor(PiecesOf(set), operations_ * rows_of_piece_) : 1;
}

}  // namespace kiln
