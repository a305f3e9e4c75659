#pragma once

#include <cstddef>
#include <cstdint>

// Connections as files, kernels and visitors see them: flags, one connection, a rectangle of them.
namespace kiln {

// The flags of one connection.
using TMask = std::uint8_t;
inline constexpr TMask FMaskExists = 1;     // a pruned connection lacks it
inline constexpr TMask FMaskTrainable = 2;  // training leaves a connection without it alone
inline constexpr TMask FMaskAll = FMaskExists | FMaskTrainable;

// One connection of a block, from neuron `from` of one layer to neuron `to` of another.
struct TConnection {
  std::size_t to;
  std::size_t from;
  double weight;
  TMask flags;

  bool Exists() const { return (flags & FMaskExists) != 0; }
  bool IsTrainable() const { return (flags & FMaskTrainable) != 0; }
  bool IsSelected(TMask val) const { return val == FMaskAll || Exists(); }
};

// A rectangle of connections that stand together in a block: the connections from the neurons
// from..from+columns-1 to the neurons to..to+rows-1. A full block is one patch; a block that
// connects each neuron with a few others only is a list of them.
struct TWeightPatch {
  std::size_t to;
  std::size_t from;
  std::size_t rows;
  std::size_t columns;
  double* weights;     // rows x columns, row-major
  const TMask* masks;  // the same shape; null when every connection exists and is trainable

  std::size_t Size() const { return rows * columns; }
};

}  // namespace kiln
