#pragma once

#include <vector>

#include "NeuralNets/Kernels/Connections.h"
#include "Tarn/TTarn.h"

namespace kiln {

// Freezes centres of a Tarn for as long as it lives: whatever trains the network meanwhile leaves
// them where they are. The destructor gives every centre the flags that it had before.
class TFrozenCentres {
 public:
  // REQUIRES: the network is complete and outlives the object; its structure stays.
  explicit TFrozenCentres(TTarn& tarn) : tarn_(tarn) {}
  TFrozenCentres(const TFrozenCentres&) = delete;
  TFrozenCentres& operator=(const TFrozenCentres&) = delete;
  ~TFrozenCentres();

  // Each may be called once.
  void FreezeInputs() { Freeze(TTarn::kConditionLayer); }
  void FreezeOutputs() { Freeze(TTarn::kOutputLayer); }

 private:
  struct TBlock {
    std::size_t layer;
    std::vector<TMask> flags;  // as they were
  };

  void Freeze(std::size_t layer);

  TTarn& tarn_;
  std::vector<TBlock> blocks_;
};

}  // namespace kiln
