#include "Tarn/TFuzzyLayer.h"

#include "NeuralNets/TBasicNetwork.h"
#include "Shared/TAssertion.h"

namespace kiln {

bool TFuzzyLayer::IsJoinedBy(std::string_view kind) const {
  const auto sources = Network().Sources(Index());
  return sources.size() == 1 && Network().Connections(Index(), sources.front()).KindName() == kind;
}

std::size_t TFuzzyLayer::SourceLayer(std::string_view kind) const {
  Assert(IsJoinedBy(kind), "attached");
  return Network().Sources(Index()).front();
}

}  // namespace kiln
