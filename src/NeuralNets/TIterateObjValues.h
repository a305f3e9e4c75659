#pragma once

#include <span>
#include <vector>

#include "NeuralNets/TIterateObj.h"
#include "Shared/TAssertion.h"

namespace kiln {

// The exchange of a field of all connections, their weights or their flags, with a flat vector.

// Appends the field of the connections that `val` selects to a vector, which outlives the walk.
template <typename TValue, TValue TConnection::*kField>
class TIterateObjGet : public TIterateObjRead {
 public:
  TIterateObjGet(std::vector<TValue>& values, TMask val) : values_(values), val_(val) {
    CheckSelector(val);
  }

  void Read(const TConnection& connection) override {
    if (connection.IsSelected(val_)) values_.push_back(connection.*kField);
  }

 private:
  std::vector<TValue>& values_;
  TMask val_;
};

// Gives the field of the connections that `val` selects the next values of a vector. Throws
// TAssertion when these run out.
template <typename TValue, TValue TConnection::*kField>
class TIterateObjSet : public TIterateObj {
 public:
  TIterateObjSet(std::span<const TValue> values, TMask val) : values_(values), val_(val) {
    CheckSelector(val);
  }

  void Connection(TConnection& connection) override {
    if (!connection.IsSelected(val_)) return;
    Assert(!values_.empty(), "n<numvalues");
    connection.*kField = values_.front();
    values_ = values_.subspan(1);
  }

 private:
  std::span<const TValue> values_;  // that no connection has been given yet
  TMask val_;
};

}  // namespace kiln
