#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "NeuralNets/TWorkerCopies.h"
#include "NeuralNets/Training/TTrainPass.h"
#include "NeuralNets/Training/TTrainRun.h"
#include "NeuralNets/Training/TTrainState.h"
#include "Shared/Ranks.h"

namespace kiln {

// The gradients of a large batch, as the pieces of a team: another pass adds up those of each lane,
// a fixed part of the rows. Lanes are joined in pairs, pairs in pairs, and so on. How many there
// are depends on the rows alone, so sums are the same for any number of workers; batches of less
// than 2 kRows are one lane, for which the other pass does what it would do by itself.
class TLanePass : public TTrainPass {
 public:
  static constexpr int kRows = 256;  // of a lane, at least
  static constexpr std::size_t kMaxLanes = 64;

  // Each lane has a gradient for each weight. Products of larger networks are worth sharing
  // themselves.
  static constexpr std::size_t kMaxWeights = std::size_t{1} << 17;

  // Whether batches of a run have several lanes. Rows of a network in which connections lead back
  // have to come one after the other.
  static bool Fits(const TBasicNetwork& network, const TTrainRun& run);

  // A pass that adds gradients, for a worker whose state has a copy of the network.
  using TMakePass = std::function<std::unique_ptr<TTrainPass>(TTrainState&)>;

  // Adds gradients. REQUIRES: the network fits; `pass` adds gradients to the state, as do those
  // that are made; state and run outlive the pass.
  TLanePass(TTrainState& state, const TTrainRun& run, std::unique_ptr<TTrainPass> pass,
            TMakePass make_pass);

  void Run(const Data& data, int first, int last, TErrorObj& error) override;

 private:
  // What the rows of a lane, and of those that were joined to it, add up to.
  struct TSums {
    TSums(const TBasicNetwork& network, const TTrainRun& run)
        : gradients(network), error(run.MakeError(network.NumOutputs())) {}

    TWeightBuffer gradients;
    std::unique_ptr<TErrorObj> error;
  };

  struct TWorker {
    TWorker(std::shared_ptr<TBasicNetwork> copy, const TMakePass& make_pass)
        : state(std::move(copy)), pass(make_pass(state)) {}

    TTrainState state;
    std::unique_ptr<TTrainPass> pass;
  };

  double Operations(int rows) const;
  void RunLanes(const Data& data, int first, int last, const Ranks::TSumTree& tree);
  void MakeSums(std::size_t workers);
  TSums& Take();
  void GiveBack(TSums& sums);
  void TakeNothing();
  void RunLane(TTrainState& state, TTrainPass& pass, const Data& data, int first, int last,
               TSums& sums);
  void Join(std::size_t lane, std::size_t lanes, TSums& sums);

  TTrainState& state_;
  const TTrainRun& run_;
  std::unique_ptr<TTrainPass> pass_;
  TMakePass make_pass_;
  double weights_;
  TWorkerCopies<TWorker> workers_;
  std::vector<std::unique_ptr<TSums>> sums_;
  std::vector<TSums*> free_;  // of the sums; with the mutex
  std::mutex mutex_;
  std::array<std::atomic<TSums*>, kMaxLanes> waiting_{};  // Join tells where, and for whom
  TSums* whole_ = nullptr;                                // of all lanes
  std::optional<TWeightBuffer> others_;                   // gradients of another rank
};

}  // namespace kiln
