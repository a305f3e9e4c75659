// Recall of single patterns and of data sets, the same for every kind of network.

#include <algorithm>
#include <string>

#include "DataObject/Data.h"
#include "NeuralNets/TBasicNetwork.h"
#include "NeuralNets/TErrorObj.h"
#include "NeuralNets/TTeamRecall.h"
#include "Shared/Interruption.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"

namespace kiln {

namespace {

void CheckColumns(int columns, std::size_t needed, const char* side, const char* function) {
  if (static_cast<std::size_t>(columns) == needed) return;
  throw TException("the data set has " + std::to_string(columns) + " " + side +
                       " but the network has " + std::to_string(needed),
                   "Invalid Parameter", function);
}

// What the outputs of a network are called: as those that the set expects, where these are as many.
std::vector<std::string> OutputNames(const Data& set, std::size_t outputs) {
  const std::vector<std::string>& names = set.Names().Outputs;
  return names.size() == outputs ? names : std::vector<std::string>();
}

}  // namespace

void TBasicNetwork::RecallPattern(std::span<const double> input, std::span<double> output) {
  for (const auto& layer : layers_) layer->Compute(input);
  std::ranges::copy(layers_[output_layer_]->Outputs(), output.begin());
}

void TBasicNetwork::CheckInputsFit(const Data& data, const char* function) const {
  CheckColumns(data.Inputs(), NumInputs(), "inputs", function);
}

void TBasicNetwork::CheckFits(const Data& data, const char* function) const {
  CheckInputsFit(data, function);
  CheckColumns(data.Outputs(), NumOutputs(), "outputs", function);
}

std::unique_ptr<Data> TBasicNetwork::Recall(const Data* in) {
  Assert(in != nullptr, "in != nil");
  CheckInputsFit(*in, "TBasicNetwork::Recall");
  const int outputs = static_cast<int>(NumOutputs());
  auto result = std::make_unique<Data>(in->DataRows(), in->Inputs(), outputs, false);
  result->SetNames({in->Names().Inputs, OutputNames(*in, NumOutputs())});
  TTeamRecall(*this).ForEachRow(*in,
                                [&](int n, const DataRow& row, std::span<const double> output) {
                                  Interruption::Check();
                                  const Data::RowValues values = result->ValuesAt(n);
                                  std::ranges::copy(row.Inputs, values.Inputs.begin());
                                  std::ranges::copy(output, values.Outputs.begin());
                                });
  result->AddAllRows();
  return result;
}

std::unique_ptr<Data> TBasicNetwork::RecallOutputOnly(const Data* in) {
  // Users quote this name for every kind of network.
  constexpr char kFunction[] = "TTarn::RecallOutputOnly";
  if (in == nullptr) {
    throw TException("Null data pointer", "Null Pointer Parameter", kFunction);
  }
  CheckInputsFit(*in, kFunction);
  const int outputs = static_cast<int>(NumOutputs());
  auto result = std::make_unique<Data>(in->DataRows(), 0, outputs, false);
  result->SetNames({{}, OutputNames(*in, NumOutputs())});
  TTeamRecall(*this).ForEachRow(*in, [&](int n, const DataRow&, std::span<const double> output) {
    Interruption::Check();
    std::ranges::copy(output, result->ValuesAt(n).Outputs.begin());
  });
  result->AddAllRows();
  return result;
}

double TBasicNetwork::RecallError(const Data* in, TErrorObj* err) {
  Assert(in != nullptr, "in != nil");
  Assert(err != nullptr, "err != nil");
  CheckFits(*in, "TBasicNetwork::RecallError");
  return TTeamRecall(*this).Error(*in, *err);
}

}  // namespace kiln
