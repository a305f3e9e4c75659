#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

#include "NeuralNets/TBasicNetwork.h"
#include "Shared/TTeam.h"

namespace kiln {

// A copy of a network for each worker of a team, and what the worker needs around it: a TTool, made
// of the copy. Recall writes to the layers of a network, so no two workers can share one.
template <typename TTool>
class TWorkerCopies {
 public:
  // REQUIRES: the network outlives the copies; only its weights and outputs change meanwhile.
  explicit TWorkerCopies(const TBasicNetwork& network) : network_(network) {}

  // To be called before a loop of so many workers, during which the network stays as it is.
  void Begin(std::size_t workers) {
    ++round_;
    if (places_.size() < workers) places_.resize(workers);
  }

  // For the worker at this place: its copy, with the weights that the network had at Begin. `make`
  // turns a std::shared_ptr<TBasicNetwork> into a std::unique_ptr<TTool>. The worker makes them
  // itself, at its first piece, so that they lie where its memory does.
  template <typename TMake>
  TTool& At(std::size_t place, const TMake& make) {
    TPlace& own = places_[place];
    if (!own.tool) {
      own.network = network_.Clone();
      own.tool = make(own.network);
    } else if (own.round != round_) {
      CopyWeights(*own.network);
    }
    own.round = round_;
    return *own.tool;
  }

 private:
  struct alignas(TTeam::kApart) TPlace {
    std::shared_ptr<TBasicNetwork> network;
    std::unique_ptr<TTool> tool;
    std::size_t round = 0;
  };

  void CopyWeights(TBasicNetwork& copy) const {
    for (std::size_t to = 0; to < network_.NumLayers(); ++to) {
      for (const std::size_t from : network_.Sources(to)) {
        std::ranges::copy(network_.Connections(to, from).Weights(),
                          copy.Connections(to, from).Weights().begin());
      }
    }
  }

  const TBasicNetwork& network_;
  std::vector<TPlace> places_;
  std::size_t round_ = 0;
};

}  // namespace kiln
