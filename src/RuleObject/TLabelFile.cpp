#include "RuleObject/TLabelFile.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "FileHandler/Syntax/SafeFile.h"

namespace kiln::TLabelFile {

namespace {

using FileTools::ParseItem;
using FileTools::Reader;
using FileTools::Writer;

constexpr std::string_view kFileBlock = "TarnLabels";
constexpr std::string_view kStructureBlock = "StructureInfo";

// How the file speaks of the terms of one side.
struct TSide {
  std::string_view count;     // statement with the number of variables
  std::string_view block;     // block with the terms of each variable
  std::string_view variable;  // number of a variable
};
constexpr TSide kInputs = {"Inputs", "InputMF", "Input"};
constexpr TSide kOutputs = {"Outputs", "OutputMF", "Output"};

// One of the four blocks of names.
struct TNameBlock {
  std::string_view block;
  std::string_view number;
  int (TNetLabel::*count)() const;
  const TNetLabel::TName& (TNetLabel::*get)(int) const;
  void (TNetLabel::*set)(int, std::string);
};
constexpr TNameBlock kNameBlocks[] = {
    {"InputLabels", "Input", &TNetLabel::NumInputs, &TNetLabel::GetInputName,
     &TNetLabel::SetInputName},
    {"InputMFLabels", "Condition", &TNetLabel::NumConditions, &TNetLabel::GetConditionName,
     &TNetLabel::SetConditionName},
    {"OutputLabels", "Output", &TNetLabel::NumOutputs, &TNetLabel::GetOutputName,
     &TNetLabel::SetOutputName},
    {"OutputMFLabels", "Action", &TNetLabel::NumActions, &TNetLabel::GetActionName,
     &TNetLabel::SetActionName},
};

void SaveSide(Writer& out, const TSide& side, const std::vector<int>& terms) {
  out.WriteInteger(side.count, static_cast<std::int64_t>(terms.size()));
  out.WriteStartTag(side.block);
  for (std::size_t i = 0; i < terms.size(); ++i) {
    out.OpenBracket();
    out.WriteInteger(side.variable, static_cast<std::int64_t>(i));
    out.WriteInteger("MF", terms[i]);
    out.CloseBracket();
  }
  out.WriteEndTag(side.block);
  out.WriteNewline();
}

// The terms of each variable.
std::vector<int> ReadSide(Reader& reader, const TSide& side) {
  constexpr int kNotGiven = -1;
  const int count = ExpectCount(reader.ReadItem(kStructureBlock), reader, side.count);
  std::vector<int> terms(static_cast<std::size_t>(count), kNotGiven);
  std::uint64_t sum = 0;
  ExpectStartTag(reader.ReadItem(kStructureBlock), reader, side.block);
  for (int i = 0; i < count; ++i) {
    const int variable = ExpectInteger32(reader.ReadItem(side.block), reader, side.variable);
    const std::string name(side.variable);
    if (variable < 0 || variable >= count) reader.Fail(name + " number out of bounds");
    int& place = terms[static_cast<std::size_t>(variable)];
    if (place != kNotGiven) reader.Fail(name + " given twice");
    place = ExpectCount(reader.ReadUnbracketedItem(side.block), reader, "MF");
    sum += static_cast<std::uint64_t>(place);
  }
  ExpectEndTag(reader.ReadItem(side.block), reader);
  if (sum > reader.Remaining()) reader.Fail("more membership functions than the file holds");
  return terms;
}

void SaveNames(Writer& out, const TNameBlock& names, const TNetLabel& labels) {
  out.WriteStartTag(names.block);
  for (int i = 0; i < (labels.*names.count)(); ++i) {
    const TNetLabel::TName& name = (labels.*names.get)(i);
    if (!name) continue;
    out.OpenBracket();
    out.WriteInteger(names.number, i);
    out.WriteString("Label", *name);
    out.CloseBracket();
  }
  out.WriteEndTag(names.block);
  out.WriteNewline();
}

void ReadNames(Reader& reader, const TNameBlock& names, TNetLabel& labels) {
  ExpectStartTag(reader.ReadItem(kFileBlock), reader, names.block);
  for (ParseItem item = reader.ReadItem(names.block); item.kind != ParseItem::kEnd;
       item = reader.ReadItem(names.block)) {
    const int number = ExpectInteger32(item, reader, names.number);
    const ParseItem label = reader.ReadUnbracketedItem(names.block);
    (labels.*names.set)(number, std::string(ExpectString(label, reader, "Label")));
  }
}

}  // namespace

void SaveLabels(Writer& out, const TNetLabel& labels) {
  out.WriteStartTag(kFileBlock);
  out.WriteNewline();
  out.WriteStartTag(kStructureBlock);
  out.WriteNewline();
  SaveSide(out, kInputs, labels.InputMF());
  SaveSide(out, kOutputs, labels.OutputMF());
  out.WriteEndTag(kStructureBlock);
  out.WriteNewline();
  for (const TNameBlock& names : kNameBlocks) SaveNames(out, names, labels);
  out.WriteEndTag(kFileBlock);
}

void SaveLabels(const std::string& path, const TNetLabel& labels) {
  FileTools::SaveFile(path, [&](Writer& out) {
    out.WriteFormatVersion();
    SaveLabels(out, labels);
  });
}

TNetLabel LoadLabels(Reader& reader) {
  ExpectStartTag(reader.ReadItem(""), reader, kFileBlock);
  ExpectStartTag(reader.ReadItem(kFileBlock), reader, kStructureBlock);
  std::vector<int> input_mf = ReadSide(reader, kInputs);
  std::vector<int> output_mf = ReadSide(reader, kOutputs);
  ExpectEndTag(reader.ReadItem(kStructureBlock), reader);
  TNetLabel labels(std::move(input_mf), std::move(output_mf));
  for (const TNameBlock& names : kNameBlocks) ReadNames(reader, names, labels);
  ExpectEndTag(reader.ReadItem(kFileBlock), reader);
  return labels;
}

TNetLabel LoadLabels(const std::string& path) {
  Reader reader = Reader::FromFile(path);
  return FileTools::ReadPlaced(reader, [](Reader& file) { return LoadLabels(file); });
}

}  // namespace kiln::TLabelFile
