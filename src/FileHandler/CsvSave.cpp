#include <algorithm>
#include <span>
#include <string_view>

#include "FileHandler/CsvFile.h"
#include "FileHandler/CsvScanner.h"
#include "FileHandler/Syntax/SafeFile.h"
#include "FileHandler/Syntax/WriteRows.h"
#include "Shared/NumberFormat.h"

namespace kiln::CsvFile {

namespace {

using FileTools::Writer;

// Signs that separate or end cells, for one reader or another.
constexpr std::string_view kSigns = "\",;\t\r\n";

// Appends a cell of text, in quotes where a reader could take it for something else.
void AppendCell(std::string& line, std::string_view text) {
  const bool is_bare = text.find_first_of(kSigns) == text.npos && !TCell{text, false}.IsMissing() &&
                       text.front() != ' ' && text.back() != ' ';
  if (is_bare || text.empty()) {
    line += text;
    return;
  }
  line += '"';
  for (const char c : text) {
    if (c == '"') line += c;
    line += c;
  }
  line += '"';
}

// The names of a side, made up where it has none. Those that are numbers stand in quotes, so that
// the line is seen to be a header.
void AppendNames(std::string& line, std::span<const std::string> names, int columns,
                 const char* side) {
  for (int c = 0; c < columns; ++c) {
    const std::string name =
        names.empty() ? side + std::to_string(c) : names[static_cast<std::size_t>(c)];
    double number = 0.0;
    if (TScanner(name, ',').IsNumber(name, number)) {
      line += '"' + name + '"';
    } else {
      AppendCell(line, name);
    }
    line += ',';
  }
}

void AppendValues(std::string& line, std::span<const double> values) {
  for (const double value : values) {
    AppendShortest(line, value);
    line += ',';
  }
}

// The first of the labels with the most weight.
void AppendHeaviest(std::string& line, const LabelList& labels) {
  if (labels.Empty()) return;
  AppendCell(line, std::ranges::max_element(labels.Entries(), {}, &LabelEntry::Value)->Name);
}

// Ends a line whose every value has a comma behind it; in front of a label the comma stays.
void EndLine(std::string& line, bool has_label) {
  if (!has_label && !line.empty()) line.pop_back();
  line += '\n';
}

void WriteRow(Writer& out, const DataRow& row) {
  thread_local std::string line;  // keeps its memory from row to row
  line.clear();
  AppendValues(line, row.Inputs);
  AppendValues(line, row.Outputs);
  if (row.Labels) AppendHeaviest(line, *row.Labels);
  EndLine(line, row.Labels != nullptr);
  out.WriteText(line);
}

void WriteTable(Writer& out, const Data& set) {
  std::string line;
  AppendNames(line, set.Names().Inputs, set.Inputs(), "input");
  AppendNames(line, set.Names().Outputs, set.Outputs(), "output");
  if (set.HasLabels()) line += "label";
  EndLine(line, set.HasLabels());
  out.WriteText(line);
  FileTools::WriteRows(out, set.DataRows(), set.Inputs() + set.Outputs(),
                       [&](Writer& rows, int n) { WriteRow(rows, set.Row(n)); });
}

}  // namespace

void Save(const std::string& path, const Data& set) {
  FileTools::SaveFile(path, [&](Writer& out) { WriteTable(out, set); });
}

}  // namespace kiln::CsvFile
