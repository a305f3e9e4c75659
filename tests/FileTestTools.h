#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <sstream>
#include <string>

#include "Failures.h"
#include "FileHandler/Syntax/Writer.h"

namespace kiln {

inline std::string Contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Where this test may put files. The same test may run in another process at the same time, also
// in that of another build.
inline std::string ScratchPath() {
  const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
  return testing::TempDir() + test.test_suite_name() + test.name() + std::to_string(getpid());
}

// A test with a file at `path_`.
class TFileTest : public testing::Test {
 protected:
  ~TFileTest() override { std::filesystem::remove(path_); }

  // Into a new file each time: some file systems write at once what overwrites an old one.
  void Write(const std::string& text) const {
    std::filesystem::remove(path_);
    std::ofstream(path_, std::ios::binary) << text;
  }

  const std::string path_ = ScratchPath();
};

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

// `text` with its first `old_part` replaced.
inline std::string With(std::string text, const std::string& old_part, const std::string& part) {
  return text.replace(text.find(old_part), old_part.size(), part);
}

// A change of a good text, and how what reading it then throws begins.
struct Fault {
  std::string old_part, part, failure;
};

template <typename TRead>
void ExpectFailures(const std::string& good_text, std::initializer_list<Fault> faults, TRead read) {
  for (const Fault& fault : faults) {
    const std::string text = With(good_text, fault.old_part, fault.part);
    const std::string failure = Failure([&] { read(text); });
    EXPECT_EQ(failure.substr(0, fault.failure.size()), fault.failure) << fault.part;
  }
}

}  // namespace kiln
