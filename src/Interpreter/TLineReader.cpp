#include "Interpreter/TLineReader.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "Shared/Interruption.h"
#include "Shared/Ranks.h"
#include "Shared/TDescriptor.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kFirstBuffer = std::size_t{1} << 16;

// Whatever is longer is too long even without its mark and its carriage return.
constexpr std::size_t kLongestText = kByteOrderMark.size() + TLineReader::kLongest + 1;

}  // namespace

TLineReader::TLineReader(int descriptor) : descriptor_(descriptor) {}

bool TLineReader::Next() {
  fault_ = {};
  line_ = {};
  try {
    SkipRest();
    ReadOn();
  } catch (const std::bad_alloc&) {
    is_skipping_ = true;
    return GiveUp("not enough memory");
  } catch (const TInterrupted&) {
    is_skipping_ = false;
    return GiveUp("interrupted");
  }
  if (begin_ == end_) return false;
  const std::string_view text(buffer_.data() + begin_, end_ - begin_);
  const std::size_t end = text.find('\n');
  if (end == text.npos && text.size() > kLongestText) {
    is_skipping_ = true;
    return GiveUp("line too long");
  }
  TakeLine(std::min(end, text.size()));
  return true;
}

// Passes over what is left of a line that was given up.
void TLineReader::SkipRest() {
  while (is_skipping_) {
    const std::string_view text(buffer_.data() + begin_, end_ - begin_);
    const std::size_t end = text.find('\n');
    begin_ = end == text.npos ? end_ : begin_ + end + 1;
    is_skipping_ = end == text.npos && Refill();
  }
}

// Reads until the buffer holds the end of a line, more than a line may have, or the last text.
void TLineReader::ReadOn() {
  for (std::size_t seen = 0;;) {
    const std::string_view text(buffer_.data() + begin_, end_ - begin_);
    if (text.find('\n', seen) != text.npos || text.size() > kLongestText) return;
    seen = text.size();
    if (!Refill()) return;
  }
}

// Reads more text behind what is not used yet. Returns false when there is none.
bool TLineReader::Refill() {
  if (at_end_) return false;
  if (begin_ > 0) std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
  end_ -= begin_;
  begin_ = 0;
  if (end_ == buffer_.size()) buffer_.resize(std::max(kFirstBuffer, 2 * end_));
  const ssize_t count = Receive(std::span(buffer_).subspan(end_));
  has_failed_ = count < 0;
  at_end_ = count <= 0;
  if (!at_end_) end_ += static_cast<std::size_t>(count);
  return !at_end_;
}

// Reads what is there, on the first rank, and hands it on. Returns how much, as ReadSome does.
ssize_t TLineReader::Receive(std::span<char> text) const {
  ssize_t count = 0;
  Ranks::OnFirst([&] { count = ReadSome(descriptor_, text.data(), text.size()); });
  count = Ranks::Shared(count);
  if (count > 0)
    Ranks::ShareBytes(std::as_writable_bytes(text.first(static_cast<std::size_t>(count))));
  return count;
}

// Makes the first `length` characters of the buffer the line, and passes over them and its end.
void TLineReader::TakeLine(std::size_t length) {
  line_ = {buffer_.data() + begin_, length};
  begin_ = std::min(begin_ + length + 1, end_);
  if (number_++ == 0 && line_.starts_with(kByteOrderMark)) {
    line_.remove_prefix(kByteOrderMark.size());
  }
  if (line_.ends_with('\r')) line_.remove_suffix(1);
  if (line_.size() > kLongest) {
    fault_ = "line too long";
  } else if (line_.find('\0') != line_.npos) {
    fault_ = "line holds a null character";
  }
  line_ = TrimBlanks(line_);
}

// Drops the text that has been read.
bool TLineReader::GiveUp(std::string_view fault) {
  begin_ = end_;
  ++number_;
  fault_ = fault;
  return true;
}

}  // namespace kiln
