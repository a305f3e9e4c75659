// Loaded in front of the system's library, this makes one call fail: the n-th of its kind from when
// the program first reads its input until main() returns. KILN_FAULT says which, as "CALL NUMBER
// ERRNO"; the errno 0 means that a write takes only half of what it is given. KILN_FAULT_TOLD names
// a file that tells of the failure. Standard streams and memory for the system's own library go on
// working.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

bool is_armed = false;
char call_that_fails[16] = "";
long calls_left = 0;
int reason = 0;

// The function of this name that the system's library has.
template <typename T>
T* Next(const char* name) {
  return reinterpret_cast<T*>(dlsym(RTLD_NEXT, name));
}

void Arm() {
  is_armed = true;
  std::atexit([] { is_armed = false; });
  const char* const fault = std::getenv("KILN_FAULT");
  if (fault) std::sscanf(fault, "%15s %ld %d", call_that_fails, &calls_left, &reason);
}

// Whether this call is the one that fails.
bool Fails(const char* call) {
  if (!is_armed || std::strcmp(call, call_that_fails) != 0 || --calls_left != 0) return false;
  const char* const told = std::getenv("KILN_FAULT_TOLD");
  if (told) mknod(told, S_IFREG | 0600, 0);
  errno = reason;
  return true;
}

}  // namespace

extern "C" {

ssize_t read(int file, void* to, size_t size) {
  static auto* const next = Next<decltype(read)>("read");
  if (file == STDIN_FILENO && !is_armed) Arm();
  return next(file, to, size);
}

ssize_t write(int file, const void* from, size_t size) {
  static auto* const next = Next<decltype(write)>("write");
  if (file <= STDERR_FILENO || !Fails("write")) return next(file, from, size);
  return reason != 0 ? -1 : next(file, from, (size + 1) / 2);
}

int open(const char* path, int flags, ...) {
  static auto* const next = Next<decltype(open)>("open");
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return Fails("open") ? -1 : next(path, flags, mode);
}

// A close that fails has closed the file nevertheless.
int close(int file) {
  static auto* const next = Next<decltype(close)>("close");
  const bool fails = file > STDERR_FILENO && Fails("close");
  const int outcome = next(file);
  if (fails) errno = reason;
  return fails ? -1 : outcome;
}

// Waiting for the disk would take long, and make no difference to a session.
int fsync(int /*file*/) {
  return Fails("fsync") ? -1 : 0;
}

int fchmod(int file, mode_t mode) noexcept {
  static auto* const next = Next<int(int, mode_t)>("fchmod");
  return Fails("fchmod") ? -1 : next(file, mode);
}

int rename(const char* from, const char* to) noexcept {
  static auto* const next = Next<int(const char*, const char*)>("rename");
  return Fails("rename") ? -1 : next(from, to);
}

void* malloc(size_t size) noexcept {
  static auto* const next = Next<void*(size_t)>("malloc");
  return Fails("malloc") ? nullptr : next(size);
}

// What `new` takes for objects that are to begin where cache lines or pages do.
void* aligned_alloc(size_t alignment, size_t size) noexcept {
  static auto* const next = Next<void*(size_t, size_t)>("aligned_alloc");
  return Fails("malloc") ? nullptr : next(alignment, size);
}

}  // extern "C"
