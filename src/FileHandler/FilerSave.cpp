#include <cstdlib>
#include <span>
#include <string_view>

#include "FileHandler/Filer.h"
#include "FileHandler/Syntax/ParseTools.h"
#include "FileHandler/Syntax/SafeFile.h"
#include "FileHandler/Syntax/WriteRows.h"
#include "FileHandler/Syntax/Writer.h"
#include "Shared/TException.h"

namespace kiln::Filer {

namespace {

using FileTools::Writer;

constexpr int kLabelDecimals = 9;
constexpr std::string_view kGap = "  ";  // between the groups of a row

void WriteCount(Writer& writer, std::string_view keyword, int count) {
  if (count == kLabels) {
    writer.WriteString(keyword, "Labels");
  } else {
    writer.WriteInteger(keyword, count);
  }
}

void WriteHeader(Writer& writer, const DataHeader& header) {
  writer.WriteInteger("Rows", header.rows);
  writer.WriteInteger("Inputs", header.inputs);
  WriteCount(writer, "ExpectedOutputs", header.expected_outputs);
  WriteCount(writer, "GeneratedOutputs", header.generated_outputs);
  writer.WriteInteger("Error", header.errors);
}

void WriteLabels(Writer& writer, const LabelList* labels) {
  writer.OpenBracket();
  if (labels && !labels->Empty()) {
    // "[~" would open an end tag.
    if (labels->Entries().front().Name.starts_with('~')) writer.WriteText(" ");
    for (const LabelEntry& label : labels->Entries()) {
      if (label.Value == 1.0) {
        writer.WriteToken(label.Name);
      } else {
        writer.WriteNumber(label.Name, label.Value, kLabelDecimals);
      }
    }
  }
  writer.CloseBracketInLine();
  writer.WriteText(" ");
}

void WriteGroup(Writer& writer, int count, std::span<const double> values,
                const LabelList* labels) {
  if (count == kLabels) {
    WriteLabels(writer, labels);
  } else {
    for (const double value : values) writer.WriteNumberToken(value);
  }
}

// Generated outputs are written as labels if the expected set carries labels and the generated set
// has no input columns.
DataHeader MakeHeader(const Data* expected, const Data* generated) {
  DataHeader header{.rows = 0};
  const bool has_labels = expected && expected->HasLabels();
  if (generated) {
    header.rows = generated->DataRows();
    header.generated_outputs =
        has_labels && generated->Inputs() == 0 ? kLabels : generated->Inputs();
    header.errors = generated->Outputs();
  }
  if (expected) {
    header.rows = expected->DataRows();
    header.inputs = expected->Inputs();
    header.expected_outputs = has_labels ? kLabels : expected->Outputs();
  }
  return header;
}

// The two groups of a row that stand in one set. Labels take the place of the values of a group.
void WriteRow(Writer& writer, const DataRow& row, int inputs, int outputs) {
  WriteGroup(writer, inputs, row.Inputs, row.Labels);
  writer.WriteText(kGap);
  WriteGroup(writer, outputs, row.Outputs, row.Labels);
}

void CheckLabels(const Data& set) {
  for (int n = 0; n < set.DataRows(); ++n) {
    for (const LabelEntry& label : set.Row(n).Labels->Entries()) {
      if (FileTools::IsWord(label.Name)) continue;
      throw TException("Label \"" + label.Name + "\" is not one word", "Bad Format", "Filer::Save");
    }
  }
}

// Labels count as one.
int ValuesOfRow(const DataHeader& header) {
  return std::abs(header.inputs) + std::abs(header.expected_outputs) +
         std::abs(header.generated_outputs) + std::abs(header.errors);
}

void WriteFile(Writer& writer, const Data* expected, const Data* generated) {
  const DataHeader header = MakeHeader(expected, generated);
  writer.WriteFormatVersion();
  writer.WriteStartTag("DataSet");
  WriteHeader(writer, header);
  writer.WriteNewline();
  writer.WriteStartTag("Data");
  FileTools::WriteRows(writer, header.rows, ValuesOfRow(header), [&](Writer& out, int n) {
    if (expected) WriteRow(out, expected->Row(n), header.inputs, header.expected_outputs);
    if (generated) {
      out.WriteText(kGap);
      WriteRow(out, generated->Row(n), header.generated_outputs, header.errors);
    }
    out.WriteNewline();
  });
  writer.WriteEndTag("Data");
  writer.WriteNewline();
  writer.WriteEndTag("DataSet");
}

}  // namespace

void Save(const std::string& path, const Data* expected, const Data* generated) {
  if (expected && generated && expected->DataRows() != generated->DataRows()) {
    throw TException("Numbers of rows differ", "Bad Parameter", "Filer::Save");
  }
  for (const Data* set : {expected, generated}) {
    if (set && set->HasLabels()) CheckLabels(*set);
  }
  FileTools::SaveFile(path, [=](Writer& writer) { WriteFile(writer, expected, generated); });
}

}  // namespace kiln::Filer
