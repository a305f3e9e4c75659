#pragma once

#include <filesystem>
#include <string>

namespace kiln {

class Data;

// A directory of its own for the files of a run, gone with this object.
class TScratch {
 public:
  TScratch();
  ~TScratch();
  TScratch(const TScratch&) = delete;
  TScratch& operator=(const TScratch&) = delete;

  std::string Path(const std::string& name) const { return (directory_ / name).string(); }

  // Writes the rows of a set, each its inputs and then its outputs, as plain doubles for a peer to
  // read; returns the path.
  std::string WriteNumbers(const std::string& name, const Data& data) const;

 private:
  std::filesystem::path directory_;
};

}  // namespace kiln
