#pragma once

#include <exception>
#include <string>

namespace kiln {

// What `action` throws, as text, or "none".
template <typename TAction>
std::string Failure(const TAction& action) {
  try {
    action();
  } catch (const std::exception& failure) {
    return failure.what();
  }
  return "none";
}

}  // namespace kiln
