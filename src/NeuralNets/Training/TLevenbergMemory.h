#pragma once

namespace kiln {

// What levenberg remembers from one step to the next: how far it trusts its linear picture of the
// network. See TLevenbergPass.
struct TLevenbergMemory {
  static constexpr double kFirstDamping = 0.1;

  double damping = kFirstDamping;
};

}  // namespace kiln
