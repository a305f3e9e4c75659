#include "Tarn/TFuzzyLayer.h"

#include "NeuralNets/TBasicNetwork.h"
#include "Shared/TAssertion.h"

namespace kiln {

std::size_t TFuzzyLayer::SourceLayer(std::string_view kind) const {
  const auto sources = Network().Sources(Index());
  const bool is_joined =
      sources.size() == 1 && Network().Connections(Index(), sources.front()).KindName() == kind;
  Assert(is_joined, "attached");
  return sources.front();
}

}  // namespace kiln
