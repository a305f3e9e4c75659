#include "FileHandler/Syntax/Writer.h"

#include <ostream>

#include "Shared/Interruption.h"
#include "Shared/NumberFormat.h"
#include "Shared/TAssertion.h"

namespace kiln::FileTools {

namespace {

// Users know the assertions about the syntax by this name, those of writing included.
constexpr char kModule[] = "FileHandler/ParseTools";

constexpr std::size_t kPiece = std::size_t{1} << 20;

}  // namespace

Writer::Writer(std::ostream& out) : out_(out) {}

Writer::~Writer() {
  Flush();
}

void Writer::WriteFormatVersion() {
  Assert(!bracket_open_, "bracket", kModule);
  WriteText("[FormatVersion = 1.0]\n\n");
}

void Writer::WriteStartTag(std::string_view name) {
  if (bracket_open_) {
    WriteToken(name);
  } else {
    buffer_.append("[").append(name).append("]");
    WriteNewline();
  }
}

void Writer::WriteEndTag(std::string_view name) {
  Assert(!bracket_open_, "bracket", kModule);
  buffer_.append("[~").append(name).append("]");
  WriteNewline();
}

void Writer::WriteString(std::string_view name, std::string_view value) {
  if (bracket_open_) {
    buffer_.append(name).append("=");
    WriteToken(value);
  } else {
    buffer_.append("[").append(name).append(" = ").append(value).append("]");
    WriteNewline();
  }
}

void Writer::WriteInteger(std::string_view name, std::int64_t value) {
  WriteString(name, std::to_string(value));
}

void Writer::WriteNumber(std::string_view name, double value, int decimals) {
  WriteString(name, FormatFixed(value, decimals));
}

void Writer::WriteToken(std::string_view word) {
  buffer_.append(word);
  WriteText(" ");
}

void Writer::WriteNumberToken(double value) {
  AppendShortest(buffer_, value);
  WriteText(" ");
}

void Writer::WriteNewline() {
  WriteText("\n");
}

void Writer::WriteText(std::string_view text) {
  buffer_.append(text);
  if (buffer_.size() < kPiece) return;
  Interruption::Check();
  Flush();
}

void Writer::OpenBracket() {
  bracket_open_ = true;
  WriteText("[");
}

void Writer::CloseBracket() {
  CloseBracketInLine();
  WriteNewline();
}

void Writer::CloseBracketInLine() {
  bracket_open_ = false;
  WriteText("]");
}

void Writer::Flush() {
  out_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  buffer_.clear();
}

}  // namespace kiln::FileTools
