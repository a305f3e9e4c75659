#include "NeuralNets/TIterateObjFlags.h"

namespace kiln {

namespace {

// `flags` without those in `taken`.
TMask Without(TMask flags, TMask taken) {
  return static_cast<TMask>(flags & ~taken);
}

}  // namespace

void TIterateObjAllUntrainable::Connection(TConnection& connection) {
  connection.flags = Without(connection.flags, FMaskTrainable);
}

void TIterateObjPruneNode::Connection(TConnection& connection) {
  const std::size_t end = side_ == TSide::kInto ? connection.to : connection.from;
  if (end == node_) connection.flags = Without(connection.flags, FMaskExists);
}

void TIterateObjCount::Read(const TConnection& connection) {
  if (!connection.Exists()) return;
  ++existing_;
  if (connection.IsTrainable()) ++trainable_;
}

}  // namespace kiln
