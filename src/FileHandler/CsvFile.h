#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "DataObject/Data.h"

// Tables as other programs write them: text in rows of cells (RFC 4180), one row a line. A data set
// is one such table. docs/file-formats.md describes what is read and written.
namespace kiln::CsvFile {

// How a table is to be read. Columns go by their names in the header or, from 0, by their numbers;
// those that are not named are inputs.
struct Options {
  std::optional<bool>
      header{};  // whether the first line has the names; without it the line decides
  std::vector<std::string> outputs{};
  std::vector<std::string> labels{};
  std::vector<std::string> ignore{};
  std::vector<std::string> words{};  // columns of numbers that stand for classes
  bool skip_missing = false;         // leave out rows with a cell that says nothing
};

struct Table {
  std::unique_ptr<Data> set;
  bool has_header;
  int skipped;  // rows left out
};

// Reads a table. Throws FileTools::OpenError; FileTools::Error for faults of the text and for
// columns that there are not, which name line and column; TException for a table larger than a data
// set can be.
Table Load(const std::string& path, const Options& options);

// Writes the rows of a set, the oldest first: inputs, outputs and, where it carries labels, the
// heaviest of each row. Throws FileTools::SaveError.
void Save(const std::string& path, const Data& set);

}  // namespace kiln::CsvFile
