#include "FileHandler/TarnSections.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "FileHandler/NetworkReading.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"
#include "Shared/Text.h"
#include "Tarn/TConditionLayer.h"
#include "Tarn/TTarnOutputLayer.h"

namespace kiln::NetworkFiler {

namespace {

using FileTools::ParseItem;
using FileTools::Reader;
using FileTools::Writer;

// Users know the assertions about these sections by this name.
constexpr char kSource[] = "FileHandler/SaveTarn";

constexpr std::string_view kInputMF = "InputMF";
constexpr std::string_view kOutputMF = "OutputMF";
constexpr std::string_view kCount = "MF";

// The word that each line of a section starts with.
std::string_view VariableOf(std::string_view tag) {
  return EqualNoCase(tag, kInputMF) ? "Input" : "Output";
}

void SaveMF(Writer& writer, const TFuzzyLayer& layer, std::string_view tag) {
  const TMFGroups& groups = layer.Groups();
  writer.WriteStartTag(tag);
  for (std::size_t i = 0; i < groups.NumVariables(); ++i) {
    writer.OpenBracket();
    writer.WriteInteger(VariableOf(tag), static_cast<std::int64_t>(i));
    writer.WriteInteger(kCount, static_cast<std::int64_t>(groups.Count(i)));
    writer.CloseBracket();
  }
  writer.WriteEndTag(tag);
}

std::size_t ReadVariable(const ParseItem& item, Reader& reader, std::string_view tag,
                         std::size_t nodes) {
  if (item.kind != ParseItem::kStatement || !EqualNoCase(item.name, VariableOf(tag))) {
    reader.Fail("invalid tag in membership1");
  }
  const std::int64_t number = FileTools::ParseInteger(item.value, reader);
  Assert(number >= 0, "i>=0", kSource);
  const auto index = static_cast<std::size_t>(number);
  Assert(index < nodes, "i<numnodes", kSource);
  return index;
}

// The number of functions behind `first`, on the same line.
int ReadMFCount(const ParseItem& first, Reader& reader, std::string_view tag) {
  const ParseItem item = first.unbracketed ? reader.ReadUnbracketedItem(tag) : ParseItem();
  if (item.kind != ParseItem::kStatement || !EqualNoCase(item.name, kCount)) {
    reader.Fail("invalid tag in membership2");
  }
  const std::int64_t count = FileTools::ParseInteger(item.value, reader);
  if (count < 0 || count > static_cast<std::int64_t>(TBasicLayer::kMaxNeurons)) {
    reader.Fail("MF = " + std::string(item.value) + " is out of range");
  }
  return static_cast<int>(count);
}

}  // namespace

void SaveInputMF(Writer& writer, const TConditionLayer& layer) {
  SaveMF(writer, layer, kInputMF);
}

void SaveOutputMF(Writer& writer, const TTarnOutputLayer& layer) {
  SaveMF(writer, layer, kOutputMF);
}

void LoadMF(Reader& reader, TFuzzyLayer& layer, std::string_view tag) {
  std::vector<int> counts;
  ParseItem item = reader.ReadItem(tag);
  for (; item.kind != ParseItem::kEnd; item = reader.ReadItem(tag)) {
    const std::size_t index = ReadVariable(item, reader, tag, layer.NumNeurons());
    counts.resize(std::max(counts.size(), index + 1));
    if (counts[index] != 0) reader.Fail("repeated " + std::string(item.name));
    counts[index] = ReadMFCount(item, reader, tag);
  }
  try {
    layer.SetMFCounts(counts);
  } catch (const TException& misfit) {
    reader.Fail(misfit.Message());
  }
}

void WriteMembership(Writer& writer, const TBasicLayer& layer) {
  if (const auto* conditions = dynamic_cast<const TConditionLayer*>(&layer)) {
    SaveInputMF(writer, *conditions);
  } else if (const auto* outputs = dynamic_cast<const TTarnOutputLayer*>(&layer)) {
    SaveOutputMF(writer, *outputs);
  }
}

ParseItem ReadMembership(Reader& reader, const ParseItem& next, TBasicLayer& layer) {
  auto* fuzzy = dynamic_cast<TFuzzyLayer*>(&layer);
  if (!fuzzy) return next;
  const bool is_output = dynamic_cast<TTarnOutputLayer*>(fuzzy) != nullptr;
  const std::string_view tag = is_output ? kOutputMF : kInputMF;
  if (next.kind != ParseItem::kStartTag || !EqualNoCase(next.name, tag)) {
    FailLoad(reader, is_output ? "membership array missing in output layer"
                               : "membership array missing in condition layer");
  }
  LoadMF(reader, *fuzzy, tag);
  return reader.ReadItem("Layer");
}

}  // namespace kiln::NetworkFiler
