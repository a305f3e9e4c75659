#pragma once

#include <exception>
#include <string>

namespace kiln {

// An internal check that did not hold: a caller broke a contract, or a file led the program where
// its reader should not have let it. what() reads
// "Assertion failed: EXPRESSION, file SOURCE, line N".
class TAssertion : public std::exception {
 public:
  // `source` is the path of a source file, of which the part between "src/" and the ending is
  // shown ("Interpreter/Checks"), or a name that is shown as it is.
  TAssertion(const std::string& expression, const std::string& source, int line);

  // Adds where in a file the check failed to what(): " (FILE, line N)".
  void AddPlace(const std::string& place) { text_ += place; }

  const char* what() const noexcept override { return text_.c_str(); }

 private:
  std::string text_;
};

// Throws TAssertion unless `condition` holds. A check is known to users by its expression and the
// place where it stands in the sources. One that users know by another name, or by a number that
// does not follow the code about, is given these as `source` and `line`.
inline void Assert(bool condition, const char* expression, const char* source = __builtin_FILE(),
                   int line = __builtin_LINE()) {
  if (!condition) throw TAssertion(expression, source, line);
}

// Throws TAssertion with the expression "false": for a path that must not be taken.
[[noreturn]] inline void AssertFalse(const char* source = __builtin_FILE(),
                                     int line = __builtin_LINE()) {
  throw TAssertion("false", source, line);
}

}  // namespace kiln
