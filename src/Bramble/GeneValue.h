#pragma once

#include <bit>
#include <cstdint>

namespace kiln {

// The value, or a bound, of one gene: 32 bits that hold a whole number, a single-precision real or
// a truth value. Which of them is said by the MetaGene alone. A value that was never set reads as 0
// in every form.
class GeneValue {
 public:
  constexpr GeneValue() = default;

  static constexpr GeneValue OfInteger(std::int32_t value) {
    return GeneValue(std::bit_cast<std::uint32_t>(value));
  }
  static constexpr GeneValue OfReal(float value) {
    return GeneValue(std::bit_cast<std::uint32_t>(value));
  }
  static constexpr GeneValue OfBoolean(bool value) { return GeneValue(value ? 1U : 0U); }

  // `first` or `second`. A loop over arrays of values that chooses by this has no branch and runs
  // in vector registers.
  static constexpr GeneValue Either(bool is_first, GeneValue first, GeneValue second) {
    return GeneValue(is_first ? first.MbrIntBits : second.MbrIntBits);
  }

  constexpr std::int32_t Integer() const { return std::bit_cast<std::int32_t>(MbrIntBits); }
  constexpr float Real() const { return std::bit_cast<float>(MbrIntBits); }
  constexpr bool Boolean() const { return MbrIntBits != 0; }

  // Equality of the bits.
  bool operator==(const GeneValue&) const = default;

 private:
  explicit constexpr GeneValue(std::uint32_t bits) : MbrIntBits(bits) {}

  std::uint32_t MbrIntBits = 0;
};

}  // namespace kiln
