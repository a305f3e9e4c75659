#pragma once

// What the operations of the genetic library return, and the codes by which their methods are
// chosen.
namespace kiln {

inline constexpr int SUCCESS = 0;
inline constexpr int kGeneUndefined = -12;     // mutation of a gene without a type
inline constexpr int kGeneImmutable = -15;     // mutation of a gene that may not change
inline constexpr int kNoElites = -52;          // elites from a population that is missing
inline constexpr int kUnknownScaling = -53;    // not a scaling method
inline constexpr int kUnknownSelection = -54;  // not a selection method

inline constexpr int kRouletteSelection = 21;
inline constexpr int kTournamentSelection = 22;

inline constexpr int kLinearScaling = 31;

inline constexpr char kBrambleModule[] = "Bramble/Bramble10";  // as assertions name the library

}  // namespace kiln
