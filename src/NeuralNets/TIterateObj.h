#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kiln {

// The flags of one connection.
using TMask = std::uint8_t;
inline constexpr TMask FMaskExists = 1;     // a pruned connection lacks it
inline constexpr TMask FMaskTrainable = 2;  // training leaves a connection without it alone
inline constexpr TMask FMaskAll = FMaskExists | FMaskTrainable;

// Where a choice of connections is asked for, FMaskExists stands for those that exist and FMaskAll
// for every place of a block, absent connections (of weight 0) included.
// Throws TAssertion for any other selector.
void CheckSelector(TMask val);

// One connection of a block, from neuron `from` of one layer to neuron `to` of another.
struct TConnection {
  std::size_t to;
  std::size_t from;
  double weight;
  TMask flags;

  bool Exists() const { return (flags & FMaskExists) != 0; }
  bool IsTrainable() const { return (flags & FMaskTrainable) != 0; }
  bool IsSelected(TMask val) const { return val == FMaskAll || Exists(); }
};

// A rectangle of connections that stand together in a block: the connections from the neurons
// from..from+columns-1 to the neurons to..to+rows-1. A full block is one patch; a block that
// connects each neuron with a few others only is a list of them.
struct TWeightPatch {
  std::size_t to;
  std::size_t from;
  std::size_t rows;
  std::size_t columns;
  double* weights;     // rows x columns, row-major
  const TMask* masks;  // the same shape; null when every connection exists and is trainable

  std::size_t Size() const { return rows * columns; }
};

// An operation that is applied to every place of every block of a network, absent connections
// included, in the one order of weights: from-layers outside, to-layers inside, each block row by
// row (a row holds the connections into one neuron).
class TIterateObj {
 public:
  virtual ~TIterateObj() = default;

  // What it leaves in `connection` becomes the connection's weight and flags. A connection that
  // does not exist keeps the weight 0 whatever is left.
  virtual void Connection(TConnection& connection) = 0;
};

// An operation that only reads, and so may walk what is constant.
class TIterateObjRead : public TIterateObj {
 public:
  virtual void Read(const TConnection& connection) = 0;
  void Connection(TConnection& connection) final { Read(connection); }
};

// Several operations in one walk, in the order of the list, each seeing what those before it left.
class TIterateObjAggregate : public TIterateObj {
 public:
  explicit TIterateObjAggregate(std::vector<TIterateObj*> operations);

  void Connection(TConnection& connection) override;

 private:
  std::vector<TIterateObj*> operations_;
};

// An operation on two blocks of the same shape in step: training pairs weights with their gradients
// or their last changes. It is handed a patch of the first block and the weights of the second at
// the same place, a whole patch in one call, so that it can run a kernel over it. Flags never
// change.
class TIterateObj2 {
 public:
  virtual ~TIterateObj2() = default;

  virtual void Patch(const TWeightPatch& patch, double* second) = 0;
};

// The same with three blocks.
class TIterateObj3 {
 public:
  virtual ~TIterateObj3() = default;

  virtual void Patch(const TWeightPatch& patch, double* second, double* third) = 0;
};

}  // namespace kiln
