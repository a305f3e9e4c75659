#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace kiln {

// What "$NAME" stands for in scripts. A name is made of letters, digits and underscores and does
// not begin with a digit.
class TDefinitions {
 public:
  // Takes "NAME=VALUE"; a name that is defined again gets the new value. Returns whether it is one.
  bool Add(std::string_view definition);

  // The line with all names replaced, in `room`; a dollar without a name stays. Where nothing is
  // defined, or there is no dollar, it is the line itself. Throws TCommandFailure for a name that
  // is not defined.
  std::string_view Expanded(std::string_view line, std::string& room) const;

 private:
  std::map<std::string, std::string, std::less<>> values_;
};

}  // namespace kiln
