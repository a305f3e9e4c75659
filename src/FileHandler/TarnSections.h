#pragma once

#include <string_view>

#include "Shared/Text.h"

// The words of the sections that only fuzzy layers have.
namespace kiln::NetworkFiler {

inline constexpr std::string_view kInputMF = "InputMF";
inline constexpr std::string_view kOutputMF = "OutputMF";
inline constexpr std::string_view kCount = "MF";

// What each line of a section starts with.
inline std::string_view VariableOf(std::string_view tag) {
  return EqualNoCase(tag, kInputMF) ? "Input" : "Output";
}

}  // namespace kiln::NetworkFiler
