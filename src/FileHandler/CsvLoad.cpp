#include <algorithm>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <unordered_map>

#include "FileHandler/CsvColumns.h"
#include "FileHandler/CsvFile.h"
#include "FileHandler/CsvScanner.h"
#include "FileHandler/Syntax/ParseTools.h"
#include "Shared/Interruption.h"
#include "Shared/TTeam.h"
#include "Shared/Text.h"

namespace kiln::CsvFile {

namespace {

using TKind = TColumn::TKind;

constexpr std::size_t kPieceSize = std::size_t{1} << 18;
constexpr double kOperationsOfPiece = 2.5e6;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// --- Pieces ----------------------------------------------------------------------------------

// The words of a column in the order in which they came.
class TWords {
 public:
  // The number of a word.
  std::size_t Find(std::string_view word) {
    if (last_ < words_.size() && *words_[last_] == word) return last_;
    auto found = numbers_.find(word);
    if (found == numbers_.end()) {
      found = numbers_.emplace(word, words_.size()).first;
      words_.push_back(&found->first);
    }
    return last_ = found->second;
  }

  const std::vector<const std::string*>& All() const { return words_; }

 private:
  struct THash : std::hash<std::string_view> {
    using is_transparent = void;
  };

  std::unordered_map<std::string, std::size_t, THash, std::equal_to<>> numbers_;
  std::vector<const std::string*> words_;
  std::size_t last_ = 0;
};

// The rows of a piece of the text.
struct TPiece {
  std::vector<double> values;       // of each row and column; a word stands as its number
  std::vector<std::size_t> labels;  // of each row and column of labels, the numbers of words
  std::vector<TWords> words;        // of each column that has some
  int rows = 0;
  int skipped = 0;
};

// Reads pieces of a text, each without a look at any other.
class TPieceReader {
 public:
  TPieceReader(std::string_view text, char separator, const TColumns& columns, bool skip_missing)
      : text_(text), separator_(separator), columns_(columns), skip_missing_(skip_missing) {}

  // The rows from `begin` to `end`. Throws TFault.
  TPiece Read(std::size_t begin, std::size_t end) const {
    TPiece piece;
    piece.words.resize(columns_.with_words);
    TScanner scanner(text_.substr(0, end), separator_, begin);
    TRow row{std::vector<double>(columns_.all.size()),
             std::vector<std::size_t>(columns_.all.size())};
    for (;;) {
      // In a table of one column an empty line is a cell that says nothing.
      if (columns_.all.size() > 1) scanner.SkipEmptyLines();
      if (scanner.AtEnd()) return piece;
      if (!ReadRow(scanner, piece.words, row)) {
        ++piece.skipped;
        continue;
      }
      if (piece.rows == 0) {
        // As much as if all rows were as long as this one.
        const std::size_t rows = (end - begin) / (scanner.Offset() - begin) + 1;
        piece.values.reserve(rows * row.values.size());
      }
      piece.values.insert(piece.values.end(), row.values.begin(), row.values.end());
      for (const std::size_t c : columns_.labels) piece.labels.push_back(row.labels[c]);
      ++piece.rows;
    }
  }

 private:
  struct TRow {
    std::vector<double> values;
    std::vector<std::size_t> labels;
  };

  // Tells whether the row counts.
  bool ReadRow(TScanner& scanner, std::vector<TWords>& words, TRow& row) const {
    bool counts = true;
    const std::size_t last = row.values.size() - 1;
    for (std::size_t c = 0; c <= last; ++c) {
      const TColumn& column = columns_.all[c];
      const bool plain = column.is_value && !column.is_label && column.kind == TKind::kNumbers;
      if (!plain || !scanner.ReadNumber(row.values[c])) {
        counts = ReadCell(scanner, c, words, row) && counts;
      }
      const bool goes_on = scanner.ReadSeparator();
      if (goes_on == (c < last)) continue;
      if (goes_on) scanner.FailRow("more than " + Counted(last + 1, "cell"));
      scanner.FailRow(Counted(c + 1, "cell") + " in place of " + std::to_string(last + 1));
    }
    return counts;
  }

  // Reads any cell of a column. Returns false where a value is missing that the column needs.
  bool ReadCell(TScanner& scanner, std::size_t c, std::vector<TWords>& words, TRow& row) const {
    const TColumn& column = columns_.all[c];
    const TCell cell = scanner.ReadCell();
    if (!column.IsRead()) return true;
    if (cell.IsMissing()) {
      if (!skip_missing_) scanner.Fail("no value");
      return false;
    }
    if (column.is_label) row.labels[c] = words[column.words].Find(cell.text);
    if (column.IsOfWords()) {
      double number = 0.0;
      if (column.kind == TKind::kWords && scanner.IsNumber(cell.text, number)) {
        scanner.Fail("the number " + Shown(cell.text) + " among words");
      }
      row.values[c] = static_cast<double>(words[column.words].Find(cell.text));
    } else if (column.is_value && !scanner.IsNumber(cell.text, row.values[c])) {
      scanner.Fail('"' + Shown(cell.text) + "\" is no number");
    }
    return true;
  }

  std::string_view text_;
  char separator_;
  const TColumns& columns_;
  bool skip_missing_;
};

std::vector<TPiece> ReadPieces(std::string_view text, char separator, std::size_t begin,
                               const TColumns& columns, const Options& options) {
  const TPieceReader reader(text, separator, columns, options.skip_missing);
  std::vector<std::size_t> ends = {begin};
  while (ends.back() < text.size()) ends.push_back(PieceEnd(text, ends.back(), kPieceSize));
  std::vector<TPiece> pieces(ends.size() - 1);
  const std::size_t workers = TTeam::WorkersFor(pieces.size(), kOperationsOfPiece);
  TTeam::ForEach(pieces.size(), workers, [&](std::size_t i, std::size_t) {
    Interruption::Check();
    pieces[i] = reader.Read(ends[i], ends[i + 1]);
  });
  return pieces;
}

// --- The set ---------------------------------------------------------------------------------

// Puts pieces together.
class TAssembly {
 public:
  TAssembly(const TColumns& columns, const std::vector<TPiece>& pieces)
      : columns_(columns),
        pieces_(pieces),
        words_(columns.all.size()),
        places_(columns.all.size()) {
    for (std::size_t c = 0; c < words_.size(); ++c) {
      if (columns_.all[c].IsOfWords()) CollectWords(c);
    }
  }

  std::unique_ptr<Data> MakeSet() {
    const ColumnNames names = {Names(columns_.inputs), Names(columns_.outputs)};
    std::int64_t rows = 0;
    for (const TPiece& piece : pieces_) rows += piece.rows;
    auto set = std::make_unique<Data>(rows, std::ssize(names.Inputs), std::ssize(names.Outputs),
                                      !columns_.labels.empty());
    inputs_.resize(names.Inputs.size());
    outputs_.resize(names.Outputs.size());
    set->SetNames(names);
    for (const TPiece& piece : pieces_) AddRows(piece, *set);
    return set;
  }

 private:
  // The words of the rows that count, in the order of the alphabet.
  void CollectWords(std::size_t c) {
    std::vector<std::string>& words = words_[c];
    for (const TPiece& piece : pieces_) {
      const auto& own = piece.words[columns_.all[c].words].All();
      std::vector<bool> used(own.size());
      for (std::size_t at = c; at < piece.values.size(); at += words_.size()) {
        used[static_cast<std::size_t>(piece.values[at])] = true;
      }
      for (std::size_t i = 0; i < own.size(); ++i) {
        if (used[i]) words.push_back(*own[i]);
      }
    }
    std::ranges::sort(words);
    words.erase(std::unique(words.begin(), words.end()), words.end());
  }

  std::vector<std::string> Names(std::span<const std::size_t> side) const {
    std::vector<std::string> names;
    for (const std::size_t c : side) {
      const std::string& name = columns_.all[c].name;
      if (!columns_.all[c].IsOfWords()) names.push_back(name);
      for (const std::string& word : words_[c]) names.emplace_back(name).append("=").append(word);
    }
    return names;
  }

  // Where the words of a piece stand among all.
  void FindPlaces(const TPiece& piece) {
    for (std::size_t c = 0; c < words_.size(); ++c) {
      if (!columns_.all[c].IsOfWords()) continue;
      places_[c].clear();
      for (const std::string* word : piece.words[columns_.all[c].words].All()) {
        const auto place = std::ranges::lower_bound(words_[c], *word) - words_[c].begin();
        places_[c].push_back(static_cast<std::size_t>(place));
      }
    }
  }

  void FillSide(std::span<const std::size_t> side, const double* values, std::vector<double>& out) {
    auto at = out.begin();
    for (const std::size_t c : side) {
      if (!columns_.all[c].IsOfWords()) {
        *at++ = values[c];
        continue;
      }
      const auto width = static_cast<std::ptrdiff_t>(words_[c].size());
      std::fill_n(at, width, 0.0);
      at[static_cast<std::ptrdiff_t>(places_[c][static_cast<std::size_t>(values[c])])] = 1.0;
      at += width;
    }
  }

  void AddRows(const TPiece& piece, Data& set) {
    FindPlaces(piece);
    const double* values = piece.values.data();
    auto label = piece.labels.begin();
    std::vector<WeightedName> names;
    LabelList labels;
    for (int n = 0; n < piece.rows; ++n, values += words_.size()) {
      FillSide(columns_.inputs, values, inputs_);
      FillSide(columns_.outputs, values, outputs_);
      names.clear();
      for (const std::size_t c : columns_.labels) {
        names.push_back({*piece.words[columns_.all[c].words].All()[*label++], 1.0});
      }
      labels.Clear();
      labels.Append(names);
      set.AddRow(inputs_, outputs_, &labels);
    }
  }

  const TColumns& columns_;
  const std::vector<TPiece>& pieces_;
  std::vector<std::vector<std::string>> words_;   // of each column that becomes several
  std::vector<std::vector<std::size_t>> places_;  // of the words of a piece among these
  std::vector<double> inputs_;                    // of the row at hand
  std::vector<double> outputs_;
};

Table MakeTable(std::string_view text, const Options& options, TColumns& columns) {
  const char separator = FindSeparator(text);
  TScanner scanner(text, separator);
  columns = ReadColumns(scanner, options);
  FindKinds(scanner, columns);
  const std::vector<TPiece> pieces =
      ReadPieces(text, separator, scanner.Offset(), columns, options);
  Table table{TAssembly(columns, pieces).MakeSet(), columns.has_header, 0};
  for (const TPiece& piece : pieces) table.skipped += piece.skipped;
  return table;
}

// What a fault reads like: "column 2 (Petal.Length): no value".
std::string Message(const TFault& fault, const TColumns& columns) {
  if (fault.Column() == kNoColumn) return fault.what();
  std::string place = "column " + std::to_string(fault.Column());
  if (columns.has_header && fault.Column() < columns.all.size()) {
    place += " (" + Shown(columns.all[fault.Column()].name) + ')';
  }
  return place + ": " + fault.what();
}

}  // namespace

Table Load(const std::string& path, const Options& options) {
  const std::string file = FileTools::ReadWholeFile(path);
  std::string_view text = file;
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  TColumns columns;
  try {
    return MakeTable(text, options, columns);
  } catch (const TFault& fault) {
    throw FileTools::Error(Message(fault, columns), path, LineAt(text, fault.Offset()));
  }
}

}  // namespace kiln::CsvFile
