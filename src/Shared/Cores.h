#pragma once

#include <cstddef>
#include <filesystem>

// The cores that the program may use.
namespace kiln::Cores {

// The cores on which the process may run; as many as its quota is worth, rounded up, where that is
// less. Other ranks on the same machine that may run on the same cores have their share of them.
// At least 1 and at most as many as a team has workers. All ranks call this function.
std::size_t Usable();

// The processor time that control groups leave to this process, in seconds a second, as
// containers and batch systems set it; infinite where there is no limit. `root` is where the file
// system begins.
double Quota(const std::filesystem::path& root);

}  // namespace kiln::Cores
