#include "Plot/SetColumns.h"

#include <algorithm>
#include <unordered_map>

#include "NeuralNets/TScore.h"
#include "Shared/NumberScan.h"

namespace kiln {

namespace {

std::vector<std::string> NamesOf(const std::vector<std::string>& given, int columns,
                                 const char* side) {
  if (!given.empty()) return given;
  std::vector<std::string> names;
  names.reserve(static_cast<std::size_t>(columns));
  for (int c = 0; c < columns; ++c) names.push_back(side + std::to_string(c));
  return names;
}

const std::string& Heaviest(const std::vector<LabelEntry>& labels) {
  return std::ranges::max_element(labels, {}, &LabelEntry::Value)->Name;
}

TRowClasses ByLabels(const Data& set) {
  TRowClasses classes;
  std::unordered_map<std::string_view, std::size_t> numbers;  // views of the labels in the set
  constexpr std::size_t kNone = std::size_t(-1);
  for (int n = 0; n < set.DataRows(); ++n) {
    const std::vector<LabelEntry>& labels = set.Row(n).Labels->Entries();
    if (labels.empty()) {
      classes.of_rows.push_back(kNone);
      continue;
    }
    const std::string& name = Heaviest(labels);
    const auto [place, is_new] = numbers.try_emplace(name, classes.names.size());
    if (is_new) classes.names.push_back(name);
    classes.of_rows.push_back(place->second);
  }
  std::ranges::replace(classes.of_rows, kNone, classes.names.size());
  return classes;
}

}  // namespace

TSetColumns::TSetColumns(const Data& set) : inputs_(static_cast<std::size_t>(set.Inputs())) {
  names_ = NamesOf(set.Names().Inputs, set.Inputs(), "input");
  for (std::string& name : NamesOf(set.Names().Outputs, set.Outputs(), "output")) {
    names_.push_back(std::move(name));
  }
}

std::optional<std::size_t> TSetColumns::Find(std::string_view word) const {
  const auto found = std::ranges::find(names_, word);
  if (found != names_.end()) return static_cast<std::size_t>(found - names_.begin());
  const bool is_number = word.find_first_not_of("0123456789") == word.npos;
  const std::int64_t number = is_number ? ScanInteger(word).value_or(-1) : -1;
  if (number < 0 || number >= static_cast<std::int64_t>(Count())) return std::nullopt;
  return static_cast<std::size_t>(number);
}

std::vector<std::string> ClassNames(const Data& set) {
  std::vector<std::string> names = NamesOf(set.Names().Outputs, set.Outputs(), "output");
  if (names.size() == 1) return {names.front() + " 0", names.front() + " 1"};
  const std::size_t end = names.front().find('=');
  if (end == std::string::npos) return names;
  const std::string beginning = names.front().substr(0, end + 1);
  const bool is_shared =
      std::ranges::all_of(names, [&](const auto& name) { return name.starts_with(beginning); });
  if (!is_shared) return names;
  for (std::string& name : names) name.erase(0, beginning.size());
  return names;
}

TRowClasses RowClassesOf(const Data& set) {
  if (set.HasLabels()) {
    TRowClasses classes = ByLabels(set);
    if (!classes.names.empty()) return classes;
  }
  if (!HasClasses(set)) return {};
  TRowClasses classes = {ClassNames(set), {}};
  for (int n = 0; n < set.DataRows(); ++n) {
    classes.of_rows.push_back(AnsweredClass(set.Row(n).Outputs));
  }
  return classes;
}

}  // namespace kiln
