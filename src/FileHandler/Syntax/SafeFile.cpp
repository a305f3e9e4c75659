#include "FileHandler/Syntax/SafeFile.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <system_error>
#include <utility>

namespace kiln::FileTools {

namespace {

namespace fs = std::filesystem;

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

// A new file in the directory of a target. It is removed at the end unless it took its place.
class TemporaryFile {
 public:
  explicit TemporaryFile(const fs::path& target) {
    constexpr int kMaxTries = 1000;  // files left behind by a crash, or other saves at work
    for (int i = 0; i < kMaxTries && path_.empty(); ++i) {
      const fs::path path = target.parent_path() / (".kiln-save-" + std::to_string(i));
      // Mode "x" alone tells whether the file is new.
      if (std::FILE* file = std::fopen(path.c_str(), "wx")) {
        std::fclose(file);
        path_ = path;
      }
    }
  }

  ~TemporaryFile() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove(path_, ignored);
  }

  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  bool WasMade() const { return !path_.empty(); }
  const fs::path& Path() const { return path_; }

  // Before anything is written: nobody shall read more than the old file showed.
  bool TakePermissions(fs::file_status old) const {
    std::error_code error;
    if (fs::exists(old)) fs::permissions(path_, old.permissions(), error);
    return !error;
  }

  // Puts the file in the place of `target`.
  bool Replace(const fs::path& target) {
    std::error_code error;
    fs::rename(path_, target, error);
    if (!error) path_.clear();
    return !error;
  }

 private:
  fs::path path_;
};

// Both tell whether all of the text reached the system.
bool WriteTo(std::ostream& out, const std::function<void(Writer&)>& write) {
  {
    Writer writer(out);
    write(writer);
  }
  return !out.flush().fail();
}

bool WriteThrough(const fs::path& path, const std::function<void(Writer&)>& write) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  if (!file || !WriteTo(file, write)) return false;
  file.close();
  return !file.fail();
}

bool IsWritable(const fs::path& path) {
  return std::ofstream(path, std::ios::app).is_open();
}

// Puts the text in the place of `target`, a file or nothing yet, and tells whether that went well.
bool Replace(const fs::path& target, fs::file_status old,
             const std::function<void(Writer&)>& write) {
  // Renaming would get past the write protection of the old file.
  if (fs::exists(old) && !IsWritable(target)) return false;
  TemporaryFile temporary(target);
  return temporary.WasMade() && temporary.TakePermissions(old) &&
         WriteThrough(temporary.Path(), write) && temporary.Replace(target);
}

// Writes to the file that `path` leads to in the way that its kind asks for.
bool Save(const std::string& path, const std::function<void(Writer&)>& write) {
  // Where the output is sent to a file, this path leads there, and the file must not be replaced.
  if (path == "/dev/stdout") return WriteTo(std::cout, write);
  std::error_code error;
  const fs::file_status old = fs::status(path, error);
  // Links that lead in a circle, or a directory that may not be searched: there is no target.
  if (!fs::status_known(old)) return false;
  // By the path as it is: what "/dev/stderr" says it links to may be a pipe, which has no path.
  if (fs::exists(old) && !fs::is_regular_file(old)) return WriteThrough(path, write);
  return Replace(FollowLinks(path), old, write);
}

}  // namespace

SaveError::SaveError(const std::string& path)
    : TException("cannot save to file " + path, "File Error", "FileTools::SaveFile") {}

void SaveFile(const std::string& path, const std::function<void(Writer&)>& write) {
  if (!Save(path, write)) throw SaveError(path);
}

}  // namespace kiln::FileTools
