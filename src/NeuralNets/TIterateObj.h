#pragma once

#include <vector>

#include "NeuralNets/Kernels/Connections.h"

namespace kiln {

// Where a choice of connections is asked for, FMaskExists stands for those that exist and FMaskAll
// for every place of a block, absent connections (of weight 0) included.
// Throws TAssertion for any other selector.
void CheckSelector(TMask val);

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

// An operation that only reads, so that it can walk constant networks.
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

// An operation on the weights of a block and a second number for each, in step: training pairs
// weights with their gradients or their last changes. It is handed a patch of the block and the
// second numbers of its weights, a whole patch in one call, so that it can run a kernel over it.
// Flags never change.
class TIterateObj2 {
 public:
  virtual ~TIterateObj2() = default;

  virtual void Patch(const TWeightPatch& patch, double* second) = 0;
};

// The same with two numbers for each weight.
class TIterateObj3 {
 public:
  virtual ~TIterateObj3() = default;

  virtual void Patch(const TWeightPatch& patch, double* second, double* third) = 0;
};

}  // namespace kiln
