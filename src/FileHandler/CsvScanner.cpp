#include "FileHandler/CsvScanner.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <system_error>
#include <utility>

#include "Shared/NumberScan.h"
#include "Shared/Text.h"

namespace kiln::CsvFile {

namespace {

constexpr char kQuote = '"';
constexpr char kDecimalCommaSeparator = ';';
constexpr std::size_t kMostShown = 60;  // characters of a text in a message

// Whether a quote is open behind the text where none is in front of it. Most tables have few.
bool HasOddQuotes(std::string_view text) {
  bool is_odd = false;
  for (std::size_t at = 0; (at = text.find(kQuote, at)) != text.npos; ++at) is_odd = !is_odd;
  return is_odd;
}

}  // namespace

TFault::TFault(std::string message, std::size_t offset, std::size_t column)
    : message_(std::move(message)), offset_(offset), column_(column) {}

bool TCell::IsMissing() const {
  if (text.empty()) return true;
  return !quoted && (text == "NA" || text == "?" || EqualNoCase(text, "nan"));
}

TScanner::TScanner(std::string_view text, char separator, std::size_t offset)
    : begin_(text.data()),
      at_(begin_ + offset),
      end_(begin_ + text.size()),
      cell_(at_),
      separator_(separator) {}

bool TScanner::IsCellEnd(const char* at) const {
  return at == end_ || *at == separator_ || *at == '\n' || *at == '\r';
}

void TScanner::SkipEmptyLines() {
  while (at_ != end_ && *at_ != separator_ && IsCellEnd(at_)) ReadSeparator();
}

bool TScanner::ReadNumber(double& value) {
  const char* first = at_;
  while (first != end_ && *first == ' ') ++first;
  const auto [behind, error] = std::from_chars(first, end_, value);
  if (error != std::errc() || !IsCellEnd(behind) || std::isnan(value)) return false;
  cell_ = at_;
  at_ = behind;
  return true;
}

TCell TScanner::ReadCell() {
  cell_ = at_;
  while (at_ != end_ && *at_ == ' ') ++at_;
  if (at_ != end_ && *at_ == kQuote) return ReadQuoted();
  const char* const first = at_;
  for (; !IsCellEnd(at_); ++at_) {
    if (*at_ == kQuote) Fail("a quote inside a cell without quotes");
    if (*at_ == '\0') Fail("a NUL character");
  }
  return {TrimBlanks({first, static_cast<std::size_t>(at_ - first)}), false};
}

// The cell whose opening quote stands here. Two quotes in it stand for one.
TCell TScanner::ReadQuoted() {
  unquoted_.clear();
  for (;;) {
    const char* const piece = at_ + 1;
    const auto* const quote = static_cast<const char*>(
        std::memchr(piece, kQuote, static_cast<std::size_t>(end_ - piece)));
    if (!quote) Fail("a quote without an end");
    unquoted_.append(piece, quote);
    at_ = quote + 1;
    if (at_ == end_ || *at_ != kQuote) break;
    unquoted_ += kQuote;
  }
  while (at_ != end_ && *at_ == ' ') ++at_;
  if (!IsCellEnd(at_)) Fail("text behind the closing quote");
  if (unquoted_.find('\0') != unquoted_.npos) Fail("a NUL character");
  return {unquoted_, true};
}

bool TScanner::IsNumber(std::string_view cell, double& value) const {
  if (cell.starts_with('+') && !cell.starts_with("+-")) cell.remove_prefix(1);
  std::string with_point;
  if (separator_ == kDecimalCommaSeparator && std::ranges::count(cell, ',') == 1) {
    with_point = cell;
    with_point[with_point.find(',')] = '.';
    cell = with_point;
  }
  const char* const last = cell.data() + cell.size();
  const auto [behind, error] = std::from_chars(cell.data(), last, value);
  if (error == std::errc::invalid_argument || behind != last || std::isnan(value)) return false;
  if (error == std::errc::result_out_of_range) value = ScanNumber(cell).value_or(0.0);
  return true;
}

bool TScanner::ReadSeparator() {
  if (at_ != end_ && *at_ == separator_) {
    ++at_;
    ++column_;
    return true;
  }
  column_ = 0;
  if (at_ != end_ && *at_ == '\r') ++at_;
  if (at_ != end_ && *at_ == '\n') ++at_;
  return false;
}

void TScanner::Fail(const std::string& message) const {
  throw TFault(message, static_cast<std::size_t>(cell_ - begin_), column_);
}

void TScanner::FailRow(const std::string& message) const {
  throw TFault(message, static_cast<std::size_t>(cell_ - begin_), kNoColumn);
}

std::string Shown(std::string_view text) {
  const auto is_control = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; };
  const auto control = std::ranges::find_if(text, is_control) - text.begin();
  std::size_t size = std::min(static_cast<std::size_t>(control), kMostShown);
  if (size == text.size()) return std::string(text);
  while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80) --size;
  return std::string(text.substr(0, size)) + "...";
}

std::size_t LineAt(std::string_view text, std::size_t offset) {
  std::size_t line = 1;
  for (std::size_t i = 0; i < offset; ++i) {
    const bool is_lone_return = text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n');
    if (text[i] == '\n' || is_lone_return) ++line;
  }
  return line;
}

char FindSeparator(std::string_view text) {
  bool has_semicolon = false;
  bool quoted = false;
  for (const char c : text) {
    if (c == kQuote) quoted = !quoted;
    if (quoted) continue;
    if (c == '\t') return c;
    if (c == '\n' || c == '\r') break;
    has_semicolon = has_semicolon || c == ';';
  }
  return has_semicolon ? ';' : ',';
}

std::size_t PieceEnd(std::string_view text, std::size_t begin, std::size_t size) {
  if (text.size() - begin <= size) return text.size();
  bool quoted = HasOddQuotes(text.substr(begin, size));
  for (std::size_t at = begin + size; at < text.size(); ++at) {
    if (text[at] == kQuote) quoted = !quoted;
    if (text[at] == '\n' && !quoted) return at + 1;
  }
  return text.size();
}

}  // namespace kiln::CsvFile
