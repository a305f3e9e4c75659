#include "NeuralNets/Training/TLevenbergPass.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "DataObject/Data.h"
#include "Shared/TException.h"

namespace kiln {

namespace {

// Twice as far up as down would swing; three down for two up finds the damping of a valley.
constexpr double kEase = 1.0 / 3.0;
constexpr double kRaise = 2.0;
constexpr double kLeastDamping = 1e-12;
constexpr double kMostDamping = 1e12;
constexpr double kMeanShare = 0.1;  // of the mean of J'J's diagonal in D

[[noreturn]] void Refuse(const std::string& message) {
  throw TException(message, "Invalid Parameter", "TTrainModule::Train");
}

// Collects the weights of a block that learn.
template <typename TVisit>
class TVisitLearning : public TIterateObj2 {
 public:
  explicit TVisitLearning(const TVisit& visit) : visit_(visit) {}
  void Patch(const TWeightPatch& patch, double* gradients) override {
    for (std::size_t i = 0; i < patch.Size(); ++i) {
      if (patch.masks != nullptr && patch.masks[i] != FMaskAll) continue;
      visit_(patch.weights + i, gradients + i);
    }
  }

 private:
  const TVisit& visit_;
};

}  // namespace

TLevenbergPass::TLevenbergPass(TTrainState& state, const TTrainRun& run,
                               std::unique_ptr<TLayerwisePass> derivatives)
    : TTrainPass(TKind::kMovesWeights),
      state_(state),
      run_(run),
      derivatives_(std::move(derivatives)),
      recall_(*state.network),
      before_(*state.network),
      units_(*state.network) {
  if (run.cross_entropy) {
    Refuse("method levenberg minimises squares, not cross entropy: use rprop or adam");
  }
  FindUnknowns();
  const std::size_t size = unknowns_.size();
  if (size * TSymmetricMatrix::StrideOf(size) > kMaxNumbers) {
    Refuse("method levenberg would take a matrix of " + std::to_string(size) + " x " +
           std::to_string(size) + " numbers for " + std::to_string(size) +
           " weights: use rprop or adam");
  }
  std::ranges::fill(units_.Values(), 1.0);
  scales_.resize(size);
  step_.resize(size);
  equations_ = std::make_unique<TNormalEquations>(size);
  cholesky_ = std::make_unique<TCholesky>(size);
}

// Connections that lead back have no derivative here, and stay.
void TLevenbergPass::FindUnknowns() {
  const double* const gradients = state_.gradients.Values().data();
  state_.ForEachBlock([&](std::size_t to, std::size_t from) {
    if (from >= to) return;
    TBasicConnections& block = state_.network->Connections(to, from);
    const auto add = [&](double* weight, const double* gradient) {
      const auto place = static_cast<std::size_t>(gradient - gradients);
      unknowns_.push_back({weight, gradient, place, block.IsPenalised()});
    };
    TVisitLearning visit(add);
    block.Iterate2(state_.gradients.Block(to, from), visit);
  });
}

void TLevenbergPass::Run(const Data& data, int, int, TErrorObj& error) {
  if (is_at_minimum_ || unknowns_.empty()) {
    recall_.Error(data, error);
    return;
  }
  const double price = Linearise(data);
  SetScales();
  before_.CopyFrom(*state_.network);
  if (TrySteps(data, price, error)) return;
  before_.CopyTo(*state_.network);
  is_at_minimum_ = true;
  PriceNow(data, error);
}

// Sets up the normal equations at the present weights and returns the price there.
double TLevenbergPass::Linearise(const Data& data) {
  equations_->Clear();
  double squares = 0.0;
  for (int n = 0; n < data.DataRows(); ++n) {
    const DataRow row = data.Row(n);
    const std::span<const double> outputs = derivatives_->Recall(row);
    for (std::size_t o = 0; o < outputs.size(); ++o) {
      const double residual = outputs[o] - row.Outputs[o];
      squares += residual * residual;
      state_.gradients.Clear();
      derivatives_->AddDerivatives(o);
      const std::span<double> derivatives = equations_->AddRow(residual);
      for (std::size_t i = 0; i < unknowns_.size(); ++i) derivatives[i] = *unknowns_[i].gradient;
    }
  }
  equations_->Finish();
  AddPenalty();
  return 0.5 * squares + PenaltyPrice();
}

void TLevenbergPass::AddPenalty() {
  const TPenaltyTerm& penalty = run_.penalty;
  if (penalty.kind == TPenaltyTerm::TKind::kNone) return;
  for (std::size_t i = 0; i < unknowns_.size(); ++i) {
    if (!unknowns_[i].is_penalised) continue;
    const double w = *unknowns_[i].weight;
    if (penalty.kind == TPenaltyTerm::TKind::kForgetting) {
      equations_->AddToGradient(i, penalty.Slope(w));
      continue;
    }
    equations_->AddSingle(i, penalty.Residual(w), penalty.ResidualSlope(w));
  }
}

void TLevenbergPass::SetScales() {
  SetUnits(units_);
  double mean = 0.0;
  for (std::size_t i = 0; i < scales_.size(); ++i) {
    const double unit = units_.Values()[unknowns_[i].place];
    scales_[i] = equations_->Matrix().Row(i)[i];
    mean += scales_[i] * unit * unit / static_cast<double>(scales_.size());
  }
  for (std::size_t i = 0; i < scales_.size(); ++i) {
    const double unit = units_.Values()[unknowns_[i].place];
    scales_[i] += kMeanShare * mean / (unit * unit);
  }
}

// Raises the damping until a step lowers the price, which is made. False when there is none.
bool TLevenbergPass::TrySteps(const Data& data, double price, TErrorObj& error) {
  double& damping = std::get<TLevenbergMemory>(state_.method).damping;
  for (double raise = kRaise; damping <= kMostDamping; damping *= raise, raise *= kRaise) {
    if (!MakeStep(damping)) continue;
    if (!(PriceNow(data, error) < price)) continue;
    damping = std::max(damping * kEase, kLeastDamping);
    return true;
  }
  damping = TLevenbergMemory::kFirstDamping;
  return false;
}

// Sets the weights to the end of a step. False when there is no such step.
bool TLevenbergPass::MakeStep(double damping) {
  if (!cholesky_->Factor(equations_->Matrix(), damping, scales_)) return false;
  std::ranges::copy(equations_->Gradient(), step_.begin());
  cholesky_->Solve(step_);
  if (!std::ranges::all_of(step_, [](double s) { return std::isfinite(s); })) return false;
  const bool forgets = run_.penalty.kind == TPenaltyTerm::TKind::kForgetting;
  for (std::size_t i = 0; i < unknowns_.size(); ++i) {
    const double from = before_.Values()[unknowns_[i].place];
    const double to = from - step_[i];
    const bool changes_sign = forgets && unknowns_[i].is_penalised && from * to < 0.0;
    *unknowns_[i].weight = changes_sign ? 0.0 : to;
  }
  StepTaken(before_);
  return true;
}

// What the steps minimise, and in `error` what the user is told.
double TLevenbergPass::PriceNow(const Data& data, TErrorObj& error) {
  error.Reset();
  recall_.Error(data, error);
  return 0.5 * error.Sum() + PenaltyPrice();
}

double TLevenbergPass::PenaltyPrice() const {
  if (run_.penalty.kind == TPenaltyTerm::TKind::kNone) return 0.0;
  double sum = 0.0;
  for (const TUnknown& unknown : unknowns_) {
    if (unknown.is_penalised) sum += run_.penalty.Price(*unknown.weight);
  }
  return sum;
}

}  // namespace kiln
