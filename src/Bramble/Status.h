#pragma once

namespace kiln {

// What an operation of the genetic library returns that can be refused.
enum class GeneticStatus : int {
  SUCCESS = 0,
  kGeneUndefined = -12,     // mutation of a gene without a type
  kGeneImmutable = -15,     // mutation of a gene that may not change
  kNoElites = -52,          // elites from a population that is missing
  kUnknownScaling = -53,    // not a scaling method
  kUnknownSelection = -54,  // not a selection method
};

// How parents are chosen: a place of the roulette wheel, or the fitter of two such.
enum class SelectionMethod : int { kRoulette = 21, kTournament = 22 };

// How fitness is scaled before parents are chosen: linearly to [0, 1].
enum class ScalingMethod : int { kLinear = 31 };

// Users know some checks of the library by this name, whatever file they stand in.
inline constexpr char kBrambleModule[] = "Bramble/Bramble10";

}  // namespace kiln
