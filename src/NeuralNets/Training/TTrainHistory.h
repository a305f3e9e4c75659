#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

namespace kiln {

// The errors of one epoch, or generation, of a trainer. Epochs are counted from 1 over all calls.
struct TTrainPoint {
  int epoch;
  double training;
  double validation;  // not a number where there was no validation
  double average;     // of a population of networks; not a number where one network is trained
};

// What a trainer has seen: the error of every epoch, or of every second, fourth ... one when there
// are many, and in any case those of the last epoch and of the one with the least validation error.
class TTrainHistory {
 public:
  static constexpr std::size_t kMaxPoints = 4096;
  static constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

  int Epochs() const { return epochs_; }

  // Takes the memory for so many more epochs, so that Add takes none for them.
  void Reserve(int epochs);

  void Add(double training, double validation = kNone, double average = kNone);

  // Where a history stood, to which it can return.
  struct TMark {
    int epochs;
    std::optional<TTrainPoint> least;
    std::optional<TTrainPoint> last;
  };
  TMark Mark() const { return {epochs_, least_, last_}; }

  // Forgets all epochs behind the mark.
  void ReturnTo(const TMark& mark);

  // In the order of epochs, at most kMaxPoints.
  std::vector<TTrainPoint> Points() const;

 private:
  int epochs_ = 0;
  int stride_ = 1;
  std::vector<TTrainPoint> points_;  // of epochs 1, 1 + stride, 1 + 2 stride ...
  std::optional<TTrainPoint> least_;
  std::optional<TTrainPoint> last_;
};

// One call of a trainer: unless it comes to its end, its epochs are forgotten.
class THistoryOfCall {
 public:
  // A call that is to run so many epochs.
  THistoryOfCall(TTrainHistory& history, int epochs) : history_(history), before_(history.Mark()) {
    history.Reserve(epochs);
  }
  ~THistoryOfCall() {
    if (!ended_) history_.ReturnTo(before_);
  }
  THistoryOfCall(const THistoryOfCall&) = delete;
  THistoryOfCall& operator=(const THistoryOfCall&) = delete;

  void End() { ended_ = true; }

 private:
  TTrainHistory& history_;
  TTrainHistory::TMark before_;
  bool ended_ = false;
};

}  // namespace kiln
