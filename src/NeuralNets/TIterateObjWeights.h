#pragma once

#include <cstddef>
#include <functional>
#include <utility>

#include "NeuralNets/TIterateObjValues.h"

namespace kiln {

// Counts the weights that `val` selects.
class TIterateObjGetNumWeights : public TIterateObjRead {
 public:
  explicit TIterateObjGetNumWeights(TMask val);
  void Read(const TConnection& connection) override;
  std::size_t Count() const { return count_; }

 private:
  TMask val_;
  std::size_t count_ = 0;
};

// Under FMaskAll an absent connection gives 0 when weights are got, and uses up a value that it
// does not keep when they are set.
using TIterateObjGetWeights = TIterateObjGet<double, &TConnection::weight>;
using TIterateObjSetWeights = TIterateObjSet<double, &TConnection::weight>;

// Draws each weight from [lower, upper]. Absent connections draw nothing.
class TIterateObjRandomize : public TIterateObj {
 public:
  TIterateObjRandomize(double lower, double upper) : lower_(lower), upper_(upper) {}
  void Connection(TConnection& connection) override;

 private:
  double lower_;
  double upper_;
};

// Writes each connection that exists through a sink.
class TIterateObjSaveWeights : public TIterateObjRead {
 public:
  using TSink = std::function<void(const TConnection&)>;

  explicit TIterateObjSaveWeights(TSink sink) : sink_(std::move(sink)) {}
  void Read(const TConnection& connection) override;

 private:
  TSink sink_;
};

}  // namespace kiln
