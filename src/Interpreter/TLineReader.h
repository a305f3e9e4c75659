#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace kiln {

// Reads commands line by line in bounded memory: of a line that is too long the rest is skipped,
// but not before the next line is asked for, since it may have no end. A carriage return at the end
// of a line and a byte order mark before the first one are no part of them.
class TLineReader {
 public:
  static constexpr std::size_t kLongest = 1'048'575;  // characters of a line

  // Reads from an open descriptor, which stays its owner's.
  explicit TLineReader(int descriptor);

  // Reads the next line; false when there is none left. A last line without an end counts.
  bool Next();

  // The line without the blanks at its ends, until the next call of Next().
  std::string_view Line() const { return line_; }

  // Why the line is not to be run, in the words that users are told: it was longer than it may be
  // or than memory is left, holds a null character, which would end texts that the system is
  // handed, or was given up by an interruption. Empty when all is well.
  std::string_view Fault() const { return fault_; }

  // Whether reading has ended by a fault of the system.
  bool HasFailed() const { return has_failed_; }

  // The number of the line, counted from 1.
  std::int64_t Number() const { return number_; }

 private:
  void SkipRest();
  void ReadOn();
  bool Refill();
  ssize_t Receive(std::span<char> text) const;
  void TakeLine(std::size_t length);
  bool GiveUp(std::string_view fault);

  int descriptor_;
  std::vector<char> buffer_;
  std::size_t begin_ = 0;  // the text that is not used yet is buffer_[begin_..end_)
  std::size_t end_ = 0;
  std::string_view line_;
  std::string_view fault_;
  std::int64_t number_ = 0;
  bool is_skipping_ = false;  // the rest of the line before is still to come
  bool at_end_ = false;
  bool has_failed_ = false;
};

}  // namespace kiln
