#include "NeuralNets/TBasicConnections.h"

#include <algorithm>
#include <typeinfo>
#include <utility>

#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/TBasicLayer.h"
#include "Shared/TAssertion.h"

namespace kiln {

std::size_t TBasicConnections::SizeBetween(const TBasicLayer& to, const TBasicLayer& from) const {
  std::size_t size = 0;
  for (const TPatchShape& patch : Layout(to, from)) size += patch.Size();
  return size;
}

void TBasicConnections::Attach(const TBasicLayer& to, const TBasicLayer& from) {
  patches_ = Layout(to, from);
  rows_ = IsConnected() ? to.NumNeurons() : 0;
  columns_ = IsConnected() ? from.NumNeurons() : 0;
  std::size_t size = 0;
  for (TPatchShape& patch : patches_) {
    patch.offset = size;
    size += patch.Size();
  }
  weights_.assign(size, 0.0);
  masks_.clear();
  exceptions_ = 0;
  attached_ = true;
}

bool TBasicConnections::Exists(std::size_t to, std::size_t from) const {
  const std::optional<std::size_t> place = Place(to, from);
  return place && (FlagsAt(*place) & FMaskExists) != 0;
}

bool TBasicConnections::IsTrainable(std::size_t to, std::size_t from) const {
  const std::optional<std::size_t> place = Place(to, from);
  return place && (FlagsAt(*place) & FMaskTrainable) != 0;
}

double TBasicConnections::GetWeight(std::size_t to, std::size_t from) const {
  const std::optional<std::size_t> place = Place(to, from);
  return place ? weights_[*place] : 0.0;
}

void TBasicConnections::SetWeight(std::size_t to, std::size_t from, double weight) {
  const std::size_t place = PlaceAssert(to, from);
  Store(place, weight, FlagsAt(place));
}

void TBasicConnections::SetTrainable(std::size_t to, std::size_t from, bool trainable) {
  SetFlag(to, from, FMaskTrainable, trainable);
}

void TBasicConnections::SetExists(std::size_t to, std::size_t from, bool exists) {
  SetFlag(to, from, FMaskExists, exists);
}

bool TBasicConnections::IsComplete() const {
  const auto exists = [](TMask flags) { return (flags & FMaskExists) != 0; };
  return IsConnected() && weights_.size() == rows_ * columns_ &&
         (exceptions_ == 0 || std::ranges::all_of(masks_, exists));
}

void TBasicConnections::Accumulate(std::span<const double> outputs, std::span<double> net) const {
  CheckAttached();
  const TMask* masks = exceptions_ != 0 ? masks_.data() : nullptr;
  const TKernels& kernels = Kernels();
  for (const TPatchShape& patch : patches_) {
    kernels.accumulate(weights_.data() + patch.offset, masks ? masks + patch.offset : nullptr,
                       patch.rows, patch.columns, outputs.data() + patch.from,
                       net.data() + patch.to);
  }
}

template <typename TVisit>
void TBasicConnections::ForEachPlace(const TVisit& visit) const {
  CheckAttached();
  for (const TPatchShape& patch : patches_) {
    for (std::size_t i = 0; i < patch.Size(); ++i) {
      const std::size_t place = patch.offset + i;
      visit(place, TConnection{patch.to + i / patch.columns, patch.from + i % patch.columns,
                               weights_[place], FlagsAt(place)});
    }
  }
}

void TBasicConnections::Iterate(TIterateObj& operation) {
  ForEachPlace([&](std::size_t place, TConnection connection) {
    operation.Connection(connection);
    Store(place, connection.weight, connection.flags);
  });
}

void TBasicConnections::Read(TIterateObjRead& operation) const {
  ForEachPlace([&](std::size_t, const TConnection& connection) { operation.Read(connection); });
}

void TBasicConnections::Iterate2(std::span<double> second, TIterateObj2& operation) {
  CheckSize(second);
  for (const TPatchShape& patch : patches_) {
    operation.Patch(PatchOf(patch), second.data() + patch.offset);
  }
}

void TBasicConnections::Iterate3(std::span<double> second, std::span<double> third,
                                 TIterateObj3& operation) {
  CheckSize(second);
  CheckSize(third);
  for (const TPatchShape& patch : patches_) {
    operation.Patch(PatchOf(patch), second.data() + patch.offset, third.data() + patch.offset);
  }
}

void TBasicConnections::Iterate2(TBasicConnections& conn2, TIterateObj2& operation) {
  CheckKind(conn2, "conn1 -> GetConnectionsNType() == conn2 -> GetConnectionsNType()");
  Iterate2(conn2.Weights(), operation);
}

void TBasicConnections::Iterate3(TBasicConnections& conn2, TBasicConnections& conn3,
                                 TIterateObj3& operation) {
  CheckKind(conn2, "conn1 -> GetConnectionsNType() == conn2 -> GetConnectionsNType()");
  CheckKind(conn3, "conn1 -> GetConnectionsNType() == conn3 -> GetConnectionsNType()");
  Iterate3(conn2.Weights(), conn3.Weights(), operation);
}

void TBasicConnections::AddRow(std::size_t) {
  AssertFalse(Module());
}

void TBasicConnections::RemoveRow(std::size_t) {
  AssertFalse(Module());
}

void TBasicConnections::AddColumn(std::size_t) {
  AssertFalse(Module());
}

void TBasicConnections::RemoveColumn(std::size_t) {
  AssertFalse(Module());
}

void TBasicConnections::Rearrange(const TOrigins& rows, const TOrigins& columns) {
  CheckAttached();
  TPlacedVector<double> weights(rows.size() * columns.size(), 0.0);
  std::vector<TMask> masks(masks_.empty() ? 0 : weights.size(), FMaskAll);
  for (std::size_t i = 0; i < weights.size(); ++i) {
    const std::size_t to = rows[i / columns.size()];
    const std::size_t from = columns[i % columns.size()];
    if (to == kNew || from == kNew) continue;
    const std::size_t place = PlaceAssert(to, from);
    weights[i] = weights_[place];
    if (!masks.empty()) masks[i] = masks_[place];
  }
  rows_ = rows.size();
  columns_ = columns.size();
  patches_ = {{0, 0, rows_, columns_}};
  weights_ = std::move(weights);
  masks_ = std::move(masks);
  exceptions_ = static_cast<std::size_t>(
      std::ranges::count_if(masks_, [](TMask flags) { return flags != FMaskAll; }));
}

std::optional<std::size_t> TBasicConnections::Place(std::size_t to, std::size_t from) const {
  CheckAttached();
  const auto behind = std::ranges::upper_bound(patches_, to, {}, &TPatchShape::to);
  if (behind == patches_.begin()) return std::nullopt;
  const TPatchShape& patch = *(behind - 1);
  // The differences are unsigned, so that a neuron in front of the patch comes out beyond its end.
  const std::size_t row = to - patch.to;
  const std::size_t column = from - patch.from;
  if (row >= patch.rows || column >= patch.columns) return std::nullopt;
  return patch.offset + row * patch.columns + column;
}

std::size_t TBasicConnections::PlaceAssert(std::size_t to, std::size_t from) const {
  const std::optional<std::size_t> place = Place(to, from);
  if (!place) AssertFalse(Module());
  return *place;
}

void TBasicConnections::SetFlag(std::size_t to, std::size_t from, TMask flag, bool set) {
  const std::size_t place = PlaceAssert(to, from);
  const int flags = set ? FlagsAt(place) | flag : FlagsAt(place) & ~flag;
  Store(place, weights_[place], static_cast<TMask>(flags));
}

void TBasicConnections::Store(std::size_t place, double weight, TMask flags) {
  if (flags != FlagsAt(place)) StoreFlags(place, flags);
  weights_[place] = (flags & FMaskExists) != 0 ? weight : 0.0;
}

void TBasicConnections::StoreFlags(std::size_t place, TMask flags) {
  if (!HasFlags()) AssertFalse(Module());
  if (masks_.empty()) masks_.assign(weights_.size(), FMaskAll);
  if (masks_[place] != FMaskAll) --exceptions_;
  if (flags != FMaskAll) ++exceptions_;
  masks_[place] = flags;
}

TWeightPatch TBasicConnections::PatchOf(const TPatchShape& shape) {
  return {shape.to,
          shape.from,
          shape.rows,
          shape.columns,
          weights_.data() + shape.offset,
          exceptions_ != 0 ? masks_.data() + shape.offset : nullptr};
}

void TBasicConnections::CheckKind(const TBasicConnections& twin, const char* expression) const {
  CheckAttached();
  if (typeid(*this) != typeid(twin)) Assert(false, expression, Module());
}

void TBasicConnections::CheckSize(std::span<const double> values) const {
  CheckAttached();
  if (values.size() != weights_.size()) {
    Assert(false, "conn1 -> Size() == conn2 -> Size()", Module());
  }
}

}  // namespace kiln
