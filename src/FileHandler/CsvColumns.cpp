#include "FileHandler/CsvColumns.h"

#include "Shared/NumberScan.h"
#include "Shared/TNameIndex.h"

namespace kiln::CsvFile {

namespace {

struct TFirstLine {
  std::vector<std::string> cells;
  bool has_text = false;  // whether a cell is neither a number nor a sign for a missing value
};

TFirstLine ReadFirstLine(TScanner& scanner) {
  TFirstLine line;
  do {
    const TCell cell = scanner.ReadCell();
    double number = 0.0;
    if (cell.quoted || (!cell.IsMissing() && !scanner.IsNumber(cell.text, number))) {
      line.has_text = true;
    }
    line.cells.emplace_back(cell.text);
  } while (scanner.ReadSeparator());
  return line;
}

// Finds columns by what users call them.
class TFinder {
 public:
  explicit TFinder(const std::vector<TColumn>& columns) : size_(columns.size()) {
    for (const TColumn& column : columns) names_.Add(column.name);
  }

  // The column called `word` in the header, else that of this number.
  std::size_t Find(const std::string& word) const {
    if (names_.HasSeveral(word)) Fail("several columns are called " + word);
    const auto named = names_.Find(word);
    const auto found = named ? named : ScanPlace(word, size_);
    if (!found) Fail("no column " + word);
    return *found;
  }

  [[noreturn]] static void Fail(const std::string& message) { throw TFault(message, 0, kNoColumn); }

 private:
  std::size_t size_;
  TNameIndex names_;
};

// Gives columns the parts that the options ask for.
void AssignParts(TColumns& columns, const Options& options) {
  const TFinder finder(columns.all);
  std::vector<bool> taken(columns.all.size());  // is no input
  const auto take = [&](const std::string& word) {
    const std::size_t column = finder.Find(word);
    if (taken[column]) TFinder::Fail("column " + word + " is named twice");
    taken[column] = true;
    return column;
  };
  for (const std::string& word : options.ignore) columns.all[take(word)].is_value = false;
  for (const std::string& word : options.outputs) columns.outputs.push_back(take(word));
  const std::vector<bool> before_labels = taken;
  for (const std::string& word : options.labels) {
    const std::size_t c = finder.Find(word);
    TColumn& column = columns.all[c];
    if (column.is_label || !column.is_value) TFinder::Fail("column " + word + " is named twice");
    column.is_label = true;
    column.is_value = before_labels[c];
    taken[c] = true;
    columns.labels.push_back(c);
  }
  for (const std::string& word : options.words) {
    columns.all[finder.Find(word)].kind = TColumn::TKind::kClasses;
  }
  for (std::size_t c = 0; c < taken.size(); ++c) {
    if (!taken[c]) columns.inputs.push_back(c);
  }
}

// Reads a row and returns whether it has a cell for each column, and a value in each cell that goes
// into the set. Fills `kinds` with what the cells hold.
bool LooksComplete(TScanner& scanner, const std::vector<TColumn>& columns,
                   std::vector<TColumn::TKind>& kinds) {
  bool complete = true;
  std::size_t c = 0;
  do {
    const TCell cell = scanner.ReadCell();
    if (c < columns.size()) {
      double number = 0.0;
      kinds[c] =
          scanner.IsNumber(cell.text, number) ? TColumn::TKind::kNumbers : TColumn::TKind::kWords;
      if (columns[c].IsRead() && cell.IsMissing()) complete = false;
    }
    ++c;
  } while (scanner.ReadSeparator());
  return complete && c == columns.size();
}

}  // namespace

TColumns ReadColumns(TScanner& scanner, const Options& options) {
  scanner.SkipEmptyLines();
  if (scanner.AtEnd()) scanner.FailRow("an empty file");
  const TScanner start = scanner;
  const TFirstLine first = ReadFirstLine(scanner);
  TColumns columns;
  columns.has_header = options.header.value_or(first.has_text);
  columns.all.resize(first.cells.size());
  for (std::size_t c = 0; c < columns.all.size(); ++c) {
    const bool has_name = columns.has_header && !first.cells[c].empty();
    columns.all[c].name = has_name ? first.cells[c] : "column" + std::to_string(c);
  }
  if (!columns.has_header) scanner = start;
  AssignParts(columns, options);
  return columns;
}

void FindKinds(TScanner scanner, TColumns& columns) {
  std::vector<TColumn::TKind> kinds(columns.all.size());
  bool found = false;
  while (!found && !scanner.AtEnd()) found = LooksComplete(scanner, columns.all, kinds);
  for (std::size_t c = 0; c < kinds.size(); ++c) {
    TColumn& column = columns.all[c];
    if (found && column.kind == TColumn::TKind::kNumbers) column.kind = kinds[c];
    if (column.is_label || column.IsOfWords()) column.words = columns.with_words++;
  }
}

}  // namespace kiln::CsvFile
