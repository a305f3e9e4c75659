#include "Shared/TAssertion.h"

namespace kiln {

TAssertion::TAssertion(const std::string& expression, const std::string& module, int line)
    : text_("Assertion failed: " + expression + ", file " + module + ", line " +
            std::to_string(line)) {}

}  // namespace kiln
