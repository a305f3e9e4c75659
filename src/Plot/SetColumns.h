#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DataObject/Data.h"

namespace kiln {

// The columns of a data set in one row, inputs first, with the names that "query columns" tells.
class TSetColumns {
 public:
  // REQUIRES: the set outlives this object.
  explicit TSetColumns(const Data& set);

  std::size_t Count() const { return names_.size(); }
  const std::string& Name(std::size_t column) const { return names_[column]; }

  // The column of this name or, where there is none, number; nothing where there is neither.
  std::optional<std::size_t> Find(std::string_view word) const;

  double Value(const DataRow& row, std::size_t column) const {
    return column < inputs_ ? row.Inputs[column] : row.Outputs[column - inputs_];
  }

 private:
  std::size_t inputs_;
  std::vector<std::string> names_;
};

// What output classes are called: the outputs, without a beginning up to "=" that all share; for a
// single output, which tells two classes, its values. REQUIRES: there are outputs.
std::vector<std::string> ClassNames(const Data& set);

// Classes that are shown by a colour and a shape each; the rest are "others".
inline constexpr std::size_t kMostClasses = 16;

// The class of each row: its heaviest label or, in sets without labels, its outputs, where these
// are classes.
struct TRowClasses {
  std::vector<std::string> names;    // none where rows have no classes
  std::vector<std::size_t> of_rows;  // a place in names, or names.size() for a row without a class
};
TRowClasses RowClassesOf(const Data& set);

}  // namespace kiln
