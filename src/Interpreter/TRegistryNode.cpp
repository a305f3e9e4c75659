#include "Interpreter/TRegistryNode.h"

#include <iterator>

namespace kiln {

namespace {

// By the place of the kind in TObject.
constexpr std::string_view kKinds[] = {
    "Data", "Tarn",  "TarnBP",    "TarnLWF",        "TarnGA",     "MLP",       "Kohonen",
    "BP",   "MLPGA", "DataStats", "KohonenTrainer", "TarnLabels", "FuzzyRules"};
static_assert(std::size(kKinds) == std::variant_size_v<TObject>);

}  // namespace

std::string_view TRegistryNode::Kind() const {
  return kKinds[object_.index()];
}

}  // namespace kiln
