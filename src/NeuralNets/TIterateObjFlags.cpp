#include "NeuralNets/TIterateObjFlags.h"

#include "Shared/TAssertion.h"

namespace kiln {

namespace {

// `flags` without those in `taken`.
TMask Without(TMask flags, TMask taken) {
  return static_cast<TMask>(flags & ~taken);
}

}  // namespace

TIterateObjGetFlags::TIterateObjGetFlags(std::vector<TMask>& flags, TMask val)
    : flags_(flags), val_(val) {
  CheckSelector(val);
}

void TIterateObjGetFlags::Read(const TConnection& connection) {
  if (connection.IsSelected(val_)) flags_.push_back(connection.flags);
}

TIterateObjSetFlags::TIterateObjSetFlags(std::span<const TMask> flags, TMask val)
    : flags_(flags), val_(val) {
  CheckSelector(val);
}

void TIterateObjSetFlags::Connection(TConnection& connection) {
  if (!connection.IsSelected(val_)) return;
  Assert(!flags_.empty(), "n<numflags", "NeuralNets/TIterateObjFlags");
  connection.flags = flags_.front();
  flags_ = flags_.subspan(1);
}

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
