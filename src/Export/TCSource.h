#pragma once

#include <cstddef>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include "FileHandler/Syntax/Writer.h"

namespace kiln {

// A source file of C that computes one function, void NAME(const double *input, double *output), as
// it grows. Tables go to the file at once, since they are nearly all of it; the functions that the
// statements call, and the statements themselves, follow when the file is finished.
//
// Everything that the file defines is called NAME or NAME_..., so that it can stand beside others
// in a program.
class TCSource {
 public:
  // `name` is an identifier.
  TCSource(FileTools::Writer& out, std::string name);

  const std::string& Name() const { return name_; }

  // The comment at the top. `text` is what stands in it, lines that end with a line feed.
  void WriteComment(std::string_view text);

  // Write a constant table and return what it is called. REQUIRES: it has a value; none is
  // infinite or no number.
  std::string Table(const std::string& what, std::span<const double> values);
  std::string Table(const std::string& what, std::span<const int> values);

  // The name of one of the functions that the file may need (see kFunctions), which it then has.
  std::string Function(std::string_view what);

  // Adds a function of the file's own, text that ends with a line feed.
  void Definition(std::string_view text);

  // Adds a local array, or a statement, to the main function.
  void Local(const std::string& name, std::size_t size);
  void Statement(const std::string& text);

  // A loop over i that sets values first..last-1 of an array.
  void Loop(std::size_t first, std::size_t last, const std::string& assignment);

  // Writes the rest of the file.
  void Finish();

 private:
  template <typename TValue>
  std::string WriteTable(const std::string& what, std::span<const TValue> values,
                         std::string_view type);

  FileTools::Writer& out_;
  std::string name_;
  std::set<std::string_view> functions_;
  std::string definitions_;
  std::string locals_;
  std::string statements_;
  bool has_loop_ = false;
};

// `value` as a constant of C. REQUIRES: it is finite.
std::string CNumber(double value);

}  // namespace kiln
