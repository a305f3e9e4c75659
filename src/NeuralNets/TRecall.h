#pragma once

#include <optional>
#include <span>
#include <vector>

#include "DataObject/Data.h"
#include "NeuralNets/TBasicNetwork.h"
#include "NeuralNets/TPatternBlock.h"

namespace kiln {

class TErrorObj;

// A network's recall of data sets, by RecallPattern or, where the network allows it, in blocks. The
// constructor takes all memory that recalls need, so that any number of sets costs no more.
class TRecall {
 public:
  // REQUIRES: the network outlives this object, and only its weights and outputs change meanwhile.
  explicit TRecall(TBasicNetwork& network);

  // Recalls every row and calls visit(row, output) for it, oldest row first.
  // REQUIRES: the inputs of the set fit the network.
  template <typename TVisit>
  void ForEachRow(const Data& set, const TVisit& visit) {
    if (block_) {
      VisitBlocks(set, visit);
    } else {
      VisitPatterns(set, visit);
    }
  }

  // Feeds (desired, recalled) of every row to the error object and returns its value.
  // REQUIRES: inputs and outputs of the set fit the network.
  double Error(const Data& set, TErrorObj& error);

 private:
  template <typename TVisit>
  void VisitPatterns(const Data& set, const TVisit& visit) {
    for (int n = 0; n < set.DataRows(); ++n) {
      const DataRow row = set.Row(n);
      network_.RecallPattern(row.Inputs, output_);
      visit(row, std::span<const double>(output_));
    }
  }

  template <typename TVisit>
  void VisitBlocks(const Data& set, const TVisit& visit) {
    for (int n = 0; n < set.DataRows();) {
      block_->Recall(set, n, set.DataRows());
      for (std::size_t pattern = 0; pattern < block_->Count(); ++pattern, ++n) {
        block_->GetPattern(network_.OutputLayer(), pattern, output_);
        visit(set.Row(n), std::span<const double>(output_));
      }
    }
  }

  TBasicNetwork& network_;
  std::vector<double> output_;  // for the pattern at hand
  std::optional<TPatternBlock> block_;
};

}  // namespace kiln
