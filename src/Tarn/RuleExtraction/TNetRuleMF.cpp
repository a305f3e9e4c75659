#include <algorithm>
#include <cmath>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "Membership/TLShoulderTriangularMF.h"
#include "Membership/TRShoulderTriangularMF.h"
#include "Membership/TTriangularMF.h"
#include "Shared/TException.h"
#include "Tarn/RuleExtraction/TNetRule.h"
#include "Tarn/TMFGroups.h"

namespace kiln::TNetRule {

namespace {

// Weight layers whose weights are centres.
constexpr int kInputCentres = 1;
constexpr int kOutputCentres = 4;

// --- From the network ------------------------------------------------------------------------

void CheckLabels(bool fit, const char* what) {
  if (fit) return;
  throw TException("Labels unsuitable for this network", "Bad Format",
                   std::string("TNetRule::GetNetMF-") + what);
}

void CheckLabels(const TTarn& network, const TNetLabel& labels) {
  const std::vector<int> conditions = network.InputMF();
  const std::vector<int> actions = network.OutputMF();
  CheckLabels(labels.InputMF().size() == conditions.size(), "inputs");
  CheckLabels(labels.OutputMF().size() == actions.size(), "outputs");
  CheckLabels(labels.InputMF() == conditions, "condition");
  CheckLabels(labels.OutputMF() == actions, "action");
}

// The function of term k, whose feet stand on the neighbouring centres.
std::unique_ptr<TBasicMF> MakeMF(std::span<const double> centres, std::size_t k,
                                 TNetLabel::TName name) {
  const double centre = centres[k];
  if (k == 0) {
    return std::make_unique<TLShoulderTriangularMF>(std::move(name), centre, centres[1]);
  }
  const double left = centres[k - 1];
  if (k + 1 == centres.size()) {
    return std::make_unique<TRShoulderTriangularMF>(std::move(name), left, centre);
  }
  return std::make_unique<TTriangularMF>(std::move(name), left, centre, centres[k + 1]);
}

// The terms of one side of a network and their names.
struct TSideTerms {
  const char* set_type;
  const char* list_name;
  TMFGroups groups;
  std::vector<double> centres;
  const TNetLabel& labels;
  const TNetLabel::TName& (TNetLabel::*variable_name)(int) const;
  const TNetLabel::TName& (TNetLabel::*term_name)(int) const;
};

std::unique_ptr<TBasicMFSet> MakeSet(const TSideTerms& side, std::size_t v) {
  const std::size_t first = side.groups.First(v);
  const std::size_t count = side.groups.Count(v);
  const auto centres = std::span(side.centres).subspan(first, count);
  const auto [lowest, highest] = std::ranges::minmax(centres);
  auto set = std::make_unique<TBasicMFSet>(
      side.set_type, (side.labels.*side.variable_name)(static_cast<int>(v)),
      static_cast<int>(count), std::min(0.0, lowest), std::max(1.0, highest));
  for (std::size_t k = 0; k < count; ++k) {
    const auto& name = (side.labels.*side.term_name)(static_cast<int>(first + k));
    set->SetMF(static_cast<int>(k), MakeMF(centres, k, name));
  }
  return set;
}

TMFSetList MakeList(const TSideTerms& side) {
  TMFSetList list(static_cast<int>(side.groups.NumVariables()), side.list_name);
  for (std::size_t v = 0; v < side.groups.NumVariables(); ++v) {
    list.SetMFSet(static_cast<int>(v), MakeSet(side, v));
  }
  return list;
}

// --- Into the network ------------------------------------------------------------------------

[[noreturn]] void Fail(const std::string& message, const char* function = "TNetRule::SetNetMF") {
  throw TException(message, "Bad Parameter", function);
}

void CheckCounts(const TMFSetList& list, const std::vector<int>& terms, const char* function) {
  if (list.MFCounts() != terms) {
    Fail("Number of Fuzzy MF not appropriate for this network", function);
  }
}

// An output beyond 0 and 1 would be refused in every recall.
void CheckRange(std::span<const double> output_centres) {
  const auto [lowest, highest] = std::ranges::minmax(output_centres);
  if (lowest < 0.0 || highest > 1.0) Fail("Output MF centres must lie between 0 and 1");
}

// Collects the centres of one side, after checks.
class TCentreReader {
 public:
  // `side` is "Input" or "Output", as failures write it.
  explicit TCentreReader(std::string side) : side_(std::move(side)) {}

  // REQUIRES: every set of the list has at least two members.
  std::vector<double> Read(const TMFSetList& list) {
    for (int v = 0; v < list.Count(); ++v) ReadSet(*list.GetMFSet(v));
    return std::move(centres_);
  }

 private:
  void ReadSet(const TBasicMFSet& set) {
    const int last = set.NumberOfMF() - 1;
    Append<TLShoulderTriangularMF>(set.GetMF(0), "LeftShouldered");
    for (int k = 1; k < last; ++k) Append<TTriangularMF>(set.GetMF(k), "Centred");
    Append<TRShoulderTriangularMF>(set.GetMF(last), "RightShouldered");
  }

  template <typename TMF>
  void Append(const TBasicMF* function, const char* kind) {
    const auto* centred = dynamic_cast<const TMF*>(function);
    if (!centred) Fail("Inappropriate " + side_ + " MF type: Should be " + kind);
    if (!std::isfinite(centred->Centre())) Fail(side_ + " MF centre is not a finite number");
    centres_.push_back(centred->Centre());
  }

  std::string side_;
  std::vector<double> centres_;
};

}  // namespace

TNetMF GetNetMF(const TTarn& network, const TNetLabel& labels) {
  CheckLabels(network, labels);
  const TSideTerms inputs = {"Input",
                             "inputs",
                             TMFGroups(network.InputMF()),
                             network.GetWeightLayer(kInputCentres),
                             labels,
                             &TNetLabel::GetInputName,
                             &TNetLabel::GetConditionName};
  const TSideTerms outputs = {"Output",
                              "outputs",
                              TMFGroups(network.OutputMF()),
                              network.GetWeightLayer(kOutputCentres),
                              labels,
                              &TNetLabel::GetOutputName,
                              &TNetLabel::GetActionName};
  return {MakeList(inputs), MakeList(outputs)};
}

void SetNetMF(TTarn& network, const TMFSetList& inputs, const TMFSetList& outputs) {
  CheckCounts(inputs, network.InputMF(), "TNetRule::SetNetMF");
  CheckCounts(outputs, network.OutputMF(), "TNetRule:SetNetMF");
  const std::vector<double> input_centres = TCentreReader("Input").Read(inputs);
  const std::vector<double> output_centres = TCentreReader("Output").Read(outputs);
  CheckRange(output_centres);
  network.SetWeightLayer(kInputCentres, input_centres);
  network.SetWeightLayer(kOutputCentres, output_centres);
}

}  // namespace kiln::TNetRule
