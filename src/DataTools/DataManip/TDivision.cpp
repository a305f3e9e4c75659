#include "DataTools/DataManip/TDivision.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <numeric>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace kiln {

namespace {

// Numbers of classes in the order in which they come.
template <typename TMap, typename TKey>
int NumberOf(TMap& numbers, const TKey& key) {
  return numbers.try_emplace(key, static_cast<int>(numbers.size())).first->second;
}

// How many rows of each class go into each part, the last of which takes the rows that are left:
// the share, rounded, so that all rows of classes and of parts add up.
//
// First every share is rounded down. What is left of a class, a row for some of the parts, goes to
// the parts that lag most behind the shares of the classes so far. In the end a part may still have
// a row too many and another one too few; then rows of some classes change parts.
class TStratification {
 public:
  TStratification(std::span<const int> classes, std::vector<std::int64_t> sizes)
      : rows_(std::ssize(classes)), sizes_(std::move(sizes)), lag_(sizes_.size()) {
    std::vector<std::int64_t> members;
    for (const int c : classes) {
      const auto number = static_cast<std::size_t>(c);
      if (number >= members.size()) members.resize(number + 1);
      ++members[number];
    }
    for (const std::int64_t n : members) AddClass(n);
    while (const auto over = FindPart(-1)) Move(*over);
  }

  // A number for each part. REQUIRES: there is that class.
  std::span<int> Counts(std::size_t c) {
    return std::span(counts_).subspan(c * sizes_.size(), sizes_.size());
  }

 private:
  // In units of 1 / rows.
  std::int64_t Share(std::int64_t members, std::size_t part) const {
    return members * sizes_[part];
  }

  void AddClass(std::int64_t members) {
    members_.push_back(members);
    std::vector<std::size_t> open;  // parts whose share is no whole number
    std::int64_t left = members;
    for (std::size_t part = 0; part < sizes_.size(); ++part) {
      const std::int64_t whole = Share(members, part) / rows_;
      counts_.push_back(static_cast<int>(whole));
      left -= whole;
      lag_[part] += Share(members, part) - whole * rows_;
      if (Share(members, part) % rows_ != 0) open.push_back(part);
    }
    std::ranges::stable_sort(open, std::ranges::greater(), [&](std::size_t p) { return lag_[p]; });
    for (std::size_t i = 0; i < static_cast<std::size_t>(left); ++i) {
      ++Counts(members_.size() - 1)[open[i]];
      lag_[open[i]] -= rows_;
    }
  }

  // A part that has a row too many (sign -1) or too few (1).
  std::optional<std::size_t> FindPart(int sign) const {
    const auto found = std::ranges::find_if(lag_, [&](std::int64_t lag) { return lag * sign > 0; });
    if (found == lag_.end()) return std::nullopt;
    return static_cast<std::size_t>(found - lag_.begin());
  }

  // Whether a part has its share of a class rounded up where it could have been rounded down.
  bool IsUp(std::size_t c, std::size_t part) {
    return Counts(c)[part] * rows_ > Share(members_[c], part);
  }
  bool CanGoUp(std::size_t c, std::size_t part) {
    return Counts(c)[part] * rows_ < Share(members_[c], part);
  }

  // A class of which a row can change parts.
  std::optional<std::size_t> FindClass(std::size_t from, std::size_t to) {
    for (std::size_t c = 0; c < members_.size(); ++c) {
      if (IsUp(c, from) && CanGoUp(c, to)) return c;
    }
    return std::nullopt;
  }

  // Takes a row from a part that has one too many to one that has one too few, on the shortest way
  // by way of others. There always is one, since the shares themselves add up.
  void Move(std::size_t over) {
    std::vector<std::optional<std::size_t>> before(sizes_.size());
    std::vector<std::size_t> reached = {over};
    std::size_t next = 0;
    while (lag_[reached[next]] <= 0) {
      const std::size_t from = reached[next++];
      for (std::size_t to = 0; to < sizes_.size(); ++to) {
        if (to == over || before[to] || !FindClass(from, to)) continue;
        before[to] = from;
        reached.push_back(to);
      }
    }
    std::size_t part = reached[next];
    lag_[over] += rows_;
    lag_[part] -= rows_;
    for (; part != over; part = *before[part]) {
      const std::size_t c = *FindClass(*before[part], part);
      --Counts(c)[*before[part]];
      ++Counts(c)[part];
    }
  }

  std::int64_t rows_;
  std::vector<std::int64_t> sizes_;    // of the parts
  std::vector<std::int64_t> lag_;      // what each part has too few, in units of 1 / rows
  std::vector<std::int64_t> members_;  // rows of each class
  std::vector<int> counts_;            // of each class and part
};

}  // namespace

std::vector<int> ClassesOf(const Data& set) {
  std::unordered_map<std::string, int> by_label;
  std::map<std::vector<double>, int> by_outputs;
  std::vector<int> classes;
  for (int n = 0; n < set.DataRows(); ++n) {
    const DataRow row = set.Row(n);
    if (row.Labels) {
      const auto& labels = row.Labels->Entries();
      const auto heaviest = std::ranges::max_element(labels, {}, &LabelEntry::Value);
      const std::string label = labels.empty() ? std::string() : heaviest->Name;
      classes.push_back(NumberOf(by_label, label));
    } else {
      const std::vector<double> outputs(row.Outputs.begin(), row.Outputs.end());
      classes.push_back(NumberOf(by_outputs, outputs));
    }
  }
  return classes;
}

TParts DivideInOrder(std::span<const int> sizes) {
  TParts parts;
  int first = 0;
  for (const int size : sizes) {
    parts.emplace_back(static_cast<std::size_t>(size));
    std::iota(parts.back().begin(), parts.back().end(), first);
    first += size;
  }
  return parts;
}

TParts DivideByClass(std::span<const int> classes, std::span<const int> sizes) {
  std::vector<std::int64_t> all_sizes(sizes.begin(), sizes.end());
  const std::int64_t given = std::accumulate(sizes.begin(), sizes.end(), std::int64_t{0});
  all_sizes.push_back(std::ssize(classes) - given);
  TStratification stratification(classes, std::move(all_sizes));
  TParts parts(sizes.size());
  for (std::size_t n = 0; n < classes.size(); ++n) {
    const std::span<int> counts = stratification.Counts(static_cast<std::size_t>(classes[n]));
    const auto part = std::ranges::find_if(counts, [](int left) { return left > 0; });
    --*part;
    const auto number = static_cast<std::size_t>(part - counts.begin());
    if (number < parts.size()) parts[number].push_back(static_cast<int>(n));
  }
  return parts;
}

}  // namespace kiln
