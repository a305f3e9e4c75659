#include "FileHandler/SafeFile.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <system_error>
#include <utility>

namespace kiln::FileTools {

namespace {

namespace fs = std::filesystem;

// Where `path` leads to. Links to files that do not exist yet are followed too.
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
  // Throws SaveError, for `path` as the user gave it.
  TemporaryFile(const fs::path& target, const std::string& path) {
    constexpr int kMaxTries = 1000;  // files left behind by a crash, or other saves at work
    for (int i = 0; i < kMaxTries; ++i) {
      path_ = target.parent_path() / (".kiln-save-" + std::to_string(i));
      // Mode "x" alone tells whether the file is new.
      if (std::FILE* file = std::fopen(path_.c_str(), "wx")) {
        std::fclose(file);
        return;
      }
    }
    throw SaveError(path);
  }

  ~TemporaryFile() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove(path_, ignored);
  }

  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

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

// Whether all of the text reached the file system.
bool WriteThrough(const fs::path& path, const std::function<void(Writer&)>& write) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  if (!file) return false;
  {
    Writer writer(file);
    write(writer);
  }
  file.close();
  return !file.fail();
}

bool IsWritable(const fs::path& path) {
  return std::ofstream(path, std::ios::app).is_open();
}

}  // namespace

SaveError::SaveError(const std::string& path)
    : TException("cannot save to file " + path, "File Error", "FileTools::SaveFile") {}

void SaveFile(const std::string& path, const std::function<void(Writer&)>& write) {
  const fs::path target = FollowLinks(path);
  std::error_code missing;
  const fs::file_status old = fs::status(target, missing);
  if (fs::exists(old) && !fs::is_regular_file(old)) {
    if (!WriteThrough(target, write)) throw SaveError(path);
    return;
  }
  // Renaming would get past the write protection of the old file.
  if (fs::exists(old) && !IsWritable(target)) throw SaveError(path);

  TemporaryFile temporary(target, path);
  const bool saved = temporary.TakePermissions(old) && WriteThrough(temporary.Path(), write) &&
                     temporary.Replace(target);
  if (!saved) throw SaveError(path);
}

}  // namespace kiln::FileTools
