#pragma once

#include <optional>
#include <span>
#include <vector>

#include "DataObject/Data.h"
#include "NeuralNets/TBasicNetwork.h"
#include "NeuralNets/TPatternBlock.h"

namespace kiln {

class TErrorObj;

// A network's recall of data sets, by RecallPattern or, where the network allows it, in blocks. All
// memory that recalls need is taken once, so that any number of sets costs no more.
class TRecall {
 public:
  // REQUIRES: the network outlives this object, and only its weights and outputs change meanwhile.
  explicit TRecall(TBasicNetwork& network);

  // Recalls the rows first..last-1, counted from the oldest, and calls visit(n, row, output) for
  // each, in order. REQUIRES: 0 <= first <= last <= set.DataRows(); the inputs of the set fit the
  // network.
  template <typename TVisit>
  void ForEachRow(const Data& set, int first, int last, const TVisit& visit) {
    if (block_) {
      VisitBlocks(set, first, last, visit);
    } else {
      VisitPatterns(set, first, last, visit);
    }
  }

  // Feeds (desired, recalled) of every row to the error object and returns its value.
  // REQUIRES: inputs and outputs of the set fit the network.
  double Error(const Data& set, TErrorObj& error);

 private:
  // Takes memory for larger blocks where so many rows of the network are worth them.
  void MakeRoomFor(int rows);

  template <typename TVisit>
  void VisitPatterns(const Data& set, int first, int last, const TVisit& visit) {
    for (int n = first; n < last; ++n) {
      const DataRow row = set.Row(n);
      network_.RecallPattern(row.Inputs, output_);
      visit(n, row, std::span<const double>(output_));
    }
  }

  template <typename TVisit>
  void VisitBlocks(const Data& set, int first, int last, const TVisit& visit) {
    MakeRoomFor(last - first);
    for (int n = first; n < last;) {
      block_->Recall(set, n, last);
      for (std::size_t pattern = 0; pattern < block_->Count(); ++pattern, ++n) {
        block_->GetPattern(network_.OutputLayer(), pattern, output_);
        visit(n, set.Row(n), std::span<const double>(output_));
      }
    }
  }

  TBasicNetwork& network_;
  std::vector<double> output_;  // for the pattern at hand
  std::optional<TPatternBlock> block_;
};

}  // namespace kiln
