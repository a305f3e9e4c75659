#pragma once

#include <optional>
#include <string_view>
#include <variant>

#include "NeuralNets/Training/TAdam.h"
#include "NeuralNets/Training/TLevenbergMemory.h"
#include "NeuralNets/Training/TRprop.h"

namespace kiln {

class TKQstructure;

// How a trainer changes weights by the gradients that its passes find.
//   gradient   down the gradient, with momentum (see TRates)
//   rprop      by the signs of gradients over the whole set (see TRprop)
//   adam       by running means of gradients and their squares (see TAdam)
//   levenberg  to the solution of damped normal equations (see TLevenbergPass)
enum class TMethodKind { kGradient, kRprop, kAdam, kLevenberg };

// The four words, as a text for people.
inline constexpr char kMethodWords[] = "gradient, rprop, adam or levenberg";

// The method of that name, in any case.
std::optional<TMethodKind> FindMethod(std::string_view name);

// The method of one call of a trainer, with its constants.
struct TMethodSettings {
  // Reads METHOD, and FIRSTSTEP, LARGESTSTEP, BETA1, BETA2, EPSILON and LEARNINGRATE as far as they
  // are constants of the method. Throws TException for an unknown word, and for a constant that is
  // no number or out of its bounds.
  explicit TMethodSettings(const TKQstructure& params);

  TMethodKind kind;
  TRprop::TConstants rprop;
  TAdam::TConstants adam;
};

// What a method remembers from one update to the next, and from one call to the next. The place of
// an alternative is the number of its method; what the plain gradient remembers, the last changes,
// stands in TTrainState.
using TMethodMemory = std::variant<std::monostate, TRprop, TAdam, TLevenbergMemory>;

// The memory with which a method begins, for so many weights.
TMethodMemory NewMemory(const TMethodSettings& settings, std::size_t weights);

}  // namespace kiln
