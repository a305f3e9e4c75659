#include "TReport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

namespace kiln {

namespace {

constexpr double kGrowthGoal = 1.5;

// Three digits and the unit that suits them; `units` are a thousandfold apart.
std::string Scaled(double value, std::span<const char* const> units) {
  std::size_t unit = 0;
  while (value >= 999.5 && unit + 1 < units.size()) {
    value /= 1000.0;
    ++unit;
  }
  std::array<char, 32> text{};
  const int decimals = value < 9.995 ? 2 : value < 99.95 ? 1 : 0;
  std::snprintf(text.data(), text.size(), "%.*f %s", decimals, value, units[unit]);
  return text.data();
}

std::string Time(double seconds) {
  if (std::isinf(seconds)) return "never";
  static constexpr std::array kUnits = {"ps", "ns", "µs", "ms", "s"};
  return Scaled(seconds * 1e12, kUnits);
}

std::string Bytes(double bytes) {
  static constexpr std::array kUnits = {"B", "kB", "MB", "GB"};
  return Scaled(bytes, kUnits);
}

std::string Number(double value, int decimals) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
  return text.data();
}

}  // namespace

TReport::TReport(int repetitions, std::string filter)
    : repetitions_(repetitions), filter_(std::move(filter)) {
  std::puts("| work | Kiln | beside | there | ratio | goal | met |");
  std::puts("|---|---:|---|---:|---:|---:|---|");
}

void TReport::AddComparison(const std::string& work, const TWork& kiln,
                            const std::string& peer_name, const TWork& peer, double items,
                            double goal) {
  std::vector<TMeasured> pieces = {{kiln, PassesFor(kiln)}};
  if (peer) pieces.push_back({peer, pieces.front().passes});
  const std::vector<double> seconds = MedianSeconds(pieces, repetitions_);
  const std::string kiln_time = Time(seconds[0] / items);
  if (!peer) {
    std::printf("| %s | %s | %s | not installed | | | |\n", work.c_str(), kiln_time.c_str(),
                peer_name.c_str());
    return;
  }
  const double ratio = seconds[1] / seconds[0];
  Print({work, kiln_time, peer_name, Time(seconds[1] / items), ratio, "≥ " + Number(goal, 1),
         ratio >= goal});
}

void TReport::AddArrival(const std::string& work, double kiln, const std::string& peer_name,
                         std::optional<double> peer, double goal) {
  if (!peer) {
    std::printf("| %s | %s | %s | not installed | | | |\n", work.c_str(), Time(kiln).c_str(),
                peer_name.c_str());
    return;
  }
  const double ratio = std::isinf(kiln) ? 0.0 : *peer / kiln;
  Print({work, Time(kiln), peer_name, Time(*peer), ratio, "≥ " + Number(goal, 1), ratio >= goal});
}

void TReport::AddGrowth(const std::string& work, std::span<const TSize> sizes) {
  std::vector<TMeasured> pieces;
  for (const TSize& size : sizes) pieces.push_back({size.work, PassesFor(size.work)});
  std::vector<double> times = MedianSeconds(pieces, repetitions_);
  for (std::size_t i = 0; i < times.size(); ++i) times[i] /= sizes[i].items;
  for (std::size_t i = 1; i < times.size(); ++i) {
    const double ratio = times[i] / times[i - 1];
    Print({work + ": " + sizes[i].name, Time(times[i]), sizes[i - 1].name, Time(times[i - 1]),
           ratio, "≤ " + Number(kGrowthGoal, 1), ratio <= kGrowthGoal});
  }
}

void TReport::AddShare(const std::string& work, const TWork& kiln, double operations,
                       const TWork& peak, double peak_operations, double goal) {
  static constexpr std::array kUnits = {"FLOP/s", "kFLOP/s", "MFLOP/s", "GFLOP/s"};
  const std::array<TMeasured, 2> pieces = {{{kiln, PassesFor(kiln)}, {peak, PassesFor(peak)}}};
  const std::vector<double> seconds = MedianSeconds(pieces, repetitions_);
  const double rate = operations / seconds[0];
  const double most = peak_operations / seconds[1];
  Print({work, Scaled(rate, kUnits), "multiplying alone", Scaled(most, kUnits), rate / most,
         "≥ " + Number(goal, 1), rate / most >= goal});
}

void TReport::AddMemory(const std::string& work, double taken, const std::string& expected_name,
                        double expected, double goal) {
  const double ratio = taken / expected;
  Print({work, Bytes(taken), expected_name, Bytes(expected), ratio, "≤ " + Number(goal, 2),
         ratio <= goal});
}

void TReport::Print(const TLine& line) {
  const std::string ratio = std::isinf(line.ratio) ? "–" : Number(line.ratio, 2);
  std::printf("| %s | %s | %s | %s | %s | %s | %s |\n", line.work.c_str(), line.kiln.c_str(),
              line.other_name.c_str(), line.other.c_str(), ratio.c_str(), line.goal.c_str(),
              line.met ? "yes" : "**no**");
  std::fflush(stdout);
  ++lines_;
  if (line.met) ++met_;
}

void TReport::PrintSummary() const {
  std::printf("\n%d of %d goals met.\n", met_, lines_);
}

}  // namespace kiln
