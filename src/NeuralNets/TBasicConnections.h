#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "NeuralNets/TIterateObj.h"
#include "Shared/TAssertion.h"
#include "Shared/TPlacedVector.h"

namespace kiln {

class TBasicLayer;

// A block of connections between two layers, or from a layer to itself: weights and, in the kinds
// that have them, flags. The block is a list of patches (see TWeightPatch), one behind the other in
// the order of their rows, over one contiguous buffer of weights; the kinds differ in how they lay
// the patches out.
//
// A block has its shape from the moment it is attached; everything but Attach, KindName, HasFlags
// and IsConnected asks for that first and throws TAssertion "attached" otherwise.
class TBasicConnections {
 public:
  virtual ~TBasicConnections() = default;
  TBasicConnections& operator=(const TBasicConnections&) = delete;

  // Whether the block can hold weights: false only for an empty block.
  virtual bool IsConnected() const { return true; }

  virtual std::string_view KindName() const = 0;

  // Whether connections can be pruned and frozen. In a kind of block without flags every connection
  // exists and is trainable for good; taking a flag away is a TAssertion there.
  virtual bool HasFlags() const { return true; }

  // Whether weight penalties act on the block. They pull weights to 0, which only makes sense where
  // a weight of 0 is one without influence.
  virtual bool IsPenalised() const { return true; }

  // Whether rows and columns can be added and removed.
  virtual bool IsResizable() const { return true; }

  // An equal block, attached as this one is.
  virtual std::unique_ptr<TBasicConnections> Clone() const = 0;

  // How many weights the block would have between such layers, counted without taking memory.
  std::size_t SizeBetween(const TBasicLayer& to, const TBasicLayer& from) const;

  // Takes the shape that the layers ask for: every connection exists, is trainable and weighs 0.
  void Attach(const TBasicLayer& to, const TBasicLayer& from);

  // Neurons of the to-layer and of the from-layer; none in an empty block.
  std::size_t Rows() const { return rows_; }
  std::size_t Columns() const { return columns_; }

  // Whether the block has a place for a connection, whether that exists or not.
  bool HasPlace(std::size_t to, std::size_t from) const { return Place(to, from).has_value(); }

  // One connection. A place that the block does not have holds a connection that does not exist:
  // it weighs 0, and setting anything there throws TAssertion.
  bool Exists(std::size_t to, std::size_t from) const;
  bool IsTrainable(std::size_t to, std::size_t from) const;
  double GetWeight(std::size_t to, std::size_t from) const;

  // A connection that does not exist keeps the weight 0.
  void SetWeight(std::size_t to, std::size_t from, double weight);
  void SetTrainable(std::size_t to, std::size_t from, bool trainable);
  void SetExists(std::size_t to, std::size_t from, bool exists);

  // Whether every neuron of one layer is connected with every neuron of the other, so that Weights
  // is a matrix of Rows() x Columns().
  bool IsComplete() const;

  // Whether every place of the block holds a connection that exists and is trainable.
  bool IsAllTrainable() const { return exceptions_ == 0; }

  // Every weight of the block, patch after patch, row by row. A writer leaves the weights of absent
  // connections at 0.
  std::span<const double> Weights() const { return weights_; }
  std::span<double> Weights() { return weights_; }

  // net[to] += weight * outputs[from] for every connection that exists.
  void Accumulate(std::span<const double> outputs, std::span<double> net) const;

  void Iterate(TIterateObj& operation);
  void Read(TIterateObjRead& operation) const;

  // Walk the weights of this block in step with numbers that stand as they do, patch by patch.
  // Throw TAssertion unless there is a number for each weight.
  void Iterate2(std::span<double> second, TIterateObj2& operation);
  void Iterate3(std::span<double> second, std::span<double> third, TIterateObj3& operation);

  // Walk this block and others of the same kind and shape in step.
  // Throw TAssertion when kind or shape differ.
  void Iterate2(TBasicConnections& conn2, TIterateObj2& operation);
  void Iterate3(TBasicConnections& conn2, TBasicConnections& conn3, TIterateObj3& operation);

  // Follow a neuron that was inserted into, or taken out of, the to-layer (rows) or the from-layer
  // (columns). New connections exist, are trainable and weigh 0. Throw TAssertion for a position
  // that the block does not have, and in kinds that are not resizable.
  virtual void AddRow(std::size_t position);
  virtual void RemoveRow(std::size_t position);
  virtual void AddColumn(std::size_t position);
  virtual void RemoveColumn(std::size_t position);

 protected:
  // A rectangle of connections; its weights stand behind those of the patches before it.
  struct TPatchShape {
    std::size_t to = 0;
    std::size_t from = 0;
    std::size_t rows = 0;
    std::size_t columns = 0;
    std::size_t offset = 0;  // of its first weight; filled in by Attach

    std::size_t Size() const { return rows * columns; }
  };

  TBasicConnections() = default;
  TBasicConnections(const TBasicConnections&) = default;

  // The patches of a block between two layers: in ascending order of their rows, each row in
  // exactly one patch.
  virtual std::vector<TPatchShape> Layout(const TBasicLayer& to, const TBasicLayer& from) const = 0;

  // The patches of this block, and one of them with its weights and flags.
  std::span<const TPatchShape> Patches() const { return patches_; }
  TWeightPatch PatchOf(const TPatchShape& shape);

  // The source that assertions of the operations here give: users quote that of the kind of block.
  // Hot paths ask for it only when a check has failed.
  virtual const char* Module() const = 0;

  void CheckAttached() const {
    if (!attached_) Assert(false, "attached", Module());
  }

  // Where the rows, or the columns, of a changed block come from: for each of them the position
  // that it had before, or kNew for an inserted one.
  using TOrigins = std::vector<std::size_t>;
  static constexpr std::size_t kNew = static_cast<std::size_t>(-1);

  // Gives a block of one full patch other rows and columns; new connections exist, are trainable
  // and weigh 0.
  void Rearrange(const TOrigins& rows, const TOrigins& columns);

 private:
  std::optional<std::size_t> Place(std::size_t to, std::size_t from) const;
  std::size_t PlaceAssert(std::size_t to, std::size_t from) const;
  TMask FlagsAt(std::size_t place) const { return masks_.empty() ? FMaskAll : masks_[place]; }
  void SetFlag(std::size_t to, std::size_t from, TMask flag, bool set);
  void Store(std::size_t place, double weight, TMask flags);
  void StoreFlags(std::size_t place, TMask flags);
  void CheckKind(const TBasicConnections& twin, const char* expression) const;
  void CheckSize(std::span<const double> values) const;

  template <typename TVisit>
  void ForEachPlace(const TVisit& visit) const;

  bool attached_ = false;
  std::size_t rows_ = 0;
  std::size_t columns_ = 0;
  std::vector<TPatchShape> patches_;
  TPlacedVector<double> weights_;
  std::vector<TMask> masks_;    // one a weight, from when the first differs from FMaskAll
  std::size_t exceptions_ = 0;  // places whose flags are not FMaskAll
};

}  // namespace kiln
