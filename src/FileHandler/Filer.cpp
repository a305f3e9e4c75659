#include "FileHandler/Filer.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include "FileHandler/NumberTable.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"
#include "Shared/Text.h"

namespace kiln::Filer {

namespace {

using FileTools::ParseItem;
using FileTools::Reader;

// The groups of columns, in the order in which the header must name them.
struct ColumnGroup {
  std::string_view keyword;
  int DataHeader::*count;
  bool may_be_labels;
};
constexpr ColumnGroup kGroups[] = {
    {"Inputs", &DataHeader::inputs, false},
    {"ExpectedOutputs", &DataHeader::expected_outputs, true},
    {"GeneratedOutputs", &DataHeader::generated_outputs, true},
    {"Error", &DataHeader::errors, false},
};

[[noreturn]] void FailHeader(const Reader& reader) {
  reader.Fail("bad-header");
}

int ReadCount(const ParseItem& item, const Reader& reader) {
  if (EqualNoCase(item.value, "Labels")) {
    // The message is frozen; it also answers labels for errors and rows.
    throw TException("No labels in inputs", "Bad Format", "Filer::ReadHeader");
  }
  const std::int64_t count = FileTools::ParseInteger(item.value, reader);
  if (count < 0 || count > std::numeric_limits<int>::max()) FailHeader(reader);
  return static_cast<int>(count);
}

// Fails unless the rest of the text is long enough for the table. A value takes at least one
// character, a label list its two brackets, and a row without values or labels the end of its line.
void CheckRoom(const DataHeader& header, const Reader& reader) {
  std::uint64_t row_size = 0;
  for (const ColumnGroup& group : kGroups) {
    const int count = header.*group.count;
    row_size += count == kLabels ? 2U : static_cast<std::uint64_t>(count);
  }
  row_size = std::max<std::uint64_t>(row_size, 1);
  if (static_cast<std::uint64_t>(header.rows) > reader.Remaining() / row_size) {
    reader.Fail("Rows = " + std::to_string(header.rows) + " is more than the file holds");
  }
}

std::unique_ptr<Data> MakeSet(int rows, int inputs, int outputs) {
  const bool has_labels = inputs == kLabels || outputs == kLabels;
  return std::make_unique<Data>(rows, std::max(inputs, 0), std::max(outputs, 0), has_labels);
}

// "[up down=0.5 ]": a label without a number weighs 1, and a label given twice weighs the sum.
void ReadLabels(Reader& reader, std::vector<WeightedName>& labels) {
  labels.clear();
  std::string_view token = reader.ReadToken();
  if (token.empty()) reader.Fail("Unexpected end of file");
  if (token == "[~") reader.Fail("Unexpected End Tag");
  Assert(token == "[", "ch == '['");

  token = reader.ReadToken();
  while (token != "]") {
    reader.CheckWord(token);
    const std::string_view name = token;
    token = reader.ReadToken();
    double weight = 1.0;
    if (token == "=") {
      weight = FileTools::ParseNumber(reader.ReadToken(), reader);
      token = reader.ReadToken();
    }
    labels.push_back({name, weight});
  }
}

// Reads one group of columns, row after row, and holds what the latest row has in it: values or a
// label list.
class RowGroup {
 public:
  explicit RowGroup(int count)
      : values_(count == kLabels ? 0 : static_cast<std::size_t>(count)),
        has_labels_(count == kLabels) {}

  void Read(Reader& reader) {
    if (has_labels_) {
      ReadLabels(reader, names_);
      labels_.Clear();
      labels_.Append(names_);
    }
    for (double& value : values_) value = ExpectNumberToken(reader.ReadItem("Data"), reader);
  }

  const std::vector<double>& Values() const { return values_; }
  const LabelList* Labels() const { return has_labels_ ? &labels_ : nullptr; }

 private:
  std::vector<double> values_;
  std::vector<WeightedName> names_;  // in the text
  LabelList labels_;
  bool has_labels_;
};

// Where the numbers of a table go that stand row after row.
class TNumberPlaces {
 public:
  TNumberPlaces(const DataHeader& header, const DataSets& sets) {
    AddSet(*sets.expected, header.inputs, header.expected_outputs);
    if (sets.generated) AddSet(*sets.generated, header.generated_outputs, header.errors);
  }

  std::size_t OfRow() const { return groups_.back().end; }

  // Stores some numbers, from that with this index on.
  void Take(std::size_t index, std::span<const double> numbers) const {
    while (!numbers.empty()) {
      const std::size_t column = index % OfRow();
      const auto group = std::ranges::upper_bound(groups_, column, {}, &TGroup::end);
      const std::size_t count = std::min(group->end - column, numbers.size());
      const Data::RowValues row = group->set->ValuesAt(static_cast<int>(index / OfRow()));
      const std::span<double> side = row.*group->side;
      std::ranges::copy(numbers.first(count),
                        side.end() - std::ssize(side.last(group->end - column)));
      numbers = numbers.subspan(count);
      index += count;
    }
  }

 private:
  struct TGroup {
    Data* set;
    std::span<double> Data::RowValues::*side;
    std::size_t end;  // of its columns in a row
  };

  void AddSet(Data& set, int inputs, int outputs) {
    const std::size_t before = groups_.empty() ? 0 : OfRow();
    const std::size_t middle = before + static_cast<std::size_t>(inputs);
    groups_.push_back({&set, &Data::RowValues::Inputs, middle});
    groups_.push_back(
        {&set, &Data::RowValues::Outputs, middle + static_cast<std::size_t>(outputs)});
  }

  std::vector<TGroup> groups_;
};

bool HasLabels(const DataHeader& header) {
  return header.expected_outputs == kLabels || header.generated_outputs == kLabels;
}

// Reads a table of nothing but numbers, which most are. Returns false, and leaves the reader where
// it is, where something else stands in it.
bool ReadAsNumbers(Reader& reader, const DataHeader& header, const DataSets& sets) {
  if (HasLabels(header)) return false;
  const TNumberPlaces places(header, sets);
  const std::size_t count = static_cast<std::size_t>(header.rows) * places.OfRow();
  if (count == 0) return false;
  const auto length = ReadNumbers(
      reader.Rest(), count,
      [&](std::size_t index, std::span<const double> numbers) { places.Take(index, numbers); });
  if (!length) return false;
  reader.Pass(*length);
  sets.expected->AddAllRows();
  if (sets.generated) sets.generated->AddAllRows();
  return true;
}

DataSets ReadRows(Reader& reader, const DataHeader& header) {
  DataSets sets;
  sets.expected = MakeSet(header.rows, header.inputs, header.expected_outputs);
  if (header.generated_outputs != 0 || header.errors != 0) {
    sets.generated = MakeSet(header.rows, header.generated_outputs, header.errors);
  }
  if (header.rows == 0 || ReadAsNumbers(reader, header, sets)) return sets;

  RowGroup inputs(header.inputs);
  RowGroup expected(header.expected_outputs);
  RowGroup generated(header.generated_outputs);
  RowGroup errors(header.errors);
  for (int row = 0; row < header.rows; ++row) {
    inputs.Read(reader);
    expected.Read(reader);
    generated.Read(reader);
    errors.Read(reader);
    sets.expected->AddRow(inputs.Values(), expected.Values(), expected.Labels());
    if (sets.generated) {
      sets.generated->AddRow(generated.Values(), errors.Values(), generated.Labels());
    }
  }
  return sets;
}

// What `read` returns, or nothing if it throws because of a fault in the text.
template <typename TRead>
std::optional<std::invoke_result_t<TRead>> Attempt(TRead read) {
  try {
    return read();
  } catch (const FileTools::Error&) {
  } catch (const TException&) {
  } catch (const TAssertion&) {
  }
  return std::nullopt;
}

TKQstructure DescribeData(Reader& reader) {
  ParseItem next;
  const DataHeader header = ReadHeader(reader, next);
  if (header.rows < 0) FailHeader(reader);
  TKQstructure data("data");
  data.SetLong("rows", header.rows);
  data.SetLong("inputs", header.inputs);
  data.SetLong("actual-outputs", header.expected_outputs);
  data.SetLong("calc-outputs", header.generated_outputs);
  data.SetLong("errors", header.errors);
  return data;
}

TKQstructure Describe(Reader& reader) {
  const auto first = Attempt([&] { return reader.ReadItem(""); });
  const bool has_tag = first && first->kind == ParseItem::kStartTag;
  const std::string_view tag = has_tag ? first->name : std::string_view();
  if (EqualNoCase(tag, "DataSet")) {
    return Attempt([&] { return DescribeData(reader); }).value_or(TKQstructure("bad-header"));
  }
  if (EqualNoCase(tag, "NeuralNetwork") || EqualNoCase(tag, "Network")) {
    return TKQstructure("network");
  }
  TKQstructure unknown("unknown-header");
  if (has_tag) unknown.SetString("header", std::string(tag));
  return unknown;
}

}  // namespace

DataHeader ReadHeader(Reader& reader, ParseItem& next) {
  DataHeader header;
  const ColumnGroup* group = std::begin(kGroups);
  for (next = reader.ReadItem("DataSet"); next.kind == ParseItem::kStatement;
       next = reader.ReadItem("DataSet")) {
    if (next.unbracketed) FailHeader(reader);
    if (EqualNoCase(next.name, "Rows")) {
      if (header.rows >= 0) FailHeader(reader);
      header.rows = ReadCount(next, reader);
      continue;
    }
    group = std::find_if(group, std::end(kGroups), [&](const ColumnGroup& candidate) {
      return EqualNoCase(next.name, candidate.keyword);
    });
    if (group == std::end(kGroups)) FailHeader(reader);
    const bool are_labels = group->may_be_labels && EqualNoCase(next.value, "Labels");
    header.*group->count = are_labels ? kLabels : ReadCount(next, reader);
    ++group;
  }
  return header;
}

namespace {

DataSets ReadSets(Reader& reader) {
  const ParseItem first = reader.ReadItem("");
  ExpectStartTag(first, reader);
  ExpectStartTag(first, reader, "DataSet");
  ParseItem next;
  const DataHeader header = ReadHeader(reader, next);
  Assert(header.rows >= 0, "LngRows>=0");
  ExpectStartTag(next, reader, "Data");
  CheckRoom(header, reader);

  DataSets sets = ReadRows(reader, header);
  for (const std::string_view block : {"Data", "DataSet", ""}) {
    ExpectEndTag(reader.ReadItem(block), reader);
  }
  return sets;
}

}  // namespace

DataSets Load(const std::string& path) {
  Reader reader = Reader::FromFile(path);
  return FileTools::ReadPlaced(reader, ReadSets);
}

TKQstructure DescribeFile(const std::string& path) {
  try {
    Reader reader = Reader::FromFile(path);
    return Describe(reader);
  } catch (const FileTools::OpenError&) {
    return TKQstructure("file-read-error");
  }
}

}  // namespace kiln::Filer
