#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <iostream>

#include "Console/Signals.h"
#include "Console/TConsole.h"

int main() {
  std::ios::sync_with_stdio(false);
  kiln::Signals::Install();
  if (isatty(STDIN_FILENO)) kiln::Signals::CatchInterrupts();
  kiln::TConsole console(STDIN_FILENO, std::cout);
  console.Converse();
  try {
    console.Close();
  } catch (const std::exception& failure) {
    std::cerr << "kiln: " << failure.what() << '\n';
    return EXIT_FAILURE;
  }
  return std::cout.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
}
