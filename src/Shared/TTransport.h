#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace kiln {

// What carries messages between the ranks of a session (see Ranks.h). All ranks call the same
// operations in the same order, with spans of the same sizes. Only the main thread calls them.
class TTransport {
 public:
  TTransport() = default;
  virtual ~TTransport() = default;

  TTransport(const TTransport&) = delete;
  TTransport& operator=(const TTransport&) = delete;

  virtual std::size_t Count() const = 0;  // ranks
  virtual std::size_t Own() const = 0;    // this one's number, from 0

  // Gives all ranks the bytes that rank `from` has.
  virtual void Broadcast(std::span<std::byte> bytes, std::size_t from) = 0;

  // Gives all ranks the largest of their values, at each place by itself.
  virtual void Maximise(std::span<std::uint64_t> values) = 0;

  // Of `bytes`, each rank has the part from ends[own - 1], or 0, to before ends[own]: gives all
  // ranks all of them.
  virtual void Gather(std::span<std::byte> bytes, std::span<const std::size_t> ends) = 0;

  // Hands numbers to another rank and takes those that it hands to this one.
  virtual void Swap(std::size_t other, std::span<const double> given, std::span<double> taken) = 0;

  // Gives each rank the sums of the values that those on its machine have, at each place by itself.
  virtual void AddUpOnMachine(std::span<std::uint64_t> values) = 0;

  // Ends the program on all ranks, this one included, with status 1.
  virtual void EndAll() = 0;
};

}  // namespace kiln
