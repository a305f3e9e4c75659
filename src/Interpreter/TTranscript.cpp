#include "Interpreter/TTranscript.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "FileHandler/Syntax/SafeFile.h"
#include "Interpreter/Checks.h"

namespace kiln {

void TTranscript::Open(const std::string& path) {
  std::string kept_path = path;
  TDescriptor file = FileTools::OpenToWrite(path);
  if (!file.IsOpen()) Fail("cannot open file ", path);
  Close();
  file_ = std::move(file);
  path_ = std::move(kept_path);
  is_whole_ = true;
}

void TTranscript::Close() {
  if (!IsOpen()) return;
  const bool is_synced = FileTools::Sync(file_);
  const bool is_closed = file_.Close();
  if (!is_whole_ || !is_synced || !is_closed) Fail("cannot write all of file ", path_);
}

bool TTranscript::Is(const std::string& path) const {
  std::error_code not_there;
  return IsOpen() && std::filesystem::equivalent(path, path_, not_there);
}

void TTranscript::Write(std::string_view first, std::string_view rest) {
  if (!IsOpen()) return;
  for (const std::string_view part : {first, rest, std::string_view("\n")}) {
    is_whole_ = FileTools::WriteAll(file_, part) && is_whole_;
  }
}

}  // namespace kiln
