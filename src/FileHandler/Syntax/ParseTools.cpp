#include "FileHandler/Syntax/ParseTools.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "Shared/Narrowing.h"
#include "Shared/NumberScan.h"
#include "Shared/Ranks.h"
#include "Shared/TAssertion.h"
#include "Shared/TDescriptor.h"
#include "Shared/Text.h"

namespace kiln::FileTools {

namespace {

// The name by which users know the assertions about the syntax, wherever this file stands.
constexpr char kModule[] = "FileHandler/ParseTools";

constexpr double kNewestVersion = 1.0;
constexpr std::size_t kMaxStream = std::size_t{1} << 30;

enum class CharClass : unsigned char { kSeparator, kSpecial, kWord };

constexpr std::array<CharClass, 256> kCharClasses = [] {
  std::array<CharClass, 256> classes{};
  for (std::size_t c = 33; c <= 126; ++c) classes[c] = CharClass::kWord;
  classes[','] = CharClass::kSeparator;
  for (const char c : {'[', ']', '/', '*', '=', '<', '>'}) {
    classes[static_cast<unsigned char>(c)] = CharClass::kSpecial;
  }
  return classes;
}();

CharClass ClassOf(char c) {
  return kCharClasses[static_cast<unsigned char>(c)];
}

bool IsWordCharacter(char c) {
  return ClassOf(c) == CharClass::kWord;
}

// How much the file holds; 0 where it does not tell, as pipes and devices do not.
std::size_t SizeOf(const std::string& path) {
  std::error_code no_size;
  const auto size = std::filesystem::file_size(path, no_size);
  return no_size ? 0 : size;
}

// Reads all that the file holds. Returns whether it can be read.
bool ReadFile(const std::string& path, std::string& text) {
  const TDescriptor file = TDescriptor::Open(path, O_RDONLY);
  if (!file.IsOpen()) return false;
  // One more than the file holds: the first read meets the end, and nothing is moved. What does not
  // tell its size is read until it ends.
  text.assign(std::max<std::size_t>(SizeOf(path) + 1, 4096), '\0');
  std::size_t size = 0;
  for (;;) {
    if (size == text.size()) {
      if (size >= kMaxStream) throw std::length_error("a file without an end");
      text.resize(2 * size);
    }
    const ssize_t count = ReadSome(file.Number(), text.data() + size, text.size() - size);
    if (count < 0) return false;
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
  }
  text.resize(size);
  return true;
}

// "[KEYWORD = WHAT] expected"
std::string StatementExpected(std::string_view keyword, std::string_view what) {
  std::string message("[");
  return message.append(keyword).append(" = ").append(what).append("] expected");
}

bool IsStatement(const ParseItem& item, std::string_view keyword) {
  Assert(!keyword.empty(), "s != NULL", kModule);
  return item.kind == ParseItem::kStatement && EqualNoCase(item.name, keyword);
}

}  // namespace

Error::Error(std::string message, std::string file_name, std::size_t line)
    : message_(std::move(message)),
      file_name_(std::move(file_name)),
      line_(line),
      text_(message_ + " (" + file_name_ + ", line " + std::to_string(line_) + ")") {}

OpenError::OpenError(const std::string& path)
    : TException("Unable to open file " + path, "File Error", "FileTools::Reader::FromFile") {}

std::string ReadWholeFile(const std::string& path) {
  std::string text;
  bool is_read = false;
  Ranks::OnFirst([&] { is_read = ReadFile(path, text); });
  if (!Ranks::Shared(is_read)) throw OpenError(path);
  Ranks::ShareText(text);
  return text;
}

bool IsWord(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), IsWordCharacter);
}

std::string ToWord(std::string_view text) {
  std::string word(text.empty() ? "_" : text);
  std::ranges::replace_if(
      word, [](char c) { return !IsWordCharacter(c); }, '_');
  return word;
}

Reader Reader::FromFile(const std::string& path) {
  return Reader(ReadWholeFile(path), path);
}

Reader::Reader(std::string text, std::string file_name)
    : text_(std::move(text)), file_name_(std::move(file_name)) {}

std::string_view Reader::ReadToken() {
  for (;;) {
    SkipSeparators();
    if (position_ == text_.size()) return {};
    token_start_ = position_++;
    const char first = text_[token_start_];
    // Both a look at the next character and the end of a word may meet the zero behind the text,
    // which counts as a separator.
    if (first == '/' && text_[position_] == '*') {
      ++position_;
      SkipComment();
      continue;
    }
    if (first == '[' && text_[position_] == '~') ++position_;
    if (IsWordCharacter(first)) {
      while (IsWordCharacter(text_[position_])) ++position_;
    }
    return std::string_view(text_).substr(token_start_, position_ - token_start_);
  }
}

// Behind an inner comment the character before counts as the "*" of its opening, so that a "/"
// directly behind an inner "*/" closes the outer comment as well.
void Reader::SkipComment() {
  std::size_t depth = 1;
  char previous = ' ';
  while (depth > 0) {
    if (position_ == text_.size()) Fail("Unexpected end of file during comment");
    const char current = text_[position_++];
    if (previous == '*' && current == '/') {
      --depth;
      previous = '*';
    } else if (previous == '/' && current == '*') {
      ++depth;
      previous = ' ';
    } else {
      previous = current;
    }
  }
}

void Reader::SkipSeparators() {
  while (position_ < text_.size() && ClassOf(text_[position_]) == CharClass::kSeparator) {
    ++position_;
  }
}

ParseItem Reader::ReadItem(std::string_view current_block) {
  for (;;) {
    const std::string_view token = ReadFirstToken(current_block);
    if (token.empty()) return {};
    if (token == "[~") {
      ReadEndTag(current_block);
      return {};
    }
    if (token != "[") return {ParseItem::kToken, token, {}, false};
    const ParseItem item = ReadTagOrStatement(ReadToken());
    if (!IsStatement(item, "FormatVersion") || item.unbracketed) return item;
    CheckVersion(item.value);
  }
}

ParseItem Reader::ReadUnbracketedItem(std::string_view current_block) {
  const std::string_view token = ReadFirstToken(current_block);
  if (token.empty()) return {};
  return ReadTagOrStatement(token);
}

std::string_view Reader::ReadFirstToken(std::string_view current_block) {
  const std::string_view token = ReadToken();
  Assert(token != "]", "*token != ']'", kModule);
  if (token.empty() && !current_block.empty()) Fail("Unexpected end of file");
  return token;
}

// Behind the name and behind the value no comments are recognised.
ParseItem Reader::ReadTagOrStatement(std::string_view name) {
  CheckWord(name);
  ParseItem item{ParseItem::kStartTag, name, {}, false};
  SkipSeparators();
  if (position_ < text_.size() && text_[position_] == '=') {
    ++position_;
    item.kind = ParseItem::kStatement;
    item.value = ReadToken();
    CheckWord(item.value);
    SkipSeparators();
  }
  item.unbracketed = !TakeClosingBracket();
  return item;
}

bool Reader::TakeClosingBracket() {
  if (position_ == text_.size() || text_[position_] != ']') return false;
  ++position_;
  return true;
}

// The token in the place of the closing bracket is passed over, whatever it is.
void Reader::ReadEndTag(std::string_view current_block) {
  Assert(!current_block.empty(), "blockdef != NULL", kModule);
  if (!EqualNoCase(ReadToken(), current_block)) Fail("Unexpected End Tag");
  ReadToken();
}

void Reader::CheckVersion(std::string_view version) const {
  if (ParseNumber(version, *this) > kNewestVersion) Fail("Illegal Format Version");
}

void Reader::CheckWord(std::string_view token) const {
  if (token.empty()) Fail("Unexpected end of file");
  if (!IsWordCharacter(token.front())) Fail("Unexpected special character");
}

std::size_t Reader::Line() const {
  const auto place = text_.begin() + static_cast<std::ptrdiff_t>(token_start_);
  return 1 + static_cast<std::size_t>(std::count(text_.begin(), place, '\n'));
}

std::string Reader::Place() const {
  return " (" + file_name_ + ", line " + std::to_string(Line()) + ")";
}

void Reader::Fail(const std::string& message) const {
  throw Error(message, file_name_, Line());
}

std::string_view ExpectStartTag(const ParseItem& item, const Reader& reader) {
  if (item.kind != ParseItem::kStartTag) reader.Fail("start of block expected");
  return item.name;
}

std::string_view ExpectStartTag(const ParseItem& item, const Reader& reader,
                                std::string_view expected) {
  Assert(!expected.empty(), "s != NULL", kModule);
  if (item.kind != ParseItem::kStartTag || !EqualNoCase(item.name, expected)) {
    reader.Fail("[" + std::string(expected) + "] expected");
  }
  return item.name;
}

void ExpectEndTag(const ParseItem& item, const Reader& reader) {
  if (item.kind != ParseItem::kEnd) reader.Fail("End Tag expected");
}

// The name that was read follows the message without a gap: that is frozen.
std::string_view ExpectString(const ParseItem& item, const Reader& reader,
                              std::string_view keyword) {
  if (!IsStatement(item, keyword)) {
    reader.Fail(StatementExpected(keyword, "<string>").append(item.name));
  }
  return item.value;
}

void ExpectString(const ParseItem& item, const Reader& reader, std::string_view keyword,
                  std::string_view required) {
  if (!EqualNoCase(ExpectString(item, reader, keyword), required)) {
    reader.Fail(StatementExpected(keyword, required));
  }
}

std::int64_t ExpectInteger(const ParseItem& item, const Reader& reader, std::string_view keyword) {
  if (!IsStatement(item, keyword)) reader.Fail(StatementExpected(keyword, "<integer>"));
  return ParseInteger(item.value, reader);
}

double ExpectNumber(const ParseItem& item, const Reader& reader, std::string_view keyword) {
  if (!IsStatement(item, keyword)) reader.Fail(StatementExpected(keyword, "<number>"));
  return ParseNumber(item.value, reader);
}

std::int32_t ExpectInteger32(const ParseItem& item, const Reader& reader,
                             std::string_view keyword) {
  return ToInt32(ExpectInteger(item, reader, keyword));
}

std::int32_t ExpectCount(const ParseItem& item, const Reader& reader, std::string_view keyword) {
  const std::int32_t count = ExpectInteger32(item, reader, keyword);
  const auto promise = [&] { return std::string(keyword) + " = " + std::string(item.value); };
  if (count < 0) reader.Fail(promise() + " is negative");
  if (static_cast<std::size_t>(count) > reader.Remaining()) {
    reader.Fail(promise() + " is more than the file holds");
  }
  return count;
}

double ExpectNumberToken(const ParseItem& item, const Reader& reader) {
  if (item.kind != ParseItem::kToken) reader.Fail("Token (number) expected");
  return ParseNumber(item.name, reader);
}

std::int64_t ParseInteger(std::string_view text, const Reader& reader) {
  const auto value = ScanInteger(text);
  if (!value) reader.Fail("integer-expected");
  return *value;
}

double ParseNumber(std::string_view text, const Reader& reader) {
  const auto value = ScanNumber(text);
  if (!value) reader.Fail("number-expected");
  return *value;
}

}  // namespace kiln::FileTools
