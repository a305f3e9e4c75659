#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>
#include <span>
#include <vector>

#include "DataObject/Data.h"
#include "NeuralNets/Maps/TPrototypeTiles.h"
#include "Shared/Interruption.h"

namespace kiln {

// The two units of a map whose prototypes are nearest to a pattern; of equals the lower ones. A
// unit whose distance is no finite number is none of them.
struct TNearestUnits {
  static constexpr double kNowhere = std::numeric_limits<double>::infinity();

  struct TNearUnit {
    std::size_t unit = 0;
    double distance = kNowhere;  // squared
  };

  TNearUnit first;
  TNearUnit second;
};

// The search for the units nearest to each row of a set, among prototypes that stay as they are
// meanwhile. Rows are shared out to the team.
//
// In a large map, half |x - w|^2 less the half square of the pattern x, which is the same for all
// units, is computed for many patterns and prototypes w as a product of matrices. It is off by
// rounding; so every unit that might be the nearest according to it, whatever the rounding, is
// measured again by the formula sum (x - w)^2. Hence the result is that of the plain search, bit
// for bit.
class TNearestSearch {
 public:
  // REQUIRES: `tiles` outlives this object and does not change.
  explicit TNearestSearch(const TPrototypeTiles& tiles);

  // Calls visit(row, found) for each row of a set, oldest first; TFound is TWinner or
  // TNearestUnits.
  // Throws TAssertion "bestsofar >= 0" when a row has no winner, or no first unit; TInterrupted
  // where that is requested.
  // REQUIRES: the set has as many inputs as the prototypes.
  template <typename TFound, typename TVisit>
  void ForEachRow(const Data& set, const TVisit& visit) const {
    const auto rows = static_cast<std::size_t>(set.DataRows());
    std::vector<TFound> found(std::min(rows, kRowsAtATime));
    for (std::size_t first = 0; first < rows; first += kRowsAtATime) {
      const std::span part = std::span(found).first(std::min(kRowsAtATime, rows - first));
      std::ranges::fill(part, TFound());
      Find(set, first, part, Interruption::Check);
      for (std::size_t n = 0; n < part.size(); ++n) {
        visit(set.Row(static_cast<int>(first + n)), part[n]);
      }
    }
  }

  // Finds the winner of each row, oldest first, whatever is requested meanwhile: for trainings,
  // which end with a whole epoch. Throws TAssertion and requires as above; `winners` are new.
  void FindWinners(const Data& set, std::span<TWinner> winners) const;

 private:
  static constexpr std::size_t kRowsAtATime = 4096;
  static constexpr std::size_t kRowsOfPiece = 32;

  // Finds units for the rows of a set from row `first` on. REQUIRES: nothing is found yet.
  template <typename TFound>
  void Find(const Data& set, std::size_t first, std::span<TFound> found,
            void (*before_piece)()) const;

  // What a worker has for itself.
  struct TWorkplace {
    std::vector<double> least;  // scores of the groups, for each row of a piece
    bool is_crowded = false;    // scores have not told near units from others
  };

  // The same for one piece of at most kRowsOfPiece rows.
  template <typename TFound>
  void FindPiece(const Data& set, std::size_t first, std::span<TFound> found,
                 TWorkplace& workplace) const;

  template <typename TFound>
  void FindByProduct(std::span<const double* const> patterns, std::span<TFound> found,
                     TWorkplace& workplace) const;

  // Looks for the nearest units in those groups whose least scores allow them. Returns in how many.
  template <typename TFound>
  std::size_t LookIntoGroups(std::span<const double> pattern, std::span<const double> least,
                             TFound& found) const;

  // By how much the score of the nearest unit to a pattern may exceed the least one.
  double Slack(std::span<const double> pattern) const;

  const TPrototypeTiles& tiles_;
  std::size_t groups_;
  bool by_product_;
  std::vector<double> halves_;  // of the squares of the prototypes
  double largest_square_ = 0.0;
};

}  // namespace kiln
