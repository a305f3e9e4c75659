#include "FileHandler/TFuzzyMFFiler.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Membership/TLShoulderTriangularMF.h"
#include "Membership/TRShoulderTriangularMF.h"
#include "Membership/TRectangularMF.h"
#include "Membership/TSingletonMF.h"
#include "Membership/TTriangularMF.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"
#include "Shared/Text.h"

namespace kiln::TFuzzyMFFiler {

namespace {

using FileTools::ParseItem;
using FileTools::Reader;
using FileTools::Writer;

using OptionalName = std::optional<std::string>;
using Values = std::vector<double>;

constexpr int kDecimals = 7;
constexpr std::string_view kEmptySlot = "Empty";

// A kind of membership function: the names of its parameters in the order in which files hold them,
// and the ways from a function to their values and back.
struct MFKind {
  std::string_view type;
  std::vector<std::string_view> parameters;
  Values (*values)(const TBasicMF& mf);
  std::unique_ptr<TBasicMF> (*make)(OptionalName name, const Values& values);
};

// Makes a function of the class T from as many values as `I` counts.
template <typename T, std::size_t... I>
std::unique_ptr<TBasicMF> Make(OptionalName name, const Values& values) {
  return std::make_unique<T>(std::move(name), values[I]...);
}

template <typename T>
const T& As(const TBasicMF& mf) {
  return dynamic_cast<const T&>(mf);
}

Values LShoulderValues(const TBasicMF& mf) {
  const auto& shoulder = As<TLShoulderTriangularMF>(mf);
  return {shoulder.Centre(), shoulder.RightBound()};
}

Values RShoulderValues(const TBasicMF& mf) {
  const auto& shoulder = As<TRShoulderTriangularMF>(mf);
  return {shoulder.LeftBound(), shoulder.Centre()};
}

Values TriangleValues(const TBasicMF& mf) {
  const auto& triangle = As<TTriangularMF>(mf);
  return {triangle.LeftBound(), triangle.Centre(), triangle.RightBound()};
}

Values SingletonValues(const TBasicMF& mf) {
  return {As<TSingletonMF>(mf).Centre()};
}

Values RectangleValues(const TBasicMF& mf) {
  const auto& rectangle = As<TRectangularMF>(mf);
  return {rectangle.LeftBound(), rectangle.RightBound()};
}

const MFKind kKinds[] = {
    {TLShoulderTriangularMF::kType,
     {"Centre", "RightBound"},
     LShoulderValues,
     Make<TLShoulderTriangularMF, 0, 1>},
    {TRShoulderTriangularMF::kType,
     {"LeftBound", "Centre"},
     RShoulderValues,
     Make<TRShoulderTriangularMF, 0, 1>},
    {TTriangularMF::kType,
     {"LeftBound", "Centre", "RightBound"},
     TriangleValues,
     Make<TTriangularMF, 0, 1, 2>},
    {TSingletonMF::kType, {"Centre"}, SingletonValues, Make<TSingletonMF, 0>},
    {TRectangularMF::kType,
     {"LeftBound", "RightBound"},
     RectangleValues,
     Make<TRectangularMF, 0, 1>},
};

// The line that sets and functions start with: "[Name=low Index=0 Type=Triangular ]".
struct Heading {
  OptionalName name;
  int index = 0;
  OptionalName type;
};

void SaveHeading(Writer& out, const Heading& heading) {
  out.OpenBracket();
  if (heading.name) out.WriteString("Name", *heading.name);
  out.WriteInteger("Index", heading.index);
  if (heading.type) out.WriteString("Type", *heading.type);
  out.CloseBracket();
}

Heading ReadHeading(Reader& reader, std::string_view block) {
  Heading heading;
  ParseItem item = reader.ReadItem(block);
  if (item.kind == ParseItem::kStatement && EqualNoCase(item.name, "Name")) {
    heading.name = item.value;
    item = reader.ReadUnbracketedItem(block);
  }
  heading.index = ExpectInteger32(item, reader, "Index");
  if (item.unbracketed) {
    heading.type = ExpectString(reader.ReadUnbracketedItem(block), reader, "Type");
  }
  return heading;
}

void SaveParameters(Writer& out, const TBasicMF& mf) {
  const MFKind* kind = FindNoCase(kKinds, mf.Type(), &MFKind::type);
  if (!kind) AssertFalse();
  const Values values = kind->values(mf);
  const bool grouped = values.size() > 1;
  if (grouped) out.OpenBracket();
  for (std::size_t i = 0; i < values.size(); ++i) {
    out.WriteNumber(kind->parameters[i], values[i], kDecimals);
  }
  if (grouped) out.CloseBracket();
}

Values ReadParameters(Reader& reader, const MFKind& kind) {
  Values values;
  for (const std::string_view parameter : kind.parameters) {
    const ParseItem item =
        values.empty() ? reader.ReadItem("MF") : reader.ReadUnbracketedItem("MF");
    values.push_back(ExpectNumber(item, reader, parameter));
  }
  return values;
}

void SaveMF(Writer& out, int index, const TBasicMF* mf) {
  out.WriteStartTag("MF");
  if (mf) {
    SaveHeading(out, {mf->Name(), index, mf->Type()});
    SaveParameters(out, *mf);
  } else {
    SaveHeading(out, {std::nullopt, index, std::string(kEmptySlot)});
  }
  out.WriteEndTag("MF");
  out.WriteNewline();
}

// Passes over the rest of the block of a function, whatever parameters it has.
void SkipParameters(Reader& reader) {
  ParseItem item = reader.ReadItem("MF");
  while (item.kind != ParseItem::kEnd) {
    item = item.unbracketed ? reader.ReadUnbracketedItem("MF") : reader.ReadItem("MF");
  }
}

void ReadMF(Reader& reader, TBasicMFSet& set) {
  ExpectStartTag(reader.ReadItem("MFSet"), reader, "MF");
  Heading heading = ReadHeading(reader, "MF");
  if (!heading.type) reader.Fail("[Type = <string>] expected");
  const MFKind* kind = FindNoCase(kKinds, *heading.type, &MFKind::type);
  if (!kind) {
    SkipParameters(reader);
    return;
  }
  const Values values = ReadParameters(reader, *kind);
  set.SetMF(heading.index, kind->make(std::move(heading.name), values));
  ExpectEndTag(reader.ReadItem("MF"), reader);
}

void SaveSet(Writer& out, int index, const TBasicMFSet& set) {
  out.WriteStartTag("MFSet");
  out.WriteNewline();
  out.WriteStartTag("MFSetInfo");
  SaveHeading(out, {set.Name(), index, set.Type()});
  out.OpenBracket();
  out.WriteNumber("LowerBound", set.LowerBound(), kDecimals);
  out.WriteNumber("UpperBound", set.UpperBound(), kDecimals);
  out.CloseBracket();
  out.WriteInteger("NumberOfMF", set.NumberOfMF());
  out.WriteEndTag("MFSetInfo");
  out.WriteNewline();
  for (int i = 0; i < set.NumberOfMF(); ++i) SaveMF(out, i, set.GetMF(i));
  out.WriteEndTag("MFSet");
  out.WriteNewline();
}

// Sets stand in the order of the file; the index in their heading is for the human reader.
std::unique_ptr<TBasicMFSet> ReadSet(Reader& reader) {
  ExpectStartTag(reader.ReadItem("MFList"), reader, "MFSet");
  ExpectStartTag(reader.ReadItem("MFSet"), reader, "MFSetInfo");
  Heading heading = ReadHeading(reader, "MFSetInfo");
  const double lower = ExpectNumber(reader.ReadItem("MFSetInfo"), reader, "LowerBound");
  const double upper = ExpectNumber(reader.ReadUnbracketedItem("MFSetInfo"), reader, "UpperBound");
  const int number_of_mf = ExpectCount(reader.ReadItem("MFSetInfo"), reader, "NumberOfMF");
  ExpectEndTag(reader.ReadItem("MFSetInfo"), reader);
  if (!(lower <= upper)) {
    // Message and function are frozen, though equal bounds pass and "FFIler" is misspelt.
    throw TException("UpperBound must be > LowerBound", "Bad File Data",
                     "TFuzzyMFFIler::LoadMFlist");
  }
  auto set = std::make_unique<TBasicMFSet>(std::move(heading.type), std::move(heading.name),
                                           number_of_mf, lower, upper);
  for (int i = 0; i < number_of_mf; ++i) ReadMF(reader, *set);
  ExpectEndTag(reader.ReadItem("MFSet"), reader);
  return set;
}

TMFSetList ReadInfo(Reader& reader) {
  ExpectStartTag(reader.ReadItem("MFList"), reader, "MFListInfo");
  const int count = ExpectCount(reader.ReadItem("MFListInfo"), reader, "VariablesRepresented");
  OptionalName list_name;
  ParseItem item = reader.ReadItem("MFListInfo");
  if (item.kind == ParseItem::kStatement) {
    list_name = ExpectString(item, reader, "ListName");
    item = reader.ReadItem("MFListInfo");
  }
  ExpectEndTag(item, reader);
  return TMFSetList(count, std::move(list_name));
}

}  // namespace

void SaveMFList(Writer& out, const TMFSetList& list) {
  out.WriteStartTag("MFList");
  out.WriteNewline();
  out.WriteStartTag("MFListInfo");
  out.WriteInteger("VariablesRepresented", list.Count());
  if (list.ListName()) out.WriteString("ListName", *list.ListName());
  out.WriteEndTag("MFListInfo");
  out.WriteNewline();
  for (int i = 0; i < list.Count(); ++i) {
    const TBasicMFSet* set = list.GetMFSet(i);
    Assert(set != nullptr, "set != NULL");
    SaveSet(out, i, *set);
  }
  out.WriteEndTag("MFList");
  out.WriteNewline();
}

TMFSetList LoadMFlist(Reader& reader, std::string_view current_block) {
  ExpectStartTag(reader.ReadItem(current_block), reader, "MFList");
  TMFSetList list = ReadInfo(reader);
  for (int i = 0; i < list.Count(); ++i) list.SetMFSet(i, ReadSet(reader));
  ExpectEndTag(reader.ReadItem("MFList"), reader);
  return list;
}

}  // namespace kiln::TFuzzyMFFiler
