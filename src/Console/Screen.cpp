#include "Console/Screen.h"

#include <sys/ioctl.h>

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <string>

#include "Shared/Text.h"

namespace kiln::Screen {

namespace {

struct TCharacter {
  std::size_t bytes;
  int columns;  // -1: a control character
};

// Of a text that is not empty. What is no character of the locale counts by bytes.
TCharacter First(std::string_view text) {
  std::mbstate_t state = {};
  wchar_t character = 0;
  const std::size_t bytes = std::mbrtowc(&character, text.data(), text.size(), &state);
  if (bytes == 0 || bytes > text.size()) return {1, 1};
  return {bytes, wcwidth(character)};
}

// Zeros where it is not known.
winsize SizeOf(int descriptor) {
  winsize size = {};
  ioctl(descriptor, TIOCGWINSZ, &size);
  return size;
}

}  // namespace

std::size_t Columns(int descriptor) {
  constexpr std::size_t kUsual = 80;
  const std::size_t columns = SizeOf(descriptor).ws_col;
  return columns > 0 ? columns : kUsual;
}

std::size_t Lines(int descriptor) {
  constexpr std::size_t kUsual = 24;
  const std::size_t lines = SizeOf(descriptor).ws_row;
  return lines > 0 ? lines : kUsual;
}

bool HasUnicode() {
  // The first of these that is set counts.
  for (const char* const name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* const value = std::getenv(name);
    if (!value || !*value) continue;
    const std::string locale = FoldCase(value);
    return locale.find("utf-8") != locale.npos || locale.find("utf8") != locale.npos;
  }
  return false;
}

std::size_t Width(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) {
    const TCharacter first = First(text);
    width += static_cast<std::size_t>(std::max(first.columns, 0));
    text.remove_prefix(first.bytes);
  }
  return width;
}

std::string_view Fitting(std::string_view text, std::size_t columns) {
  std::size_t end = 0;
  while (end < text.size()) {
    const TCharacter next = First(text.substr(end));
    if (next.columns < 0 || static_cast<std::size_t>(next.columns) > columns) break;
    columns -= static_cast<std::size_t>(next.columns);
    end += next.bytes;
  }
  return text.substr(0, end);
}

}  // namespace kiln::Screen
