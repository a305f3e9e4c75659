#pragma once

#include <cstdint>
#include <string>

#include "Shared/TException.h"

namespace kiln {

// Throws TException ("Bad Parameter", in the name of `function`) when a whole, such as "a layer",
// would have more parts, such as "neurons", than `limit`. Called before memory is taken for the
// parts. The message leaves the count out, since callers may have cut it to 32 bits.
inline void CheckAtMost(std::uint64_t limit, std::uint64_t count, const char* whole,
                        const char* parts, const char* function) {
  if (count <= limit) return;
  throw TException(std::string(whole) + " of more than " + std::to_string(limit) + " " + parts,
                   "Bad Parameter", function);
}

}  // namespace kiln
