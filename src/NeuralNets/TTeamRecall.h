#pragma once

#include <cstddef>
#include <vector>

#include "DataObject/Data.h"
#include "NeuralNets/TRecall.h"
#include "NeuralNets/TWorkerCopies.h"
#include "Shared/TTeam.h"

namespace kiln {

// The recall of data sets by a team: pieces are blocks of neighbouring rows, which workers recall
// in copies of the network. Answers are those of TRecall.
class TTeamRecall {
 public:
  // REQUIRES: the network outlives this object, and only its weights and outputs change meanwhile.
  explicit TTeamRecall(TBasicNetwork& network);

  // Calls visit(n, row, output) for every row, n being its number counted from the oldest: several
  // workers at a time, in any order.
  // REQUIRES: the inputs of the set fit the network; a visit writes only what is of its row.
  template <typename TVisit>
  void ForEachRow(const Data& set, const TVisit& visit) {
    ForEachRow(set, 0, set.DataRows(), visit);
  }

  // Feeds (desired, recalled) of every row, the oldest first, to the error object and returns its
  // value. The ranks of the session take their share. REQUIRES: inputs and outputs of the set fit
  // the network.
  double Error(const Data& set, TErrorObj& error);

 private:
  // Visits the rows from `begin` to before `end`.
  template <typename TVisit>
  void ForEachRow(const Data& set, int begin, int end, const TVisit& visit) {
    const std::size_t workers = WorkersFor(end - begin);
    if (workers == 1) return recall_.ForEachRow(set, begin, end, visit);
    copies_.Begin(workers);
    TTeam::ForEach(PiecesOf(end - begin), workers, [&](std::size_t piece, std::size_t place) {
      const int first = begin + static_cast<int>(piece) * rows_of_piece_;
      const int last =
          static_cast<int>(std::min<std::int64_t>(std::int64_t{first} + rows_of_piece_, end));
      TRecall& recall = copies_.At(place, [](const std::shared_ptr<TBasicNetwork>& copy) {
        return std::make_unique<TRecall>(*copy);
      });
      recall.ForEachRow(set, first, last, visit);
    });
  }

  std::size_t WorkersFor(int rows) const;
  std::size_t PiecesOf(int rows) const;

  TRecall recall_;  // by the network itself
  TWorkerCopies<TRecall> copies_;
  double operations_;  // of the recall of a row
  bool is_shared_;
  int rows_of_piece_;
  std::vector<double> errors_;  // of each row
};

}  // namespace kiln
