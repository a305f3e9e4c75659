#include "NeuralNets/Training/TDelayedBlock.h"

#include <algorithm>
#include <cmath>

#include "DataObject/Data.h"
#include "NeuralNets/Kernels/Transpose.h"

namespace kiln {

namespace {

constexpr int kMinPatterns = 8;  // products of matrices round up to so many
constexpr std::size_t kMinRows = 16;
constexpr std::size_t kMinColumns = 48;
constexpr std::size_t kMaxColumns = std::size_t{1} << 16;  // 32 MiB of inputs in both layouts

}  // namespace

bool TDelayedBlock::Fits(const TWeightPatch& patch, const TRates& rates, int patterns) {
  return patch.masks == nullptr && rates.pull == 0.0 && std::abs(rates.momentum) <= 1.0 &&
         patterns >= kMinPatterns && patch.rows >= kMinRows && patch.columns >= kMinColumns &&
         patch.columns <= kMaxColumns;
}

TDelayedBlock::TDelayedBlock(const TWeightPatch& patch, double* changes, const TRates& rates)
    : patch_(patch),
      changes_(changes),
      rates_(rates),
      stride_(PaddedSize(patch.columns)),
      patterns_(kPatterns * stride_),
      inputs_(patch.columns * kPatterns),
      products_(kPatterns * kPatterns),
      weight_sums_(patch.rows * kPatterns),
      change_sums_(patch.rows * kPatterns),
      deltas_(kPatterns * patch.rows),
      shared_deltas_(kPatterns * patch.rows) {
  powers_[0] = 1.0;
  for (std::size_t j = 0; j < kPatterns; ++j) {
    powers_[j + 1] = rates.momentum * powers_[j];
    change_shares_[j + 1] = change_shares_[j] + powers_[j + 1];
    delta_shares_[j + 1] = delta_shares_[j] + powers_[j];
  }
}

void TDelayedBlock::Begin(const Data& data, int first, int last) {
  const auto count = static_cast<std::size_t>(last - first);
  for (std::size_t p = 0; p < count; ++p) {
    const auto pattern = data.Row(first + static_cast<int>(p)).Inputs;
    std::ranges::copy(pattern.subspan(patch_.from, patch_.columns), Pattern(p));
  }
  Transpose(
      count, patch_.columns, [&](std::size_t p) { return Pattern(p); }, inputs_.data(), kPatterns);
  const auto multiply = [&](const double* values, std::size_t rows, std::size_t stride,
                            std::vector<double>& product) {
    std::ranges::fill(product, 0.0);
    Kernels().multiply(rows, patch_.columns, PaddedSize(count), {values, stride, 1}, inputs_.data(),
                       kPatterns, product.data(), kPatterns);
  };
  multiply(patterns_.data(), count, stride_, products_);
  multiply(patch_.weights, patch_.rows, patch_.columns, weight_sums_);
  if (rates_.momentum != 0.0) multiply(changes_, patch_.rows, patch_.columns, change_sums_);
  steps_ = 0;
}

void TDelayedBlock::Accumulate(std::span<double> net) const {
  const std::size_t j = steps_;
  for (std::size_t r = 0; r < patch_.rows; ++r) {
    const std::size_t at = r * kPatterns + j;
    net[patch_.to + r] += weight_sums_[at] + change_shares_[j] * change_sums_[at];
  }
  TShares shares;
  for (std::size_t i = 0; i < j; ++i) {
    shares[i] = -rates_.rate * delta_shares_[j - i] * products_[i * kPatterns + j];
  }
  Kernels().propagate(deltas_.data(), nullptr, j, patch_.rows, shares.data(),
                      net.data() + patch_.to);
}

void TDelayedBlock::Step(std::span<const double> deltas) {
  std::ranges::copy(deltas.subspan(patch_.to, patch_.rows),
                    deltas_.begin() + static_cast<std::ptrdiff_t>(steps_ * patch_.rows));
  ++steps_;
}

void TDelayedBlock::End() {
  TShares shares;
  if (rates_.momentum != 0.0) {
    for (std::size_t k = 0; k < patch_.Size(); ++k) {
      patch_.weights[k] += change_shares_[steps_] * changes_[k];
      changes_[k] *= powers_[steps_];
    }
    for (std::size_t i = 0; i < steps_; ++i) shares[i] = -rates_.rate * powers_[steps_ - 1 - i];
    AddProducts(shares, changes_);
  }
  for (std::size_t i = 0; i < steps_; ++i) shares[i] = -rates_.rate * delta_shares_[steps_ - i];
  AddProducts(shares, patch_.weights);
}

// values += sum over i of shares[i] d_i x_i'
void TDelayedBlock::AddProducts(const TShares& shares, double* values) {
  for (std::size_t i = 0; i < steps_; ++i) {
    for (std::size_t r = 0; r < patch_.rows; ++r) {
      shared_deltas_[i * patch_.rows + r] = shares[i] * deltas_[i * patch_.rows + r];
    }
  }
  Kernels().multiply(patch_.rows, steps_, patch_.columns, {shared_deltas_.data(), 1, patch_.rows},
                     patterns_.data(), stride_, values, patch_.columns);
}

}  // namespace kiln
