#include "Shared/Say.h"

#include <iostream>
#include <utility>

namespace kiln {

namespace {

std::function<void(std::string_view text, TSaying saying)> taker;

}  // namespace

void Say(std::string_view text) {
  if (taker) return taker(text, TSaying::kPassing);
  std::cout << text << std::flush;
}

void SayLine(std::string_view text) {
  if (taker) return taker(text, TSaying::kLine);
  std::cout << text << '\n' << std::flush;
}

void SayError(std::string_view text) {
  if (taker) return taker(text, TSaying::kLine);
  std::cerr << text << std::endl;
}

void HaveSaid(std::function<void(std::string_view text, TSaying saying)> take) {
  taker = std::move(take);
}

}  // namespace kiln
