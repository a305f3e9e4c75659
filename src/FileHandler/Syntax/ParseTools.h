#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

#include "Shared/TAssertion.h"
#include "Shared/TException.h"

// The bracketed syntax of all files: blocks "[Name]" ... "[~Name]", statements "[Name = value]",
// bare words, and comments "/* ... */" that nest. docs/file-formats.md describes it.
namespace kiln::FileTools {

// A fault in the text of a file.
class Error : public std::exception {
 public:
  Error(std::string message, std::string file_name, std::size_t line);

  const std::string& Message() const noexcept { return message_; }
  const std::string& FileName() const noexcept { return file_name_; }
  std::size_t Line() const noexcept { return line_; }

  // "MESSAGE (FILE, line N)"
  const char* what() const noexcept override { return text_.c_str(); }

 private:
  std::string message_;
  std::string file_name_;
  std::size_t line_;
  std::string text_;
};

// A file that cannot be opened or read at all.
class OpenError : public TException {
 public:
  explicit OpenError(const std::string& path);
};

// The text of a file. Throws OpenError; std::length_error for a pipe or a device that gives 2^30
// characters and has not ended.
std::string ReadWholeFile(const std::string& path);

// Whether `text` is a single word of the syntax, so that it can be written as a name or a value and
// read back.
bool IsWord(std::string_view text);

// `text` as a word: "_" for each character that no word has, and for no text at all.
std::string ToWord(std::string_view text);

struct ParseItem {
  enum Kind {
    kEnd = 0,        // the end of the block or, outside all blocks, of the text
    kToken = 1,      // a bare word; name holds it
    kStartTag = 2,   // "[name]"
    kStatement = 3,  // "[name = value]"
  };

  Kind kind = kEnd;
  std::string_view name;
  std::string_view value;
  bool unbracketed = false;  // no "]" behind the tag or statement: more follows on its line
};

// Cuts a text into items. Names and values are views into the text that the reader holds: they live
// as long as the reader does.
class Reader {
 public:
  // Reads the file at `path` into memory. Throws OpenError; std::length_error for a pipe or a
  // device that gives 2^30 characters and has not ended; TInterrupted.
  static Reader FromFile(const std::string& path);

  // Reads `text`; errors are reported under `file_name`.
  Reader(std::string text, std::string file_name);

  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  // The next word, special character or "[~"; empty at the end of the text.
  std::string_view ReadToken();

  // The next item of the block `current_block`, or of the top level where that is empty. Statements
  // of the format version are checked and passed over. Throws Error.
  ParseItem ReadItem(std::string_view current_block);

  // The next item of a line that holds several, "[A=1 B=2 ]", behind its first: the item stands
  // without a bracket of its own, and the last one of the line takes the closing bracket.
  ParseItem ReadUnbracketedItem(std::string_view current_block);

  const std::string& FileName() const { return file_name_; }

  // Line of the token read last, counted from 1.
  std::size_t Line() const;

  // The same for messages: " (FILE, line N)".
  std::string Place() const;

  // Number of characters not read yet: no more than that many values can follow.
  std::size_t Remaining() const { return text_.size() - position_; }

  // What has not been read yet; and passes over so many characters of it, of which there are
  // enough.
  std::string_view Rest() const { return std::string_view(text_).substr(position_); }
  void Pass(std::size_t characters) { position_ += characters; }

  // Throws Error unless `token`, the one just read, is a word.
  void CheckWord(std::string_view token) const;

  // Throws Error with `message` and the present place.
  [[noreturn]] void Fail(const std::string& message) const;

 private:
  // The first token of an item; empty at the end of the text, which must not fall into a block.
  std::string_view ReadFirstToken(std::string_view current_block);
  ParseItem ReadTagOrStatement(std::string_view name);
  void ReadEndTag(std::string_view current_block);
  void CheckVersion(std::string_view version) const;
  bool TakeClosingBracket();
  void SkipSeparators();
  void SkipComment();

  std::string text_;
  std::string file_name_;
  std::size_t position_ = 0;
  std::size_t token_start_ = 0;
};

// Returns read(reader). What it throws as TException or TAssertion gets the place of the reader
// behind its text, as an Error has it.
template <typename TRead>
auto ReadPlaced(Reader& reader, TRead read) {
  try {
    return read(reader);
  } catch (TException& failure) {
    failure.AddPlace(reader.Place());
    throw;
  } catch (TAssertion& failure) {
    failure.AddPlace(reader.Place());
    throw;
  }
}

// Each of the following throws Error, with the place of `reader`, unless `item`, the one just read
// from it, is what is asked for. Names and required values are compared ignoring case.
// REQUIRES: names and keywords are not empty.

// A start tag, of the given name or of any. Returns the name as the file has it.
std::string_view ExpectStartTag(const ParseItem& item, const Reader& reader);
std::string_view ExpectStartTag(const ParseItem& item, const Reader& reader,
                                std::string_view expected);

void ExpectEndTag(const ParseItem& item, const Reader& reader);

// A statement of the given name. Returns its value, or demands the value `required`.
std::string_view ExpectString(const ParseItem& item, const Reader& reader,
                              std::string_view keyword);
void ExpectString(const ParseItem& item, const Reader& reader, std::string_view keyword,
                  std::string_view required);
std::int64_t ExpectInteger(const ParseItem& item, const Reader& reader, std::string_view keyword);
double ExpectNumber(const ParseItem& item, const Reader& reader, std::string_view keyword);

// An integer. Beyond 32 bits it becomes the nearest 32-bit one, which is no valid index or count.
std::int32_t ExpectInteger32(const ParseItem& item, const Reader& reader, std::string_view keyword);

// The number of things that follow: an integer that is not negative and, as each thing takes at
// least one character, not more than the characters left. It is safe to take memory for that many.
std::int32_t ExpectCount(const ParseItem& item, const Reader& reader, std::string_view keyword);

// A bare word that is a number.
double ExpectNumberToken(const ParseItem& item, const Reader& reader);

// The number that `text` starts with, anything behind it being passed over (see ScanInteger and
// ScanNumber). Without one throws Error with the place of `reader`.
std::int64_t ParseInteger(std::string_view text, const Reader& reader);
double ParseNumber(std::string_view text, const Reader& reader);

}  // namespace kiln::FileTools
