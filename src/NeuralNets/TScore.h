#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace kiln {

class Data;
class TBasicNetwork;

// Which classes were expected and which were answered: counts of rows.
class TConfusion {
 public:
  // REQUIRES: at least one class.
  explicit TConfusion(std::size_t classes) : classes_(classes), counts_(classes * classes) {}

  // REQUIRES: there are these classes, here and below.
  void Add(std::size_t expected, std::size_t answered) { ++At(expected, answered); }

  std::size_t Classes() const { return classes_; }
  int Count(std::size_t expected, std::size_t answered) const {
    return counts_[expected * classes_ + answered];
  }

 private:
  int& At(std::size_t expected, std::size_t answered) {
    return counts_[expected * classes_ + answered];
  }

  std::size_t classes_;
  std::vector<int> counts_;
};

// How well a network answers the rows of a data set.
struct TScore {
  double error = 0.0;        // root of the mean square over all outputs
  std::optional<int> right;  // rows whose class was answered, where the outputs are classes
};

// Whether the outputs of a set are classes, see MeasureScore.
bool HasClasses(const Data& set);

// The class that outputs answer. REQUIRES: there are some.
std::size_t AnsweredClass(std::span<const double> outputs);

// Outputs are classes when in every row all are 0 but for a 1: the class is that column, and the
// answer the column with the largest output, the first of several. A single column of 0 and 1 is
// two classes; outputs from 0.5 on answer the second.
//
// The network answers in a copy and stays as it is. Throws TException when the columns of the set
// do not fit. REQUIRES: the set has rows.
TScore MeasureScore(const TBasicNetwork& network, const Data& set);

// Nothing where the outputs of the set are no classes. Otherwise as above.
std::optional<TConfusion> MeasureConfusion(const TBasicNetwork& network, const Data& set);

}  // namespace kiln
