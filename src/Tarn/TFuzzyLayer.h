#pragma once

#include <span>
#include <string_view>
#include <utility>

#include "NeuralNets/TBasicLayer.h"
#include "Tarn/TMFGroups.h"

namespace kiln {

// A layer with the membership functions of several variables. Their centres are the weights of the
// one block that leads to the layer, in the order of the groups.
class TFuzzyLayer : public TBasicLayer {
 public:
  const TMFGroups& Groups() const { return groups_; }

  // Gives groups to a layer that was made without any. Throws TException when the counts don't fit
  // the neurons. REQUIRES: no count is negative; the layer is not connected.
  virtual void SetMFCounts(std::span<const int> counts) = 0;

 protected:
  TFuzzyLayer(std::size_t neurons, const TBasicNeuron& prototype, TMFGroups groups)
      : TBasicLayer(neurons, prototype), groups_(std::move(groups)) {}

  // Sets the groups after SetMFCounts has checked the counts.
  void SetGroups(TMFGroups groups) { groups_ = std::move(groups); }

  // Whether one block leads here, of the given kind.
  bool IsJoinedBy(std::string_view kind) const;

  // The layer at the other end of the one block that leads here, which must be of the given kind:
  // in a file anything may be connected with this layer. Throws TAssertion otherwise.
  std::size_t SourceLayer(std::string_view kind) const;

 private:
  TMFGroups groups_;
};

}  // namespace kiln
