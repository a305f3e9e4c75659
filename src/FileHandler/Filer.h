#pragma once

#include <memory>
#include <string>

#include "DataObject/Data.h"
#include "FileHandler/Syntax/ParseTools.h"
#include "KQmessage/TKQstructure.h"

// Data files. A file holds one table whose columns stand in four groups: inputs, expected outputs,
// generated outputs and errors. It fills two data sets: one of the inputs and the expected outputs,
// one of the generated outputs, as its inputs, and the errors, as its outputs. Either output group
// may be a label list a row instead. docs/file-formats.md describes the text.
namespace kiln::Filer {

// Stands for a number of columns where a group is a label list.
inline constexpr int kLabels = -1;

// What a data file says about its table.
struct DataHeader {
  int rows = -1;  // -1 where the file does not say
  int inputs = 0;
  int expected_outputs = 0;   // or kLabels
  int generated_outputs = 0;  // or kLabels
  int errors = 0;
};

struct DataSets {
  std::unique_ptr<Data> expected;
  std::unique_ptr<Data> generated;  // null when the file has neither generated outputs nor errors
};

// Reads a data file. Throws FileTools::OpenError, FileTools::Error for a fault in the text,
// TException for labels where there can be none and sizes that no data set has, TAssertion for a
// header without a number of rows and for a value where a label list should stand.
DataSets Load(const std::string& path);

// Writes a data file of the rows that the sets hold, the oldest first. Either set may be null. If
// `expected` carries labels, they are written in place of its outputs. Throws TException when the
// sets have different numbers of rows or a label is not one word, and FileTools::SaveError; in all
// cases a file that was at `path` before is left as it was.
void Save(const std::string& path, const Data* expected, const Data* generated = nullptr);

// Reads the statements behind "[DataSet]"; `next` becomes the item behind the last of them. Throws
// FileTools::Error "bad-header" for statements that are unknown, repeated, out of order, not closed
// or out of range, and TException for labels in a group that has none.
DataHeader ReadHeader(FileTools::Reader& reader, FileTools::ParseItem& next);

// What kind of file stands at `path`, as one of
//   file-read-error
//   (data :rows N :inputs N :actual-outputs N :calc-outputs N :errors N), kLabels for a label list
//   bad-header, of a data file
//   network
//   (unknown-header :header TAG), or unknown-header where the file does not start with a block.
TKQstructure DescribeFile(const std::string& path);

}  // namespace kiln::Filer
