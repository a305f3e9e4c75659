#pragma once

#include <exception>
#include <string>
#include <string_view>

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

// The expression of the check that `action` breaks, or else what Failure() gives.
template <typename TAction>
std::string BrokenCheck(const TAction& action) {
  constexpr std::string_view kBegin = "Assertion failed: ";
  const std::string text = Failure(action);
  if (!text.starts_with(kBegin)) return text;
  return text.substr(kBegin.size(), text.rfind(", file ") - kBegin.size());
}

}  // namespace kiln
