#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "FileHandler/Syntax/ParseTools.h"

// What the readers of the sections of a network file share: failures, and numbers within bounds.
namespace kiln::NetworkFiler {

// The name by which users know the assertions about network files, whichever of the sources they
// stand in.
inline constexpr char kModule[] = "FileHandler/NetworkFile";

// Category and function of every TException about a network file.
inline constexpr char kLoadCategory[] = "Bad Format";
inline constexpr char kLoadFunction[] = "NetworkFiler::LoadNetwork";

// Neurons and the places of a weight list need no text of their own. So that a short file cannot
// take much memory, a file may have this many of them, and beyond that a number for each of its
// characters.
inline constexpr std::size_t kFreeNeurons = std::size_t{1} << 18;
inline constexpr std::uint64_t kFreePlaces = std::uint64_t{1} << 22;
inline constexpr std::uint64_t kPlacesPerCharacter = 256;

// Throws TException with the place of the reader as its detail.
[[noreturn]] void FailLoad(const FileTools::Reader& reader, const std::string& message);

// Fails unless the statement stands in brackets of its own.
void CheckClosed(const FileTools::ParseItem& statement, const FileTools::Reader& reader);

// The value of a statement: a number of things, within 0..max, or the index of one of `end` things,
// within 0..end-1. Fails where it is beyond.
std::size_t ReadCount(const FileTools::ParseItem& statement, const FileTools::Reader& reader,
                      std::size_t max);
std::size_t ReadIndex(const FileTools::ParseItem& statement, const FileTools::Reader& reader,
                      std::size_t end);

}  // namespace kiln::NetworkFiler
