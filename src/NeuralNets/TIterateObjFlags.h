#pragma once

#include <span>
#include <vector>

#include "NeuralNets/TIterateObj.h"

namespace kiln {

// Appends the flags of the connections that `val` selects to a vector, which outlives the walk.
class TIterateObjGetFlags : public TIterateObjRead {
 public:
  TIterateObjGetFlags(std::vector<TMask>& flags, TMask val);
  void Read(const TConnection& connection) override;

 private:
  std::vector<TMask>& flags_;
  TMask val_;
};

// Gives the connections that `val` selects the next flags of a vector.
// Throws TAssertion when they run out.
class TIterateObjSetFlags : public TIterateObj {
 public:
  TIterateObjSetFlags(std::span<const TMask> flags, TMask val);
  void Connection(TConnection& connection) override;

 private:
  std::span<const TMask> flags_;  // those still to be given
  TMask val_;
};

// Freezes every connection.
class TIterateObjAllUntrainable : public TIterateObj {
 public:
  void Connection(TConnection& connection) override;
};

// Removes the connections of one neuron: those into it, or those out of it, of the blocks that it
// walks.
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
