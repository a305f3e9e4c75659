#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "FileHandler/CsvFile.h"
#include "FileHandler/CsvScanner.h"

namespace kiln::CsvFile {

// What a column of a table is for, and what its cells hold.
struct TColumn {
  enum class TKind {
    kNumbers,
    kWords,    // none of which is a number
    kClasses,  // words too, but numbers may be among them
  };

  std::string name;
  bool is_value = true;  // an input or an output
  bool is_label = false;
  TKind kind = TKind::kNumbers;  // of a value
  std::size_t words = 0;         // its place among the columns whose words are kept

  bool IsRead() const { return is_value || is_label; }
  bool IsOfWords() const { return is_value && kind != TKind::kNumbers; }
};

// The columns of a table in the order of the file, and which of them, by number, make the sides and
// the labels of the set.
struct TColumns {
  std::vector<TColumn> all;
  std::vector<std::size_t> inputs;
  std::vector<std::size_t> outputs;
  std::vector<std::size_t> labels;
  std::size_t with_words = 0;  // how many have words that are kept, as values or labels
  bool has_header = false;
};

// Reads the first line where it is a header; the scanner, which stands at the start of the text,
// goes on at the first row. Throws TFault, also for columns that the options name but that are not
// there.
TColumns ReadColumns(TScanner& scanner, const Options& options);

// Takes what columns hold from the first row that is not to be left out. The scanner stands at the
// first row. Throws TFault.
void FindKinds(TScanner scanner, TColumns& columns);

}  // namespace kiln::CsvFile
