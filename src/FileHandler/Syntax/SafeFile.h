#pragma once

#include <functional>
#include <string>

#include "FileHandler/Syntax/Writer.h"
#include "Shared/TException.h"

namespace kiln::FileTools {

// A file that cannot be written; what stood there before is unharmed.
class SaveError : public TException {
 public:
  explicit SaveError(const std::string& path);
};

// Makes `write` write the file at `path`. The text goes to a temporary beside it that takes its
// place, and its permissions, only when all of it is on its way to the disk: a failed save leaves
// the old file as it was. The target of a symbolic link is replaced, not the link. What is no
// regular file, such as a device or a pipe, is written straight, "/dev/stdout" behind what the
// program said before.
//
// Throws SaveError, and whatever `write` throws.
void SaveFile(const std::string& path, const std::function<void(Writer&)>& write);

}  // namespace kiln::FileTools
