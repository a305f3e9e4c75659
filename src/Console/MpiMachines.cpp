// MPI's C interface alone.
#define OMPI_SKIP_MPICXX 1
#define MPICH_SKIP_MPICXX 1
#include <mpi.h>

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <vector>

#include "Console/Machines.h"

namespace kiln {

namespace {

constexpr std::size_t kLongestMessage = std::size_t{1} << 30;  // lengths are of type int

// Whether a starter of many processes has left its mark: setting MPI up takes a while.
bool WasStartedByOne() {
  return std::ranges::any_of(
      std::initializer_list<const char*>{"OMPI_COMM_WORLD_SIZE", "PMIX_RANK", "PMI_RANK"},
      [](const char* mark) { return std::getenv(mark) != nullptr; });
}

// Errors of MPI end the program on all ranks, which is MPI's own default.
class TMpiTransport : public TTransport {
 public:
  // Only the main thread sends messages.
  TMpiTransport() {
    int level = 0;
    MPI_Init_thread(nullptr, nullptr, MPI_THREAD_FUNNELED, &level);
    int number = 0;
    MPI_Comm_size(MPI_COMM_WORLD, &number);
    count_ = static_cast<std::size_t>(number);
    MPI_Comm_rank(MPI_COMM_WORLD, &number);
    own_ = static_cast<std::size_t>(number);
  }
  ~TMpiTransport() override { MPI_Finalize(); }

  std::size_t Count() const override { return count_; }
  std::size_t Own() const override { return own_; }

  void Broadcast(std::span<std::byte> bytes, std::size_t from) override {
    while (!bytes.empty()) {
      const std::size_t size = std::min(bytes.size(), kLongestMessage);
      MPI_Bcast(bytes.data(), static_cast<int>(size), MPI_BYTE, static_cast<int>(from),
                MPI_COMM_WORLD);
      bytes = bytes.subspan(size);
    }
  }

  void Maximise(std::span<std::uint64_t> values) override {
    MPI_Allreduce(MPI_IN_PLACE, values.data(), static_cast<int>(values.size()), MPI_UINT64_T,
                  MPI_MAX, MPI_COMM_WORLD);
  }

  void Gather(std::span<std::byte> bytes, std::span<const std::size_t> ends) override {
    if (bytes.size() > kLongestMessage) return BroadcastParts(bytes, ends);
    std::vector<int> starts;
    std::vector<int> sizes;
    for (const std::size_t end : ends) {
      starts.push_back(starts.empty() ? 0 : starts.back() + sizes.back());
      sizes.push_back(static_cast<int>(end) - starts.back());
    }
    MPI_Allgatherv(MPI_IN_PLACE, 0, MPI_BYTE, bytes.data(), sizes.data(), starts.data(), MPI_BYTE,
                   MPI_COMM_WORLD);
  }

  void Swap(std::size_t other, std::span<const double> given, std::span<double> taken) override {
    constexpr int kTag = 0;
    for (std::size_t first = 0; first < given.size(); first += kLongestMessage / sizeof(double)) {
      const auto count =
          static_cast<int>(std::min(given.size() - first, kLongestMessage / sizeof(double)));
      MPI_Sendrecv(given.data() + first, count, MPI_DOUBLE, static_cast<int>(other), kTag,
                   taken.data() + first, count, MPI_DOUBLE, static_cast<int>(other), kTag,
                   MPI_COMM_WORLD, MPI_STATUS_IGNORE);
    }
  }

  void AddUpOnMachine(std::span<std::uint64_t> values) override {
    MPI_Comm machine = MPI_COMM_NULL;
    MPI_Comm_split_type(MPI_COMM_WORLD, MPI_COMM_TYPE_SHARED, 0, MPI_INFO_NULL, &machine);
    MPI_Allreduce(MPI_IN_PLACE, values.data(), static_cast<int>(values.size()), MPI_UINT64_T,
                  MPI_SUM, machine);
    MPI_Comm_free(&machine);
  }

  void EndAll() override { MPI_Abort(MPI_COMM_WORLD, EXIT_FAILURE); }

 private:
  void BroadcastParts(std::span<std::byte> bytes, std::span<const std::size_t> ends) {
    std::size_t start = 0;
    for (std::size_t rank = 0; rank < ends.size(); start = ends[rank++]) {
      Broadcast(bytes.subspan(start, ends[rank] - start), rank);
    }
  }

  std::size_t count_;
  std::size_t own_;
};

}  // namespace

std::unique_ptr<TTransport> JoinMachines() {
  if (!WasStartedByOne()) return nullptr;
  return std::make_unique<TMpiTransport>();
}

}  // namespace kiln
