#pragma once

#include <ostream>

#include "Console/TLineSource.h"
#include "Interpreter/TLineReader.h"
#include "Shared/Ranks.h"

namespace kiln {

// Lines as they come, from a pipe, a file or a terminal, whose own driver edits them.
class TPlainLines : public TLineSource {
 public:
  // Reads from the descriptor and prompts on `out`, which must outlive the lines.
  TPlainLines(int descriptor, std::ostream& out) : reader_(descriptor), out_(out) {}

  bool Next(std::string_view prompt) override {
    out_ << prompt << std::flush;
    return Ranks::Shared(static_cast<bool>(out_)) && reader_.Next();
  }
  std::string_view Line() const override { return reader_.Line(); }
  std::string_view Fault() const override { return reader_.Fault(); }

 private:
  TLineReader reader_;
  std::ostream& out_;
};

}  // namespace kiln
