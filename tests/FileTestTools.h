#pragma once

#include <gtest/gtest.h>

#include <exception>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <sstream>
#include <string>

#include "FileHandler/Writer.h"

namespace kiln {

inline std::string Contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The text that `write` lays out.
template <typename TWrite>
std::string WrittenBy(TWrite write) {
  std::ostringstream out;
  {
    FileTools::Writer writer(out);
    write(writer);
  }
  return out.str();
}

// What `action` throws, as text.
template <typename TAction>
std::string Failure(TAction action) {
  try {
    action();
  } catch (const std::exception& failure) {
    return failure.what();
  }
  return "none";
}

// `text` with its first `old_part` replaced.
inline std::string With(std::string text, const std::string& old_part, const std::string& part) {
  return text.replace(text.find(old_part), old_part.size(), part);
}

// A change of a good text, and what reading it then throws.
struct Fault {
  const char* old_part;
  const char* part;
  const char* failure;
};

template <typename TRead>
void ExpectFailures(const std::string& good_text, std::initializer_list<Fault> faults, TRead read) {
  for (const Fault& fault : faults) {
    const std::string text = With(good_text, fault.old_part, fault.part);
    EXPECT_EQ(Failure([&] { read(text); }), fault.failure);
  }
}

}  // namespace kiln
