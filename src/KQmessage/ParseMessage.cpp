#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "KQmessage/TKQstructure.h"
#include "Shared/Say.h"
#include "Shared/TAssertion.h"

namespace kiln {

namespace {

// The name by which the assertions about messages are known, whichever source they stand in.
constexpr char kModule[] = "KQmessage/KQML";

bool IsPrintable(char c) {
  return c >= '!' && c <= '~';
}

bool IsBracket(char c) {
  return c == '(' || c == ')';
}

// Reads a message: WORD or "(" WORD { ":" WORD MESSAGE } ")".
class TMessageParser {
 public:
  explicit TMessageParser(std::string_view text) : text_(text) {}

  TKQstructure ParseAll() {
    TKQstructure message = ParseValue();
    Assert(NextToken().empty(), "*s == '\\0'", kModule);
    return message;
  }

 private:
  TKQstructure ParseValue() {
    const std::string_view token = NextToken();
    if (token != "(") return TKQstructure(Word(token));
    TKQstructure message(Word(NextToken()));
    std::string_view separator = NextToken();
    for (; separator == ":"; separator = NextToken()) {
      const std::string keyword = Word(NextToken());
      message.SetValue(keyword, std::make_unique<TKQstructure>(ParseValue()));
    }
    Assert(separator == ")", "*s == ')'", kModule);
    return message;
  }

  // A bracket, a colon, or a word, inside which colons are letters like others; empty at the end.
  std::string_view NextToken() {
    while (position_ < text_.size() && !IsPrintable(text_[position_])) ++position_;
    const std::size_t begin = position_;
    if (begin == text_.size()) return {};
    ++position_;
    if (!IsBracket(text_[begin]) && text_[begin] != ':') {
      while (position_ < text_.size() && IsPrintable(text_[position_]) &&
             !IsBracket(text_[position_])) {
        ++position_;
      }
    }
    return text_.substr(begin, position_ - begin);
  }

  static std::string Word(std::string_view token) {
    if (token.empty() || IsBracket(token.front()) || token.front() == ':') {
      SayError("special character unexpected");
      AssertFalse(kModule);
    }
    return std::string(token);
  }

  std::string_view text_;
  std::size_t position_ = 0;
};

}  // namespace

TKQstructure TKQstructure::Parse(std::string_view text) {
  return TMessageParser(text).ParseAll();
}

}  // namespace kiln
