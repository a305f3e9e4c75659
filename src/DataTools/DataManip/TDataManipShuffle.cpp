#include "DataTools/DataManip/TDataManip.h"

#include <cstdint>
#include <numeric>
#include <utility>

#include "DataTools/DataManip/ManipChecks.h"
#include "Shared/Random.h"
#include "Shared/TAssertion.h"

namespace kiln {

namespace {

// 0..n-1 in random order, every order as likely as any other.
std::vector<int> RandomOrder(int n) {
  std::vector<int> order(static_cast<std::size_t>(n));
  std::iota(order.begin(), order.end(), 0);
  for (std::size_t i = 0; i < order.size(); ++i) {
    const auto left = static_cast<std::uint32_t>(order.size() - i);
    std::swap(order[i], order[i + Random::Below(left)]);
  }
  return order;
}

// The samples one after the other, in a set with labels if any of them has some, and the names of
// the first.
std::unique_ptr<Data> Concatenate(std::span<const std::unique_ptr<Data>> samples) {
  const Data& model = *samples.front();
  std::int64_t rows = 0;
  bool has_labels = false;
  for (const auto& sample : samples) {
    if (sample->Inputs() != model.Inputs() || sample->Outputs() != model.Outputs())
      ThrowManip("Data sources differ in columns", "Recombine");
    rows += sample->Rows();
    has_labels = has_labels || sample->HasLabels();
  }
  auto result = std::make_unique<Data>(rows, model.Inputs(), model.Outputs(), has_labels);
  result->SetNames(model.Names());
  for (const auto& sample : samples) result->AddRows(*sample, 0, sample->DataRows());
  return result;
}

}  // namespace

std::unique_ptr<Data> TDataManip::Shuffle(const Data* source) {
  const Data& from = CheckedSource(source, "Shuffle", "Null data source");
  const int rows = from.DataRows();
  auto result = from.MakeAlike(rows);
  // Rows are set in any order below, so every position must hold one.
  for (int n = 0; n < rows; ++n) result->AddRow({}, {});
  int n = 0;
  for (const int position : RandomOrder(rows)) {
    const DataRow row = from.Row(n++);
    result->SetRow(position, row.Inputs, row.Outputs, row.Labels);
  }
  return result;
}

std::unique_ptr<Data> TDataManip::Recombine(std::span<const Data* const> sources,
                                            std::span<const int> counts) {
  if (sources.size() < 2) ThrowManip("Insufficient number of classes", "Recombine");
  Assert(sources.size() == counts.size(), "sources.size() == counts.size()");
  std::vector<std::unique_ptr<Data>> samples;
  for (std::size_t i = 0; i < sources.size(); ++i)
    samples.push_back(GetFirstRows(counts[i], Shuffle(sources[i]).get()));
  return Shuffle(Concatenate(samples).get());
}

}  // namespace kiln
