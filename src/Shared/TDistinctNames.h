#pragma once

#include <map>
#include <string>

namespace kiln {

// Gives names that differ from each other in any case.
class TDistinctNames {
 public:
  // `name` or, where that was given before, `name` with the first number from "_2" on behind it
  // that makes a new one.
  std::string Take(const std::string& name);

 private:
  std::map<std::string, int> given_;  // in lower case, with the number that was tried last
};

}  // namespace kiln
