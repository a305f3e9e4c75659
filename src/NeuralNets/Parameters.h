#pragma once

#include <string_view>

#include "KQmessage/TKQstructure.h"

namespace kiln {

// The number that `message` holds under `keyword`, or `fallback` where there is no such keyword.
// Throws TException for a value that is no number.
inline double NumberOr(const TKQstructure& message, std::string_view keyword, double fallback) {
  const TKQstructure* value = message.Deref(keyword);
  return value != nullptr ? str2doubleThrow(value->Name()) : fallback;
}

}  // namespace kiln
