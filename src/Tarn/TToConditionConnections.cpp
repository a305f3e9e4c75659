#include "Tarn/TToConditionConnections.h"

#include "Tarn/TConditionLayer.h"

namespace kiln {

std::unique_ptr<TBasicConnections> TToConditionConnections::Clone() const {
  return std::make_unique<TToConditionConnections>(*this);
}

std::vector<TBasicConnections::TPatchShape> TToConditionConnections::Layout(
    const TBasicLayer& to, const TBasicLayer& from) const {
  const TMFGroups& groups =
      GroupsOf(dynamic_cast<const TConditionLayer*>(&to), to.NumNeurons(), from.NumNeurons());
  std::vector<TPatchShape> patches(groups.NumVariables());
  for (std::size_t i = 0; i < patches.size(); ++i) {
    patches[i] = {.to = groups.First(i), .from = i, .rows = groups.Count(i), .columns = 1};
  }
  return patches;
}

}  // namespace kiln
