#include "Interpreter/TLineReader.h"

#include <limits>

#include "Shared/Text.h"

namespace kiln {

TLineReader::TLineReader(std::istream& in, std::size_t longest) : in_(in), buffer_(longest + 1) {}

bool TLineReader::Next() {
  if (too_long_) in_.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  in_.getline(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  const auto taken = static_cast<std::size_t>(in_.gcount());
  if (in_.bad() || taken == 0) return false;  // an empty line takes its end
  // The only failure that is left is a full buffer without the end of the line.
  too_long_ = in_.fail();
  if (too_long_) in_.clear();
  // The end of a line was taken but not stored.
  const bool ended = !too_long_ && !in_.eof();
  length_ = ended ? taken - 1 : taken;
  fault_ = {};
  if (too_long_) {
    fault_ = "line too long";
  } else if (Line().find('\0') != std::string_view::npos) {
    fault_ = "line holds a null character";
  }
  ++number_;
  return true;
}

std::string_view TLineReader::Line() const {
  std::string_view line(buffer_.data(), length_);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return TrimBlanks(line);
}

}  // namespace kiln
