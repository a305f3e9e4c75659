#pragma once

#include <string_view>

#include "FileHandler/Syntax/ParseTools.h"

namespace kiln {

// The tokens of a rule outside its atoms: those of a reader, except that a round bracket is always
// a token of its own, so that "((" and "(not" are two.
class TRuleTokens {
 public:
  // REQUIRES: reader outlives the tokens.
  explicit TRuleTokens(FileTools::Reader& reader) : reader_(reader) {}

  // The next token; empty at the end of the text.
  std::string_view Next();

  // The next token as an item of `block`: its end where that comes instead. Throws as ReadItem.
  FileTools::ParseItem NextItem(std::string_view block);

  // What comes behind the last token. REQUIRES: that was a special character, such as "<".
  FileTools::Reader& Source() { return reader_; }

 private:
  std::string_view Cut();

  FileTools::Reader& reader_;
  std::string_view rest_;  // of the word that the last token was cut from
};

}  // namespace kiln
