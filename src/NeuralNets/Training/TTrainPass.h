#pragma once

namespace kiln {

class Data;
struct TTrainRun;

// A way through the patterns of a data set that is made once for a training run, with everything
// looked up and all memory taken that its epochs need.
class TTrainPass {
 public:
  virtual ~TTrainPass() = default;

  // Adds the errors of all patterns to the error object of the run, and their gradients up or the
  // weights' changes to the weights, as the run asks for.
  virtual void Run(const Data& data, TTrainRun& run) = 0;
};

}  // namespace kiln
