#include "NeuralNets/TTeamRecall.h"

#include <algorithm>

#include "NeuralNets/PlainNetworks.h"
#include "NeuralNets/TErrorObj.h"
#include "Shared/Ranks.h"

namespace kiln {

namespace {

// Copies of larger networks would take more memory than they are worth.
constexpr std::size_t kMaxWeights = std::size_t{1} << 20;

// Whole blocks of patterns that are worth taking a piece for.
int RowsOfPiece(double operations) {
  constexpr double kOperationsOfPiece = 5e5;
  constexpr double kBlock = TPatternBlock::kManyPatterns;
  constexpr double kMaxBlocks = 128.0;
  return static_cast<int>(kBlock) *
         static_cast<int>(std::clamp(kOperationsOfPiece / (operations * kBlock), 1.0, kMaxBlocks));
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
  const bool has_company = is_shared_ && Ranks::AreSeveral();
  if (WorkersFor(set.DataRows()) == 1 && !has_company) return recall_.Error(set, error);
  errors_.resize(static_cast<std::size_t>(set.DataRows()));
  const auto measure = [&](int n, const DataRow& row, std::span<const double> output) {
    errors_[static_cast<std::size_t>(n)] = error.OfPattern(row.Outputs, output);
  };
  Ranks::Collect(std::span(errors_), is_shared_ ? operations_ : 0.0,
                 static_cast<std::size_t>(rows_of_piece_), [&](std::size_t first, std::size_t end) {
                   ForEachRow(set, static_cast<int>(first), static_cast<int>(end), measure);
                 });
  for (const double row : errors_) error.AddPattern(row);
  return error.Value();
}

std::size_t TTeamRecall::PiecesOf(int rows) const {
  return static_cast<std::size_t>((rows + std::int64_t{rows_of_piece_} - 1) / rows_of_piece_);
}

std::size_t TTeamRecall::WorkersFor(int rows) const {
  return is_shared_ ? TTeam::WorkersFor(PiecesOf(rows), operations_ * rows_of_piece_) : 1;
}

}  // namespace kiln
