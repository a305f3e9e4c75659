#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <string_view>
#include <vector>

namespace kiln {

// Reads commands line by line in bounded memory: of a line that is too long the rest is skipped,
// but not before the next line is asked for, since it may have no end. A carriage return at the end
// of a line counts as a blank.
class TLineReader {
 public:
  // Lines may hold up to `longest` characters. `in` must outlive the reader.
  TLineReader(std::istream& in, std::size_t longest);

  // Reads the next line; false when there is none left. A last line without an end counts.
  bool Next();

  // The line without the blanks at its ends, until the next call of Next().
  std::string_view Line() const;

  // Why the line is not to be run, in the words that users are told: it was longer than it may be,
  // or holds a null character, which would end texts that the system is handed. Empty when all is
  // well.
  std::string_view Fault() const { return fault_; }

  // The number of the line, counted from 1.
  std::int64_t Number() const { return number_; }

 private:
  std::istream& in_;
  std::vector<char> buffer_;  // with room for a terminator
  std::size_t length_ = 0;
  std::int64_t number_ = 0;
  bool too_long_ = false;
  std::string_view fault_;
};

}  // namespace kiln
