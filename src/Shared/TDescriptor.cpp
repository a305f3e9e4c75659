#include "Shared/TDescriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "Shared/Interruption.h"

namespace kiln {

namespace {

// What `call` returns once no signal has come between; other signals than the wish to end the
// command do not matter.
template <typename TCall>
auto WithoutSignals(TCall call) {
  for (;;) {
    const auto result = call();
    if (result >= 0 || errno != EINTR) return result;
    if (Interruption::IsRequested()) throw TInterrupted();
  }
}

}  // namespace

TDescriptor TDescriptor::Open(const std::string& path, int flags, mode_t mode) {
  return TDescriptor(
      WithoutSignals([&] { return open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY, mode); }));
}

bool TDescriptor::Close() {
  const int number = std::exchange(number_, -1);
  return number < 0 || close(number) == 0;
}

ssize_t ReadSome(int descriptor, char* text, std::size_t size) {
  return WithoutSignals([&] { return read(descriptor, text, size); });
}

}  // namespace kiln
