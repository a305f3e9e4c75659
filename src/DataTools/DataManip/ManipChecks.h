#pragma once

#include <string>

#include "DataObject/Data.h"
#include "Shared/TException.h"

namespace kiln {

// Throws the failure of `operation` on data sets, called by its name alone ("Divide").
[[noreturn]] inline void ThrowManip(const char* message, const char* operation,
                                    const char* category = "Bad Parameter") {
  throw TException(message, category, std::string("TDataManip::") + operation);
}

// The source of `operation`. Throws TException with `message` for none.
inline const Data& CheckedSource(const Data* source, const char* operation,
                                 const char* message = "Data source null") {
  if (!source) ThrowManip(message, operation, "Null Pointer Parameter");
  return *source;
}

}  // namespace kiln
