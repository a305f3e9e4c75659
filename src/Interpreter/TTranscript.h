#pragma once

#include <string>
#include <string_view>

#include "Shared/TDescriptor.h"

namespace kiln {

// The file that a session is written to, line by line.
class TTranscript {
 public:
  // Closes the file that is open, if one is, and opens the one at `path`. Throws TCommandFailure
  // when that cannot be done, in which case the other one stays open, and as Close() does.
  void Open(const std::string& path);

  // Brings all lines to the disk and closes the file. Throws TCommandFailure when some are missing,
  // as on a full disk. No effect where none is open.
  void Close();

  bool IsOpen() const { return file_.IsOpen(); }

  // Whether `path` leads to the open file.
  bool Is(const std::string& path) const;

  // Writes a line of two parts. No effect where no file is open.
  void Write(std::string_view first, std::string_view rest = {});

 private:
  TDescriptor file_;
  std::string path_;
  bool is_whole_ = true;  // no line is missing
};

}  // namespace kiln
