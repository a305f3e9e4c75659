#pragma once

#include <cstddef>

#include "NeuralNets/TIterateObjValues.h"

namespace kiln {

using TIterateObjGetFlags = TIterateObjGet<TMask, &TConnection::flags>;
using TIterateObjSetFlags = TIterateObjSet<TMask, &TConnection::flags>;

// Freezes every connection.
class TIterateObjAllUntrainable : public TIterateObj {
 public:
  void Connection(TConnection& connection) override;
};

// Removes, from the blocks that the operation walks, the connections into one neuron or out of it.
class TIterateObjPruneNode : public TIterateObj {
 public:
  enum class TSide { kInto, kOutOf };

  TIterateObjPruneNode(TSide side, std::size_t node) : side_(side), node_(node) {}
  void Connection(TConnection& connection) override;

 private:
  TSide side_;
  std::size_t node_;
};

// Counts the connections that exist and, of these, the trainable ones.
class TIterateObjCount : public TIterateObjRead {
 public:
  void Read(const TConnection& connection) override;
  std::size_t Existing() const { return existing_; }
  std::size_t Trainable() const { return trainable_; }

 private:
  std::size_t existing_ = 0;
  std::size_t trainable_ = 0;
};

}  // namespace kiln
