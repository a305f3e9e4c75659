#include "MemoryUse.h"

#include <malloc.h>

#include <fstream>
#include <stdexcept>
#include <string>

namespace kiln {

namespace {

// A line of the process's status, in bytes.
double Status(const std::string& key) {
  std::ifstream status("/proc/self/status");
  double kilobytes = 0.0;
  for (std::string word; status >> word;) {
    if (word == key && status >> kilobytes) return kilobytes * 1024.0;
  }
  throw std::runtime_error("no " + key + " in /proc/self/status");
}

}  // namespace

double HeapInUse() {
  const auto heap = mallinfo2();
  return static_cast<double>(heap.uordblks + heap.hblkhd);
}

double PeakDuring(const std::function<void()>& action) {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";  // the peak so far is forgotten
  const double before = Status("VmRSS:");
  action();
  return Status("VmHWM:") - before;
}

}  // namespace kiln
