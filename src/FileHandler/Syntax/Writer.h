#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace kiln::FileTools {

// Lays out files in the bracketed syntax. Tags and statements are lines of their own, "[Name]" and
// "[Name = value]"; between OpenBracket and CloseBracket they share one, "[A=1 B=2 ]".
//
// Text is gathered and handed to the stream in large pieces: at the latest by the destructor.
// Between two pieces a requested interruption ends the writing: each operation may throw
// TInterrupted.
class Writer {
 public:
  explicit Writer(std::ostream& out);
  ~Writer();

  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  // The version line and an empty one. REQUIRES: no bracket is open.
  void WriteFormatVersion();

  void WriteStartTag(std::string_view name);
  void WriteEndTag(std::string_view name);  // REQUIRES: no bracket is open.

  void WriteString(std::string_view name, std::string_view value);
  void WriteInteger(std::string_view name, std::int64_t value);
  void WriteNumber(std::string_view name, double value, int decimals);

  // A word, or the shortest form of a number, and a blank.
  void WriteToken(std::string_view word);
  void WriteNumberToken(double value);

  void WriteNewline();

  // `text` as it is: comments, padding, cells.
  void WriteText(std::string_view text);

  void OpenBracket();
  void CloseBracket();        // and ends the line
  void CloseBracketInLine();  // and stays on the line

 private:
  void Flush();

  std::ostream& out_;
  std::string buffer_;
  bool bracket_open_ = false;
};

}  // namespace kiln::FileTools
