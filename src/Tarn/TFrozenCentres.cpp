#include "Tarn/TFrozenCentres.h"

#include "NeuralNets/TIterateObjFlags.h"
#include "Tarn/TCentreConnections.h"

namespace kiln {

TFrozenCentres::~TFrozenCentres() {
  for (const TBlock& block : blocks_) {
    TIterateObjSetFlags restore(block.flags, FMaskAll);
    tarn_.Centres(block.layer).Iterate(restore);
  }
}

void TFrozenCentres::Freeze(std::size_t layer) {
  TBlock block = {layer, {}};
  TIterateObjGetFlags get(block.flags, FMaskAll);
  tarn_.Centres(layer).Read(get);
  blocks_.push_back(std::move(block));
  TIterateObjAllUntrainable freeze;
  tarn_.Centres(layer).Iterate(freeze);
}

}  // namespace kiln
