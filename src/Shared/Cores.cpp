#include "Shared/Cores.h"

#include <sched.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "Shared/Ranks.h"
#include "Shared/TTeam.h"

namespace kiln::Cores {

namespace {

constexpr double kUnlimited = std::numeric_limits<double>::infinity();

// Whether the process may run on a core, at the place of each, as 1 or 0.
std::vector<std::uint64_t> OwnCores() {
  std::vector<std::uint64_t> own(TTeam::kMaxWorkers);
#ifdef CPU_COUNT
  cpu_set_t set;
  if (sched_getaffinity(0, sizeof set, &set) == 0) {
    for (std::size_t core = 0; core < own.size(); ++core) own[core] = CPU_ISSET(core, &set) != 0;
    return own;
  }
#endif
  const std::size_t all = std::thread::hardware_concurrency();
  std::fill_n(own.begin(), std::clamp<std::size_t>(all, 1, own.size()), 1);
  return own;
}

// A quota as version 2 writes it, "150000 100000", both in microseconds, or "max 100000".
double QuotaIn(std::ifstream quota, std::ifstream period) {
  double allowed = 0.0;
  double each = 0.0;
  if (!(quota >> allowed) || allowed <= 0.0) return kUnlimited;  // -1 in version 1
  if (!(quota >> each) && !(period >> each)) return kUnlimited;
  return each > 0.0 ? allowed / each : kUnlimited;
}

// The least quota of a group and of those that it stands in. In a container the files may begin
// with a group further down than the path says, hence those that are not there are passed over.
double LeastQuota(const std::filesystem::path& hierarchy, std::filesystem::path group) {
  double least = kUnlimited;
  for (;; group = group.parent_path()) {
    const std::filesystem::path folder = hierarchy / group;
    least = std::min({least, QuotaIn(std::ifstream(folder / "cpu.max"), std::ifstream()),
                      QuotaIn(std::ifstream(folder / "cpu.cfs_quota_us"),
                              std::ifstream(folder / "cpu.cfs_period_us"))});
    if (group.empty()) return least;
  }
}

}  // namespace

double Quota(const std::filesystem::path& root) {
  const std::filesystem::path hierarchies = root / "sys/fs/cgroup";
  std::ifstream groups(root / "proc/self/cgroup");
  double least = kUnlimited;
  // A line has a number, the controllers, none in version 2, and the path of the group.
  for (std::string number, controllers, group; std::getline(groups, number, ':') &&
                                               std::getline(groups, controllers, ':') &&
                                               std::getline(groups, group);) {
    const std::filesystem::path path = std::filesystem::path(group).relative_path();
    if (controllers.empty()) {
      least = std::min(least, LeastQuota(hierarchies, path));
    } else if (("," + controllers + ",").find(",cpu,") != std::string::npos) {
      // Where controllers share a hierarchy, each has a link to it by its own name; the folder may
      // name them in another order than the line does.
      least = std::min(least, LeastQuota(hierarchies / "cpu", path));
    }
  }
  return least;
}

std::size_t Usable() {
  const std::vector<std::uint64_t> own = OwnCores();
  // How many ranks may run on each core, and, behind these, how many there are on this machine.
  std::vector<std::uint64_t> ranks = own;
  ranks.push_back(1);
  Ranks::AddUpOnMachine(ranks);
  double cores = 0.0;
  for (std::size_t core = 0; core < own.size(); ++core) {
    if (own[core] != 0) cores += 1.0 / static_cast<double>(ranks[core]);
  }
  const auto company = static_cast<double>(ranks.back());
  cores = std::min(cores, std::ceil(Quota("/")) / company);
  constexpr double kRounding = 1e-6;  // thirds may add up to a little less than a core
  return std::clamp<std::size_t>(static_cast<std::size_t>(cores + kRounding), 1,
                                 TTeam::kMaxWorkers);
}

}  // namespace kiln::Cores
