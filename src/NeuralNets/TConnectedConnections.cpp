#include "NeuralNets/TConnectedConnections.h"

#include <numeric>

#include "NeuralNets/TBasicLayer.h"
#include "Shared/TAssertion.h"

namespace kiln {

namespace {

// The numbers 0..count-1.
std::vector<std::size_t> Numbers(std::size_t count) {
  std::vector<std::size_t> numbers(count);
  std::iota(numbers.begin(), numbers.end(), std::size_t{0});
  return numbers;
}

std::vector<std::size_t> WithInserted(std::size_t count, std::size_t position, std::size_t value) {
  std::vector<std::size_t> numbers = Numbers(count);
  numbers.insert(numbers.begin() + static_cast<std::ptrdiff_t>(position), value);
  return numbers;
}

std::vector<std::size_t> WithRemoved(std::size_t count, std::size_t position) {
  std::vector<std::size_t> numbers = Numbers(count);
  numbers.erase(numbers.begin() + static_cast<std::ptrdiff_t>(position));
  return numbers;
}

}  // namespace

std::unique_ptr<TBasicConnections> TConnectedConnections::Clone() const {
  return std::make_unique<TConnectedConnections>(*this);
}

void TConnectedConnections::AddRow(std::size_t position) {
  Assert(position <= Rows(), "position<=rows", Module());
  Rearrange(WithInserted(Rows(), position, kNew), Numbers(Columns()));
}

void TConnectedConnections::RemoveRow(std::size_t position) {
  Assert(position < Rows(), "position<rows", Module());
  Rearrange(WithRemoved(Rows(), position), Numbers(Columns()));
}

void TConnectedConnections::AddColumn(std::size_t position) {
  Assert(position <= Columns(), "position<=columns", Module());
  Rearrange(Numbers(Rows()), WithInserted(Columns(), position, kNew));
}

void TConnectedConnections::RemoveColumn(std::size_t position) {
  Assert(position < Columns(), "position<columns", Module());
  Rearrange(Numbers(Rows()), WithRemoved(Columns(), position));
}

std::vector<TBasicConnections::TPatchShape> TConnectedConnections::Layout(
    const TBasicLayer& to, const TBasicLayer& from) const {
  return {{0, 0, to.NumNeurons(), from.NumNeurons()}};
}

}  // namespace kiln
