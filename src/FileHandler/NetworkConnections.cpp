#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "FileHandler/NetworkKinds.h"
#include "FileHandler/NetworkReading.h"
#include "FileHandler/NetworkSections.h"
#include "NeuralNets/TBasicNetwork.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"
#include "Shared/Text.h"

namespace kiln::NetworkFiler {

namespace {

using FileTools::ParseItem;
using FileTools::Reader;

constexpr std::string_view kBlock = "ConnectionLayer";

bool IsStartTag(const ParseItem& item, std::string_view name) {
  return item.kind == ParseItem::kStartTag && EqualNoCase(item.name, name);
}

// One connection as the file has it. It is trainable unless the file says otherwise.
struct Cell {
  std::optional<double> weight;  // none where there is no connection
  bool trainable = true;
};

// Marks every connection as absent and, for when it comes back, as trainable.
class RemoveAll : public TIterateObj {
 public:
  void Connection(TConnection& connection) override { connection.flags = FMaskTrainable; }
};

// Reads the block of one pair of layers.
class ConnectionsReader {
 public:
  // The places of a weight list are taken off `places_left`.
  ConnectionsReader(Reader& reader, TBasicNetwork& network, std::uint64_t& places_left)
      : reader_(reader), network_(network), places_left_(places_left) {}

  void Read();

 private:
  enum class Column { kWeight, kTrainable };

  ParseItem ReadDescription();
  void SetDescription(const ParseItem& statement);
  void SkipAttributes(ParseItem item);
  void Connect(std::unique_ptr<TBasicConnections> block);
  std::vector<Column> ReadColumns(ParseItem item);
  void CheckRoom(std::size_t columns) const;
  void ReadMatrix(const std::vector<Column>& columns);
  Cell ReadCell(const std::vector<Column>& columns);
  void CheckPlaces(const TBasicConnections& block);
  void ReadWeightList();
  void ReadEntry(ParseItem item);
  void SetConnection(std::size_t to, std::size_t from, const Cell& cell);

  Reader& reader_;
  TBasicNetwork& network_;
  std::uint64_t& places_left_;
  std::optional<std::size_t> from_;
  std::optional<std::size_t> to_;
  std::string_view kind_;
  TBasicConnections* block_ = nullptr;  // null until Connect() has put it into the network
};

void ConnectionsReader::Read() {
  const ParseItem section = ReadDescription();
  std::unique_ptr<TBasicConnections> block = MakeConnections(kind_);
  if (!from_ || !to_ || !block) FailLoad(reader_, "Insufficient information to construct layer");
  if (network_.Connections(*to_, *from_).IsConnected()) {
    FailLoad(reader_, "Connections already defined");
  }
  if (IsStartTag(section, "Matrix")) {
    const std::vector<Column> columns = ReadColumns(section);
    CheckRoom(columns.size());
    Connect(std::move(block));
    ReadMatrix(columns);
  } else {
    ExpectStartTag(section, reader_, "WeightList");
    CheckPlaces(*block);
    Connect(std::move(block));
    ReadWeightList();
  }
  ExpectEndTag(reader_.ReadItem(kBlock), reader_);
}

// --- Description -----------------------------------------------------------------------------

// Reads the statements in front of the weights. Returns the item that opens the weights.
ParseItem ConnectionsReader::ReadDescription() {
  for (;;) {
    const ParseItem item = reader_.ReadItem(kBlock);
    if (item.kind == ParseItem::kStatement) {
      CheckClosed(item, reader_);
      SetDescription(item);
    } else if (IsStartTag(item, "Attributes")) {
      SkipAttributes(item);
    } else {
      return item;
    }
  }
}

void ConnectionsReader::SetDescription(const ParseItem& statement) {
  if (EqualNoCase(statement.name, "LayerFrom")) {
    from_ = ReadIndex(statement, reader_, network_.NumLayers());
  } else if (EqualNoCase(statement.name, "LayerTo")) {
    to_ = ReadIndex(statement, reader_, network_.NumLayers());
  } else if (EqualNoCase(statement.name, "ConnectionType")) {
    kind_ = statement.value;
  } else {
    FailLoad(reader_, "Unknown keyword in connections");
  }
}

// The attributes say no more than the kind of the connections does.
void ConnectionsReader::SkipAttributes(ParseItem item) {
  while (item.unbracketed) item = reader_.ReadUnbracketedItem(kBlock);
}

// Puts the block into the network and removes its connections, if it is of a kind that can be
// pruned: those that the file has come back one by one.
void ConnectionsReader::Connect(std::unique_ptr<TBasicConnections> block) {
  block_ = block.get();
  try {
    network_.SetConnections(*to_, *from_, std::move(block));
  } catch (const TException& too_large) {
    FailLoad(reader_, too_large.Message());
  }
  RemoveAll remove_all;
  if (block_->HasFlags()) block_->Iterate(remove_all);
}

void ConnectionsReader::SetConnection(std::size_t to, std::size_t from, const Cell& cell) {
  if (!block_->HasFlags() && (!cell.weight || !cell.trainable)) {
    FailLoad(reader_, std::string(kind_) + " connections cannot be pruned or frozen");
  }
  if (!cell.weight) return;
  if (!block_->HasPlace(to, from)) {
    FailLoad(reader_, std::string(kind_) + " do not join neuron " + std::to_string(from) +
                          " with neuron " + std::to_string(to));
  }
  block_->SetExists(to, from, true);
  block_->SetTrainable(to, from, cell.trainable);
  block_->SetWeight(to, from, *cell.weight);
}

// --- Matrix ----------------------------------------------------------------------------------

// The meaning of each token of a cell, in their order. `item` opens the matrix.
std::vector<ConnectionsReader::Column> ConnectionsReader::ReadColumns(ParseItem item) {
  constexpr std::size_t kEnd = 10;
  std::vector<Column> columns;
  while (item.unbracketed) {
    item = reader_.ReadUnbracketedItem("Matrix");
    if (item.kind != ParseItem::kStartTag) break;
    if (EqualNoCase(item.name, "Weights")) {
      columns.push_back(Column::kWeight);
    } else if (EqualNoCase(item.name, "TrainableInfo")) {
      columns.push_back(Column::kTrainable);
    } else {
      FailLoad(reader_, "Unknown matric attribute");  // frozen with its misspelling
    }
    Assert(columns.size() < kEnd, "wnum < 10", kModule);
  }
  const bool has_weights = std::ranges::find(columns, Column::kWeight) != columns.end();
  if (item.kind != ParseItem::kStartTag || !has_weights) {
    FailLoad(reader_, "Keyword expected in matrix parameter");
  }
  return columns;
}

// Fails unless the rest of the file is long enough for the matrix, whose tokens take at least one
// character each and one to separate them.
void ConnectionsReader::CheckRoom(std::size_t columns) const {
  const std::uint64_t cells =
      std::uint64_t{network_.Layer(*to_).NumNeurons()} * network_.Layer(*from_).NumNeurons();
  if (cells * columns > reader_.Remaining() / 2 + 1) {
    FailLoad(reader_,
             "matrix of " + std::to_string(cells) + " weights is more than the file holds");
  }
}

void ConnectionsReader::ReadMatrix(const std::vector<Column>& columns) {
  for (std::size_t from = 0; from < block_->Columns(); ++from) {
    for (std::size_t to = 0; to < block_->Rows(); ++to) {
      SetConnection(to, from, ReadCell(columns));
    }
  }
  ExpectEndTag(reader_.ReadItem("Matrix"), reader_);
}

Cell ConnectionsReader::ReadCell(const std::vector<Column>& columns) {
  Cell cell;
  for (const Column column : columns) {
    const ParseItem item = reader_.ReadItem("Matrix");
    if (item.kind != ParseItem::kToken) FailLoad(reader_, "Token Expected");
    if (item.name == "-") continue;
    if (column == Column::kWeight) {
      cell.weight = FileTools::ParseNumber(item.name, reader_);
    } else if (EqualNoCase(item.name, "T") || EqualNoCase(item.name, "F")) {
      cell.trainable = EqualNoCase(item.name, "T");
    } else {
      FailLoad(reader_, "T, F or - expected in trainable column");
    }
  }
  return cell;
}

// --- Weight list -----------------------------------------------------------------------------

// A failure when the list is of a block that is large beyond all proportion to the file.
void ConnectionsReader::CheckPlaces(const TBasicConnections& block) {
  const std::uint64_t places = block.SizeBetween(network_.Layer(*to_), network_.Layer(*from_));
  if (places > places_left_) {
    FailLoad(reader_,
             "a block of " + std::to_string(places) + " weights, which the file does not show");
  }
  places_left_ -= places;
}

void ConnectionsReader::ReadWeightList() {
  ParseItem item = reader_.ReadItem("WeightList");
  for (; item.kind != ParseItem::kEnd; item = reader_.ReadItem("WeightList")) ReadEntry(item);
}

void ConnectionsReader::ReadEntry(ParseItem item) {
  std::optional<std::size_t> from;
  std::optional<std::size_t> to;
  Cell cell;
  for (;; item = reader_.ReadUnbracketedItem("WeightList")) {
    const bool is_statement = item.kind == ParseItem::kStatement;
    if (is_statement && EqualNoCase(item.name, "From")) {
      from = ReadIndex(item, reader_, block_->Columns());
    } else if (is_statement && EqualNoCase(item.name, "To")) {
      to = ReadIndex(item, reader_, block_->Rows());
    } else if (is_statement && EqualNoCase(item.name, "Weight")) {
      cell.weight = FileTools::ParseNumber(item.value, reader_);
    } else if (IsStartTag(item, "Trainable") || IsStartTag(item, "UnTrainable")) {
      cell.trainable = EqualNoCase(item.name, "Trainable");
    } else {
      FailLoad(reader_, "Unknown keyword in weights list");
    }
    if (!item.unbracketed) break;
  }
  if (!from || !to || !cell.weight) {
    FailLoad(reader_, "Insufficient information in weights list");
  }
  SetConnection(*to, *from, cell);
}

}  // namespace

ParseItem ReadConnections(Reader& reader, ParseItem next, TBasicNetwork& network) {
  std::uint64_t places_left = kFreePlaces + kPlacesPerCharacter * reader.Remaining();
  for (; IsStartTag(next, kBlock); next = reader.ReadItem("NeuralNetwork")) {
    ConnectionsReader(reader, network, places_left).Read();
  }
  return next;
}

}  // namespace kiln::NetworkFiler
