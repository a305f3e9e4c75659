#pragma once

#include <string_view>

namespace kiln {

// Where the lines of a conversation come from.
class TLineSource {
 public:
  TLineSource() = default;
  virtual ~TLineSource() = default;

  TLineSource(const TLineSource&) = delete;
  TLineSource& operator=(const TLineSource&) = delete;

  // Writes the prompt, after flushing all answers, and reads a line; false when there is none left.
  virtual bool Next(std::string_view prompt) = 0;

  // The line without the blanks at its ends, until the next call of Next().
  virtual std::string_view Line() const = 0;

  // Why the line is not to be run, see TLineReader; empty when all is well.
  virtual std::string_view Fault() const = 0;
};

}  // namespace kiln
