#pragma once

#include <functional>
#include <string>

#include "FileHandler/Syntax/Writer.h"
#include "Shared/TDescriptor.h"
#include "Shared/TException.h"

namespace kiln::FileTools {

// A file that cannot be written; what stood there before is unharmed. Of a file whose folder alone
// could not be brought to the disk, the new text stands there, whole.
class SaveError : public TException {
 public:
  SaveError(const std::string& path, const std::string& reason);
};

// Makes `write` write the file at `path`. The text goes to a temporary beside it that takes its
// place, its mode and where possible its owner only when all of the text is on the disk: a failed
// save leaves the old file as it was. The target of a symbolic link is replaced, not the link. A
// device or a pipe is written straight; so is a file that the program inherited open, such as
// "/dev/stdout", behind what has been written there before. A file that the program itself is
// writing, such as the transcript, is refused.
//
// Throws SaveError, TInterrupted, and whatever `write` throws.
void SaveFile(const std::string& path, const std::function<void(Writer&)>& write);

// Opens the file at `path` to be written from its start, or the descriptor that the program was
// handed for it. Not open afterwards: see errno. Throws TInterrupted.
TDescriptor OpenToWrite(const std::string& path);

// Writes all of `text`. Returns whether the system took it: see errno, which is EINTR where a
// requested interruption has ended the wait for a reader.
bool WriteAll(const TDescriptor& file, std::string_view text);

// Waits until the text is on the disk. Returns whether it is, which counts as true for what has no
// disk behind it: see errno.
bool Sync(const TDescriptor& file);

// Removes the temporary of the save that is under way, if there is one. Signal handlers may call
// it when the program is about to end.
void RemoveTemporary() noexcept;

}  // namespace kiln::FileTools
