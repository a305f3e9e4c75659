#include <string>
#include <vector>

#include "FileHandler/NetworkReading.h"
#include "FileHandler/NetworkSections.h"
#include "FileHandler/Syntax/Writer.h"
#include "NeuralNets/TBasicLayer.h"
#include "Shared/TAssertion.h"
#include "Shared/Text.h"

namespace kiln::NetworkFiler {

namespace {

using FileTools::ParseItem;
using FileTools::Reader;

constexpr std::string_view kBlock = "Dimensions";
constexpr std::string_view kEntry = "[Dimension=0 Size=1]";  // the shortest one

// Reads the entry that begins with `first`.
void ReadEntry(const ParseItem& first, Reader& reader, std::vector<int>& sizes) {
  if (first.kind != ParseItem::kStatement || !EqualNoCase(first.name, "Dimension")) {
    FailLoad(reader, "invalid dimension tag");
  }
  const std::int64_t number = FileTools::ParseInteger(first.value, reader);
  Assert(number >= 0, "i>=0", kModule);
  const auto dimension = static_cast<std::size_t>(number);
  Assert(dimension < sizes.size(), "i<dimensions", kModule);

  const ParseItem size = first.unbracketed ? reader.ReadUnbracketedItem(kBlock) : ParseItem();
  if (size.kind != ParseItem::kStatement || !EqualNoCase(size.name, "Size") || size.unbracketed) {
    FailLoad(reader, "'Size' tag required for dimension data");
  }
  if (sizes[dimension] != 0) FailLoad(reader, "repeated dimension");
  sizes[dimension] = static_cast<int>(ReadCount(size, reader, TBasicLayer::kMaxNeurons));
  if (sizes[dimension] == 0) FailLoad(reader, "Size = 0 is out of range");
}

}  // namespace

std::vector<int> ReadDimensions(Reader& reader) {
  ParseItem item = reader.ReadItem("NeuralNetwork");
  if (item.kind != ParseItem::kStatement || !EqualNoCase(item.name, kBlock)) {
    FailLoad(reader, "Missing dimensions in Kohonen");
  }
  CheckClosed(item, reader);
  std::vector<int> sizes(ReadCount(item, reader, reader.Remaining() / kEntry.size()));
  if (sizes.empty()) FailLoad(reader, "Dimensions = 0 is out of range");
  for (item = reader.ReadItem(kBlock); item.kind != ParseItem::kEnd;
       item = reader.ReadItem(kBlock)) {
    ReadEntry(item, reader, sizes);
  }
  for (const int size : sizes) {
    if (size == 0) FailLoad(reader, "Dimension not defined");
  }
  return sizes;
}

void WriteDimensions(FileTools::Writer& writer, std::span<const int> sizes) {
  writer.WriteNewline();
  writer.WriteInteger(kBlock, std::ssize(sizes));
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    writer.OpenBracket();
    writer.WriteInteger("Dimension", static_cast<std::int64_t>(i));
    writer.WriteInteger("Size", sizes[i]);
    writer.CloseBracket();
  }
  writer.WriteEndTag(kBlock);
}

}  // namespace kiln::NetworkFiler
