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
}

void TLanePass::Run(const Data& data, int first, int last, TErrorObj& error) {
  const int rows = last - first;
  const std::size_t lanes = LanesOf(rows);
  if (lanes == 1) return pass_->Run(data, first, last, error);

  const std::size_t workers = TTeam::WorkersFor(lanes, Operations(rows));
  workers_.Begin(workers);
  TTeam::ForEach(lanes, workers, [&](std::size_t lane, std::size_t place) {
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
    Join(lane, lanes, sums);
  });
  Add(state_.gradients, whole_->gradients);
  error.Add(*whole_->error);
  GiveBack(*whole_);
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
    sums.error->Add(*neighbour->error);
    GiveBack(*neighbour);
  }
  whole_ = &sums;
}

}  // namespace kiln
