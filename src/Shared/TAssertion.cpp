#include "Shared/TAssertion.h"

#include <string_view>

namespace kiln {

namespace {

// "Interpreter/Checks" for "/home/me/kiln/src/Interpreter/Checks.h".
std::string_view ShownSource(std::string_view source) {
  constexpr std::string_view kRoot = "src/";
  const std::size_t root = source.rfind(kRoot);
  if (root == source.npos) return source;
  source.remove_prefix(root + kRoot.size());
  return source.substr(0, source.rfind('.'));
}

}  // namespace

TAssertion::TAssertion(const std::string& expression, const std::string& source, int line)
    : text_("Assertion failed: " + expression + ", file " + std::string(ShownSource(source)) +
            ", line " + std::to_string(line)) {}

}  // namespace kiln
