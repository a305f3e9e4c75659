#include "Shared/Cores.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "FileTestTools.h"

namespace kiln {
namespace {

// A file system of a few files; path and text of each.
using TFiles = std::vector<std::pair<std::string, std::string>>;

double QuotaOf(const TFiles& files) {
  const std::filesystem::path root = ScratchPath();
  for (const auto& [path, text] : files) {
    std::filesystem::create_directories((root / path).parent_path());
    std::ofstream(root / path) << text;
  }
  const double quota = Cores::Quota(root);
  std::filesystem::remove_all(root);
  return quota;
}

TEST(Cores, AreFewerByTheLeastQuotaOfTheControlGroupsAroundTheProcess) {
  constexpr double kNone = std::numeric_limits<double>::infinity();
  const std::string groups = "proc/self/cgroup";
  const std::string top = "sys/fs/cgroup/";
  const std::pair<TFiles, double> cases[] = {
      {{}, kNone},
      {{{groups, "0::/\n"}, {top + "cpu.max", "max 100000\n"}}, kNone},
      {{{groups, "0::/\n"}, {top + "cpu.max", "150000 100000\n"}}, 1.5},
      {{{groups, "0::/job/step\n"},
        {top + "job/cpu.max", "50000 100000\n"},
        {top + "job/step/cpu.max", "200000 100000\n"}},
       0.5},
      // In a container, which sees its own group at the top.
      {{{groups, "12:memory:/box\n4:cpuacct,cpu:/box/1\n0::/\n"},
        {top + "cpu/cpu.cfs_quota_us", "300000"},
        {top + "cpu/cpu.cfs_period_us", "100000"},
        {top + "memory/cpu.cfs_quota_us", "1"}},
       3.0},
      {{{groups, "1:cpu:/\n"},
        {top + "cpu/cpu.cfs_quota_us", "-1\n"},
        {top + "cpu/cpu.cfs_period_us", "100000\n"}},
       kNone},
      {{{groups, "1:cpuset:/\nnonsense\n0::/\n"}, {top + "cpu.max", "5 0\n"}}, kNone},
  };
  for (const auto& [files, quota] : cases) {
    EXPECT_EQ(QuotaOf(files), quota) << (files.empty() ? "" : files.front().second);
  }
}

}  // namespace
}  // namespace kiln
