#pragma once

#include <vector>

namespace kiln {

using TValues = std::vector<double>;
using TSizes = std::vector<int>;  // sizes, columns, positions: whatever is counted

}  // namespace kiln
