#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <utility>

namespace kiln {

// An open file of the operating system, closed at the end.
//
// Opening and reading may have to wait, for the other end of a pipe or for a key. A requested
// interruption ends the wait: they throw TInterrupted.
class TDescriptor {
 public:
  TDescriptor() = default;
  explicit TDescriptor(int number) : number_(number) {}
  ~TDescriptor() { Close(); }

  TDescriptor(TDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  TDescriptor& operator=(TDescriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }

  // Opens with the flags and mode of open(2), closed on exec. Not open afterwards: see errno.
  static TDescriptor Open(const std::string& path, int flags, mode_t mode = 0);

  bool IsOpen() const { return number_ >= 0; }
  int Number() const { return number_; }

  // Closes at once and tells whether the system had no complaint.
  bool Close();

 private:
  int number_ = -1;
};

// Reads up to `size` characters: as many as are there, 0 at the end, -1 for a fault (see errno).
ssize_t ReadSome(int descriptor, char* text, std::size_t size);

}  // namespace kiln
