#pragma once

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

namespace kiln::CsvFile {

inline constexpr std::size_t kNoColumn = static_cast<std::size_t>(-1);

// What is wrong with a text, and where: the offset of a character, and the column in its row, or
// kNoColumn.
class TFault : public std::exception {
 public:
  TFault(std::string message, std::size_t offset, std::size_t column);

  std::size_t Offset() const { return offset_; }
  std::size_t Column() const { return column_; }
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  std::string message_;
  std::size_t offset_;
  std::size_t column_;
};

// A cell: its text without quotes, and without the blanks around it where it has none.
struct TCell {
  std::string_view text;  // valid until the next cell is read
  bool quoted;

  // Whether the cell says nothing: it is empty, or one of the signs for that stands bare in it.
  bool IsMissing() const;
};

// Walks through a text cell by cell.
//
// The separator of cells is a tab, a semicolon or a comma. Beside semicolons a number may have a
// comma in place of the point. Rows end with a line feed, a carriage return or both.
class TScanner {
 public:
  // Starts at `offset` of the text, where a row begins. The text outlives the scanner.
  TScanner(std::string_view text, char separator, std::size_t offset = 0);

  std::size_t Offset() const { return static_cast<std::size_t>(at_ - begin_); }
  bool AtEnd() const { return at_ == end_; }

  // Passes over line ends that follow each other: lines with nothing in them.
  void SkipEmptyLines();

  // Reads the next cell if it is plainly a number, with nothing but blanks in front of it.
  bool ReadNumber(double& value);

  // Reads the next cell, whatever it holds.
  TCell ReadCell();

  // Whether the text of a cell is a number. "nan" is none.
  bool IsNumber(std::string_view cell, double& value) const;

  // Passes over what stands behind a cell: true for a separator, false for the end of a row.
  bool ReadSeparator();

  // Throw TFault at the cell that was read last, or in its row.
  [[noreturn]] void Fail(const std::string& message) const;
  [[noreturn]] void FailRow(const std::string& message) const;

 private:
  bool IsCellEnd(const char* at) const;
  TCell ReadQuoted();

  const char* begin_;
  const char* at_;
  const char* end_;
  const char* cell_;  // where the cell read last begins
  char separator_;
  std::size_t column_ = 0;
  std::string unquoted_;  // a cell that is not as it stands in the text
};

// `text` as a message can show it: cut off where it is long or goes on to another line.
std::string Shown(std::string_view text);

// The line, counted from 1, on which an offset stands. Lines end with a line feed, a carriage
// return or both.
// REQUIRES: the text is at least as long.
std::size_t LineAt(std::string_view text, std::size_t offset);

// The separator of a text by its first line: of tab, semicolon and comma the first that stands
// there outside quotes.
char FindSeparator(std::string_view text);

// Where a piece of the text from `begin` on ends that has about `size` characters and whole rows,
// so that pieces can be read on their own.
std::size_t PieceEnd(std::string_view text, std::size_t begin, std::size_t size);

}  // namespace kiln::CsvFile
