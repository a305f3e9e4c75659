#pragma once

#include <functional>
#include <span>
#include <vector>

#include "NeuralNets/TIterateObj.h"

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

// Appends the weights that `val` selects to a vector, which outlives the walk.
class TIterateObjGetWeights : public TIterateObjRead {
 public:
  TIterateObjGetWeights(std::vector<double>& weights, TMask val);
  void Read(const TConnection& connection) override;

 private:
  std::vector<double>& weights_;
  TMask val_;
};

// Gives the weights that `val` selects the next values of a vector. The value of an absent
// connection is taken and dropped. Throws TAssertion when the values run out.
class TIterateObjSetWeights : public TIterateObj {
 public:
  TIterateObjSetWeights(std::span<const double> weights, TMask val);
  void Connection(TConnection& connection) override;

 private:
  std::span<const double> weights_;  // those still to be given
  TMask val_;
};

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
