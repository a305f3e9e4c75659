#include "TScratch.h"

#include <cstdlib>
#include <fstream>
#include <span>
#include <stdexcept>

#include "DataObject/Data.h"

namespace kiln {

namespace {

void Write(std::ofstream& out, std::span<const double> values) {
  const auto bytes = std::as_bytes(values);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
}

}  // namespace

TScratch::TScratch() {
  std::string name = (std::filesystem::temp_directory_path() / "kiln-bench-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make " + name);
  directory_ = name;
}

TScratch::~TScratch() {
  std::error_code ignored;
  std::filesystem::remove_all(directory_, ignored);
}

std::string TScratch::WriteNumbers(const std::string& name, const Data& data) const {
  const std::string path = Path(name);
  std::ofstream out(path, std::ios::binary);
  for (int n = 0; n < data.DataRows(); ++n) {
    const DataRow row = data.Row(n);
    Write(out, row.Inputs);
    Write(out, row.Outputs);
  }
  out.flush();
  if (!out) throw std::runtime_error("cannot write " + path);
  return path;
}

}  // namespace kiln
