#include "Shared/Say.h"

#include <iostream>

namespace kiln {

void Say(std::string_view text) {
  std::cout << text << std::flush;
}

void SayLine(std::string_view text) {
  std::cout << text << '\n' << std::flush;
}

}  // namespace kiln
