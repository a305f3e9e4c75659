#include "FileHandler/Syntax/SafeFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <iostream>
#include <optional>
#include <streambuf>
#include <system_error>

#include "Shared/Interruption.h"
#include "Shared/Ranks.h"
#include "Shared/TSignalsBlocked.h"

namespace kiln::FileTools {

namespace {

namespace fs = std::filesystem;

// The path of the temporary that a signal which ends the program has to remove.
std::atomic<const char*> temporary_path = nullptr;

// A failed call of the system; by itself, errno says why.
[[noreturn]] void Fail(int reason = errno) {
  throw std::system_error(reason, std::generic_category());
}

// The state of the file that `path` leads to; nothing where there is none yet.
std::optional<struct stat> StateOf(const std::string& path) {
  struct stat state = {};
  if (stat(path.c_str(), &state) == 0) return state;
  if (errno != ENOENT) Fail();
  return std::nullopt;
}

// A descriptor open for writing to this file, or -1. Shells hand none down beyond 255.
int FindOpen(const struct stat& file) {
  constexpr int kHighest = 255;
  for (int number = STDOUT_FILENO; number <= kHighest; ++number) {
    struct stat state = {};
    const bool is_same =
        fstat(number, &state) == 0 && state.st_dev == file.st_dev && state.st_ino == file.st_ino;
    if (is_same && (fcntl(number, F_GETFL) & O_ACCMODE) != O_RDONLY) return number;
  }
  return -1;
}

// Whatever the program opens itself is closed on exec, which no descriptor that it inherited can
// be.
bool WasHandedDown(int descriptor) {
  return (fcntl(descriptor, F_GETFD) & FD_CLOEXEC) == 0;
}

TDescriptor Duplicate(int descriptor) {
  std::cout.flush();  // so that earlier output stands in front of the text
  return TDescriptor(fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
}

// Where `path` leads to. Links to files that do not exist yet are followed too; as many as the
// system follows, should they become a circle meanwhile.
fs::path FollowLinks(fs::path path) {
  constexpr int kMaxLinks = 40;
  std::error_code error;
  for (int i = 0; i < kMaxLinks && fs::is_symlink(path, error); ++i) {
    path = path.parent_path() / fs::read_symlink(path, error);
  }
  return path;
}

// A new file in the folder of a target. It is removed at the end unless it took its place.
class TemporaryFile {
 public:
  TemporaryFile(const fs::path& target, const std::optional<struct stat>& old) : target_(target) {
    constexpr mode_t kPermissions = 0777;  // without set-user-ID, set-group-ID and the sticky bit
    const mode_t mode = old ? old->st_mode & kPermissions : 0666;
    const std::string stem = target.parent_path() / (".kiln-save-" + std::to_string(getpid()));
    // Another number where a killed program of the same process number has left a temporary.
    for (unsigned number = 0; !file_.IsOpen(); ++number) {
      path_ = stem + "-" + std::to_string(number);
      const TSignalsBlocked blocked;
      file_ = TDescriptor::Open(path_, O_WRONLY | O_CREAT | O_EXCL, mode);
      if (file_.IsOpen())
        temporary_path = path_.c_str();
      else if (errno != EEXIST)
        Fail();
    }
    if (old) TakeOver(*old, mode);
  }

  ~TemporaryFile() {
    const TSignalsBlocked blocked;
    RemoveTemporary();
    temporary_path = nullptr;
  }

  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const TDescriptor& File() const { return file_; }

  // Puts the file in the place of the target.
  void Replace() {
    if (!Sync(file_) || !file_.Close()) Fail();
    {
      const TSignalsBlocked blocked;
      if (rename(path_.c_str(), target_.c_str()) != 0) Fail();
      temporary_path = nullptr;
    }
    SyncFolder();
  }

 private:
  // Owner, or at least group, and mode of the old file, as far as the system lets us.
  void TakeOver(const struct stat& old, mode_t mode) const {
    struct stat state = {};
    const bool is_known = fstat(file_.Number(), &state) == 0;
    if (is_known && (state.st_uid != old.st_uid || state.st_gid != old.st_gid)) {
      constexpr auto kSameUser = static_cast<uid_t>(-1);
      [[maybe_unused]] const bool is_kept = fchown(file_.Number(), old.st_uid, old.st_gid) == 0 ||
                                            fchown(file_.Number(), kSameUser, old.st_gid) == 0;
    }
    fchmod(file_.Number(), mode);
  }

  // A folder that we may write but not read cannot be opened, and is left to the system.
  void SyncFolder() const {
    const fs::path folder = target_.parent_path();
    const TDescriptor opened =
        TDescriptor::Open(folder.empty() ? "." : folder.string(), O_RDONLY | O_DIRECTORY);
    if (opened.IsOpen() ? !Sync(opened) : errno != EACCES) Fail();
  }

  fs::path target_;
  std::string path_;
  TDescriptor file_;
};

// Hands text on to a file until that fails or an interruption is requested, and keeps the reason of
// the first failure.
class TFileBuffer : public std::streambuf {
 public:
  explicit TFileBuffer(const TDescriptor& file) : file_(file) {}

  int Reason() const { return reason_; }

 protected:
  std::streamsize xsputn(const char* text, std::streamsize size) override {
    if (Interruption::IsRequested()) return 0;
    if (WriteAll(file_, {text, static_cast<std::size_t>(size)})) return size;
    reason_ = errno;
    return 0;
  }
  int_type overflow(int_type c) override {
    const char text = traits_type::to_char_type(c);
    return xsputn(&text, 1) == 1 ? c : traits_type::eof();
  }

 private:
  const TDescriptor& file_;
  int reason_ = 0;
};

void WriteTo(const TDescriptor& file, const std::function<void(Writer&)>& write) {
  TFileBuffer buffer(file);
  std::ostream out(&buffer);
  {
    Writer writer(out);
    write(writer);
  }
  if (out) return;
  Interruption::Check();
  Fail(buffer.Reason());
}

// Replaces the regular file at `path`, or makes one where there is none.
void Replace(const std::string& path, const std::optional<struct stat>& old,
             const std::function<void(Writer&)>& write) {
  // Renaming would get past the write protection of the old file.
  if (old && faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) Fail();
  TemporaryFile temporary(FollowLinks(path), old);
  WriteTo(temporary.File(), write);
  temporary.Replace();
}

// Writes to the file that `path` leads to in the way that its kind asks for. Returns why it refuses
// to; empty when all is well.
std::string Save(const std::string& path, const std::function<void(Writer&)>& write) {
  const std::optional<struct stat> old = StateOf(path);
  const int open_already = old ? FindOpen(*old) : -1;
  if (open_already >= 0 && !WasHandedDown(open_already)) {
    return "this session is writing it";
  }
  if (open_already < 0 && (!old || S_ISREG(old->st_mode))) {
    Replace(path, old, write);
    return {};
  }
  TDescriptor file = OpenToWrite(path);
  if (!file.IsOpen()) Fail();
  WriteTo(file, write);
  if (!file.Close()) Fail();
  return {};
}

}  // namespace

SaveError::SaveError(const std::string& path, const std::string& reason)
    : TException("cannot save to file " + path + ": " + reason, "File Error",
                 "FileTools::SaveFile") {}

void SaveFile(const std::string& path, const std::function<void(Writer&)>& write) {
  std::string reason;
  Ranks::OnFirst([&] {
    try {
      reason = Save(path, write);
    } catch (const std::system_error& failure) {
      reason = failure.code().message();
    }
  });
  Ranks::ShareText(reason);
  if (!reason.empty()) throw SaveError(path, reason);
}

TDescriptor OpenToWrite(const std::string& path) {
  struct stat state = {};
  const int open_already = stat(path.c_str(), &state) == 0 ? FindOpen(state) : -1;
  if (open_already >= 0 && WasHandedDown(open_already)) return Duplicate(open_already);
  return TDescriptor::Open(path, O_WRONLY | O_CREAT | O_TRUNC, 0666);
}

bool WriteAll(const TDescriptor& file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(file.Number(), text.data(), text.size());
    if (count >= 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return false;
    }
    // A pipe that is full has taken a part before it waits.
    if (!text.empty() && Interruption::IsRequested()) {
      errno = EINTR;
      return false;
    }
  }
  return true;
}

bool Sync(const TDescriptor& file) {
  // Pipes and devices answer EINVAL, some file systems ENOTSUP.
  return fsync(file.Number()) == 0 || errno == EINVAL || errno == ENOTSUP || errno == EROFS;
}

void RemoveTemporary() noexcept {
  if (const char* path = temporary_path) unlink(path);
}

}  // namespace kiln::FileTools
