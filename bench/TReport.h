#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Measure.h"

namespace kiln {

// The table that a run prints, a line as soon as it is measured, as Markdown.
class TReport {
 public:
  // Rows whose work does not contain `filter` are neither measured nor printed.
  TReport(int repetitions, std::string filter);

  // Whether a row of this name is asked for: what it needs can be left unmade otherwise.
  bool Wants(std::string_view work) const { return work.find(filter_) != work.npos; }

  // Kiln beside a peer, both for the same passes, of `items` patterns, rows or the like each. The
  // ratio is the peer's time over Kiln's and shall be `goal` at least.
  void AddComparison(const std::string& work, const TWork& kiln, const std::string& peer_name,
                     const TWork& peer, double items, double goal);

  // Seconds until an error was small enough, Kiln's beside those of a peer, of which there are none
  // where it is not installed. Infinity stands for a side that did not come to that.
  void AddArrival(const std::string& work, double kiln, const std::string& peer_name,
                  std::optional<double> peer, double goal);

  // A piece of work of growing size, and how many items its pass has.
  struct TSize {
    std::string name;
    TWork work;
    double items;
  };

  // The time of an item at every size but the first beside that at the size before it. The ratio
  // shall be 1.5 at most.
  void AddGrowth(const std::string& work, std::span<const TSize> sizes);

  // Work of so many operations a pass beside a loop of nothing else, which shows how many the
  // processor can do. The ratio of what both do in a second shall be `goal` at least.
  void AddShare(const std::string& work, const TWork& kiln, double operations, const TWork& peak,
                double peak_operations, double goal);

  // Memory that was taken beside the `expected`, both in bytes. The ratio shall be `goal` at most.
  void AddMemory(const std::string& work, double taken, const std::string& expected_name,
                 double expected, double goal);

  // How many goals were met.
  void PrintSummary() const;

 private:
  struct TLine {
    std::string work;
    std::string kiln;
    std::string other_name;
    std::string other;
    double ratio;
    std::string goal;
    bool met;
  };

  void Print(const TLine& line);

  int repetitions_;
  std::string filter_;
  int lines_ = 0;
  int met_ = 0;
};

}  // namespace kiln
