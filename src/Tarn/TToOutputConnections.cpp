#include "Tarn/TToOutputConnections.h"

#include "Shared/TAssertion.h"
#include "Tarn/TTarnOutputLayer.h"

namespace kiln {

std::unique_ptr<TBasicConnections> TToOutputConnections::Clone() const {
  return std::make_unique<TToOutputConnections>(*this);
}

std::vector<TBasicConnections::TPatchShape> TToOutputConnections::Layout(
    const TBasicLayer& to, const TBasicLayer& from) const {
  const TMFGroups& groups =
      GroupsOf(dynamic_cast<const TTarnOutputLayer*>(&to), from.NumNeurons(), to.NumNeurons());
  std::vector<TPatchShape> patches(groups.NumVariables());
  for (std::size_t t = 0; t < patches.size(); ++t) {
    Assert(groups.Count(t) >= 2, "NdxMF >= 2", Module());
    patches[t] = {.to = t, .from = groups.First(t), .rows = 1, .columns = groups.Count(t)};
  }
  return patches;
}

}  // namespace kiln
