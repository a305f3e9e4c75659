#pragma once

#include <exception>
#include <string>

namespace kiln {

// An internal check that did not hold: a caller broke a contract, or a file led the program where
// its reader should not have let it. what() reads
// "Assertion failed: EXPRESSION, file MODULE, line N".
class TAssertion : public std::exception {
 public:
  TAssertion(const std::string& expression, const std::string& module, int line);

  const char* what() const noexcept override { return text_.c_str(); }

 private:
  std::string text_;
};

// Throws TAssertion unless `condition` holds. `module` names the source without its ending, for
// example "NeuralNets/TBasicNetwork". Checks that users may quote keep a fixed line number, given
// as `line`; all others report where they stand.
inline void Assert(bool condition, const char* expression, const char* module,
                   int line = __builtin_LINE()) {
  if (!condition) throw TAssertion(expression, module, line);
}

// Throws TAssertion with the expression "false": for a path that must not be taken.
[[noreturn]] inline void AssertFalse(const char* module, int line = __builtin_LINE()) {
  throw TAssertion("false", module, line);
}

}  // namespace kiln
