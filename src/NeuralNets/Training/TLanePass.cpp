#include "NeuralNets/Training/TLanePass.h"

#include <algorithm>
#include <bit>
#include <functional>
#include <utility>

#include "DataObject/Data.h"
#include "NeuralNets/PlainNetworks.h"
#include "NeuralNets/TPatternBlock.h"

namespace kiln {

namespace {

// A power of two, so that the tree of sums is a full one.
std::size_t LanesOf(int rows) {
  const auto most = static_cast<std::size_t>(rows / TLanePass::kRows);
  return std::bit_floor(std::clamp<std::size_t>(most, 1, TLanePass::kMaxLanes));
}

// Where a lane begins among so many rows: at a whole block of patterns.
int FirstRow(int rows, std::size_t lane, std::size_t lanes) {
  constexpr std::size_t kBlock = TPatternBlock::kPatterns;
  if (lane == lanes) return rows;
  return static_cast<int>(static_cast<std::size_t>(rows) / kBlock * lane / lanes * kBlock);
}

void Add(TWeightBuffer& sums, const TWeightBuffer& summands) {
  std::ranges::transform(sums.Values(), summands.Values(), sums.Values().begin(), std::plus());
}

}  // namespace

bool TLanePass::Fits(const TBasicNetwork& network, const TTrainRun& run) {
  return LanesOf(run.batch) > 1 && network.GetNumWeights(FMaskAll) <= kMaxWeights &&
         IsFeedForward(network);
}

TLanePass::TLanePass(TTrainState& state, const TTrainRun& run, std::unique_ptr<TTrainPass> pass,
                     TMakePass make_pass)
    : TTrainPass(TKind::kAddsGradients),
      state_(state),
      run_(run),
      pass_(std::move(pass)),
      make_pass_(std::move(make_pass)),
      weights_(static_cast<double>(state.network->GetNumWeights(FMaskAll))),
      workers_(*state.network) {
  MakeSums(TTeam::WorkersFor(LanesOf(run.batch), Operations(run.batch)));
  if (Ranks::AreSeveral()) others_.emplace(*state.network);
}

void TLanePass::Run(const Data& data, int first, int last, TErrorObj& error) {
  const int rows = last - first;
  const std::size_t lanes = LanesOf(rows);
  if (lanes == 1) return pass_->Run(data, first, last, error);

  const Ranks::TSumTree tree(lanes, static_cast<double>(lanes) * Operations(rows));
  tree.AddUp(
      [&] {
        RunLanes(data, first, last, tree);
        whole_->gradients.Extra() = whole_->error->Sum();  // one message for both
        return whole_->gradients.Values();
      },
      others_ ? others_->Values() : std::span<double>());
  error.Add(whole_->gradients.Extra(), static_cast<std::size_t>(rows));
  Add(state_.gradients, whole_->gradients);
  GiveBack(*whole_);
}

// Runs the lanes of this rank's branch of the tree, and makes `whole_` their sums.
void TLanePass::RunLanes(const Data& data, int first, int last, const Ranks::TSumTree& tree) {
  const int rows = last - first;
  const std::size_t lanes = LanesOf(rows);
  const std::size_t own_lanes = tree.End() - tree.First();
  if (own_lanes == 0) return TakeNothing();

  const std::size_t workers = TTeam::WorkersFor(own_lanes, Operations(rows));
  workers_.Begin(workers);
  TTeam::ForEach(own_lanes, workers, [&](std::size_t number, std::size_t place) {
    const std::size_t lane = tree.First() + number;
    const int begin = first + FirstRow(rows, lane, lanes);
    const int end = first + FirstRow(rows, lane + 1, lanes);
    TSums& sums = Take();
    if (workers == 1) {
      RunLane(state_, *pass_, data, begin, end, sums);
    } else {
      TWorker& worker = workers_.At(place, [this](const std::shared_ptr<TBasicNetwork>& copy) {
        return std::make_unique<TWorker>(copy, make_pass_);
      });
      RunLane(worker.state, *worker.pass, data, begin, end, sums);
    }
    Join(lane, own_lanes, sums);
  });
}

// The additions and multiplications of a lane: each weight takes part in the way forward, that
// back, and its gradient.
double TLanePass::Operations(int rows) const {
  return 6.0 * weights_ * rows / static_cast<double>(LanesOf(rows));
}

// Each worker has sums at hand; and for each worker, and the lane to come, there may be as many
// waiting as the tree has levels. Yet there are no more than lanes.
void TLanePass::MakeSums(std::size_t workers) {
  const std::size_t lanes = LanesOf(run_.batch);
  const auto levels = static_cast<std::size_t>(std::countr_zero(lanes));
  const std::size_t count = std::min(lanes, workers + (workers + 1) * levels);
  while (sums_.size() < count) {
    sums_.push_back(std::make_unique<TSums>(*state_.network, run_));
    free_.push_back(sums_.back().get());
  }
}

// Those that were given back last are still in a cache.
TLanePass::TSums& TLanePass::Take() {
  const std::lock_guard lock(mutex_);
  TSums* const sums = free_.back();
  free_.pop_back();
  return *sums;
}

void TLanePass::GiveBack(TSums& sums) {
  const std::lock_guard lock(mutex_);
  free_.push_back(&sums);
}

// Makes `whole_` zeros.
void TLanePass::TakeNothing() {
  whole_ = &Take();
  whole_->gradients.Clear();
  whole_->error->Reset();
}

// Leaves the gradients of the state alone.
void TLanePass::RunLane(TTrainState& state, TTrainPass& pass, const Data& data, int first, int last,
                        TSums& sums) {
  std::swap(state.gradients, sums.gradients);
  state.gradients.Clear();
  sums.error->Reset();
  pass.Run(data, first, last, *sums.error);
  std::swap(state.gradients, sums.gradients);
}

// Of two neighbours the one that is done first leaves its sums where the other finds them, which
// adds them to its own, the order of two summands making no difference; and so on up the tree.
void TLanePass::Join(std::size_t lane, std::size_t lanes, TSums& sums) {
  for (std::size_t step = 1; step < lanes; step *= 2) {
    const std::size_t right = lane / (2 * step) * (2 * step) + step;  // first of the right one
    TSums* const neighbour = waiting_[right].exchange(&sums, std::memory_order_acq_rel);
    if (!neighbour) return;
    waiting_[right].store(nullptr, std::memory_order_relaxed);
    Add(sums.gradients, neighbour->gradients);
    sums.error->Add(neighbour->error->Sum(), neighbour->error->Patterns());
    GiveBack(*neighbour);
  }
  whole_ = &sums;
}

}  // namespace kiln
