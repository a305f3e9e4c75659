#pragma once

#include <cstddef>
#include <string>

#include "FileHandler/Syntax/ParseTools.h"

// What the readers of the sections of a network file share: failures, and numbers within bounds.
namespace kiln::NetworkFiler {

// Names the source in assertions.
inline constexpr char kModule[] = "FileHandler/NetworkFile";

// What every failure of loading a network is filed under, and whose it is said to be.
inline constexpr char kLoadCategory[] = "Bad Format";
inline constexpr char kLoadFunction[] = "NetworkFiler::LoadNetwork";

// Throws TException with the present place as its detail.
[[noreturn]] void FailLoad(const FileTools::Reader& reader, const std::string& message);

// A failure unless the statement stands in brackets of its own.
void CheckClosed(const FileTools::ParseItem& statement, const FileTools::Reader& reader);

// The integer that is the statement's value: a number of things, or the index of one of `end`
// things. A failure unless it is within 0..max or 0..end-1.
std::size_t ReadCount(const FileTools::ParseItem& statement, const FileTools::Reader& reader,
                      std::size_t max);
std::size_t ReadIndex(const FileTools::ParseItem& statement, const FileTools::Reader& reader,
                      std::size_t end);

}  // namespace kiln::NetworkFiler
