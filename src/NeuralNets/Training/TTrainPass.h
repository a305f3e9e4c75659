#pragma once

namespace kiln {

class Data;
class TErrorObj;

// A way through the patterns of a data set. It is made for one call of a trainer, for its
// TTrainState and TTrainRun, and has everything looked up and all memory taken that the epochs
// need.
class TTrainPass {
 public:
  // What a pass does with the gradient of a pattern: changes the weights by it at once, by the
  // rates of the run, or adds it to the gradients of the state. One that moves weights leaves the
  // gradients alone; one that adds gradients leaves weights and last changes alone.
  enum class TKind { kMovesWeights, kAddsGradients };

  virtual ~TTrainPass() = default;

  TKind Kind() const { return kind_; }

  // Takes the rows first..last-1 of the set, counted from the oldest, and adds their errors to
  // `error`. Nothing else changes the weights of a network while a pass that moves them lives.
  // REQUIRES: 0 <= first <= last <= data.DataRows(), and columns that fit the network.
  virtual void Run(const Data& data, int first, int last, TErrorObj& error) = 0;

 protected:
  explicit TTrainPass(TKind kind) : kind_(kind) {}

 private:
  TKind kind_;
};

}  // namespace kiln
