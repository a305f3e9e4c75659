#include "NeuralNets/Maps/TKohonenNetwork.h"

#include <algorithm>
#include <string>
#include <utility>

#include "DataObject/Data.h"
#include "NeuralNets/Maps/TNearestSearch.h"
#include "NeuralNets/Maps/TPrototypeTiles.h"
#include "NeuralNets/TConnectedConnections.h"
#include "NeuralNets/TErrorObj.h"
#include "NeuralNets/TSimpleInputLayer.h"
#include "NeuralNets/TSimpleLayer.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"

namespace kiln {

namespace {

// Users quote this source for whatever a map refuses.
constexpr char kModule[] = "NeuralNets/TKohonenNetwork";
constexpr std::size_t kInputLayer = 1;
constexpr std::size_t kMapLayer = 2;
constexpr int kLayers = 3;

// Calls visit(row, unit) with each row of a set, in order, and its winner, for `function`.
template <typename TVisit>
void ForEachWinner(const TKohonenNetwork& map, const Data& in, const char* function,
                   const TVisit& visit) {
  map.CheckInputsFit(in, function);
  const TPrototypeTiles tiles(map.Prototypes(), map.NumInputs());
  TNearestSearch(tiles).ForEachRow<TWinner>(
      in, [&](const DataRow& row, const TWinner& winner) { visit(row, winner.unit); });
}

}  // namespace

TKohonenNetwork::TKohonenNetwork(std::vector<int> sizes)
    : TBasicNetwork(kLayers), grid_(std::move(sizes)) {}

TKohonenNetwork::TKohonenNetwork(int inputs, std::vector<int> sizes)
    : TKohonenNetwork(std::move(sizes)) {
  // SetConnections checks the number of weights too, but only after the layers have taken memory.
  const std::size_t most = kMaxWeights / grid_.NumUnits();
  if (inputs < 1 || static_cast<std::size_t>(inputs) > most) {
    throw TException("a map of " + std::to_string(grid_.NumUnits()) + " units can have 1 to " +
                         std::to_string(most) + " inputs",
                     "Bad Parameter", "TKohonenNetwork::TKohonenNetwork");
  }
  SetLayer(kInputLayer, std::make_unique<TSimpleInputLayer>(static_cast<std::size_t>(inputs)));
  SetLayer(kMapLayer, std::make_unique<TSimpleLayer>(grid_.NumUnits()));
  Layer(kInputLayer).SetActivation(ActLinear);
  Layer(kMapLayer).SetActivation(ActLinear);
  SetConnections(kMapLayer, kInputLayer, std::make_unique<TConnectedConnections>());
}

bool TKohonenNetwork::IsComplete() const {
  const TBasicConnections& block = Connections(kMapLayer, kInputLayer);
  return InputLayer() == kInputLayer && OutputLayer() == kMapLayer && block.IsConnected() &&
         !block.HasFlags() && block.Columns() > 0 && block.Rows() == grid_.NumUnits();
}

std::unique_ptr<TBasicNetwork> TKohonenNetwork::Clone() const {
  return std::make_unique<TKohonenNetwork>(*this);
}

void TKohonenNetwork::SetDimensions(std::vector<int> sizes) {
  TMapGrid grid(std::move(sizes));
  if (grid.NumUnits() != grid_.NumUnits()) {
    throw TException("the map has " + std::to_string(grid_.NumUnits()) + " units, not " +
                         std::to_string(grid.NumUnits()),
                     "Bad Parameter", "TKohonenNetwork::SetDimensions");
  }
  grid_ = std::move(grid);
}

std::span<double> TKohonenNetwork::Prototypes() {
  return Connections(kMapLayer, kInputLayer).Weights();
}

std::span<const double> TKohonenNetwork::Prototypes() const {
  return Connections(kMapLayer, kInputLayer).Weights();
}

std::span<const double> TKohonenNetwork::Prototype(std::size_t unit) const {
  return Prototypes().subspan(unit * NumInputs(), NumInputs());
}

std::size_t TKohonenNetwork::FindWinner(std::span<const double> pattern,
                                        std::span<double> prototype) const {
  const std::size_t winner = TPrototypeTiles(Prototypes(), NumInputs()).Nearest(pattern).unit;
  std::ranges::copy(Prototype(winner), prototype.begin());
  return winner;
}

void TKohonenNetwork::RecallPattern(std::span<const double> input, std::span<double> output) {
  FindWinner(input, output);
}

std::unique_ptr<Data> TKohonenNetwork::Recall(const Data* in) {
  Assert(in != nullptr, "in != nil", kModule);
  auto result = std::make_unique<Data>(in->DataRows(), in->Inputs(), in->Inputs(), in->HasLabels());
  result->SetNames({in->Names().Inputs, in->Names().Inputs});
  ForEachWinner(*this, *in, "TKohonenNetwork::Recall", [&](const DataRow& row, std::size_t unit) {
    result->AddRow(row.Inputs, Prototype(unit), row.Labels);
  });
  return result;
}

std::unique_ptr<Data> TKohonenNetwork::RecallOutputOnly(const Data* in) {
  Assert(in != nullptr, "in != nil", kModule);
  auto result = std::make_unique<Data>(in->DataRows(), 0, in->Inputs(), in->HasLabels());
  result->SetNames({{}, in->Names().Inputs});
  ForEachWinner(*this, *in, "TKohonenNetwork::RecallOutputOnly",
                [&](const DataRow& row, std::size_t unit) {
                  result->AddRow({}, Prototype(unit), row.Labels);
                });
  return result;
}

std::unique_ptr<Data> TKohonenNetwork::RecallCoordinates(const Data* in) const {
  Assert(in != nullptr, "in != nil", kModule);
  std::vector<int> coordinates(grid_.NumDimensions());
  std::vector<double> output(coordinates.size());
  auto result =
      std::make_unique<Data>(in->DataRows(), in->Inputs(), std::ssize(output), in->HasLabels());
  result->SetNames({in->Names().Inputs, {}});
  ForEachWinner(*this, *in, "TKohonenNetwork::RecallCoordinates",
                [&](const DataRow& row, std::size_t unit) {
                  grid_.CoordinatesOf(unit, coordinates);
                  std::ranges::copy(coordinates, output.begin());
                  result->AddRow(row.Inputs, output, row.Labels);
                });
  return result;
}

double TKohonenNetwork::RecallError(const Data* in, TErrorObj* err) {
  Assert(in != nullptr, "in != nil", kModule);
  Assert(err != nullptr, "err != nil", kModule);
  ForEachWinner(
      *this, *in, "TKohonenNetwork::RecallError",
      [&](const DataRow& row, std::size_t unit) { err->Accumulate(row.Inputs, Prototype(unit)); });
  return err->Value();
}

}  // namespace kiln
