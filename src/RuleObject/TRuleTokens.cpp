#include "RuleObject/TRuleTokens.h"

#include <cstddef>

namespace kiln {

std::string_view TRuleTokens::Next() {
  if (rest_.empty()) rest_ = reader_.ReadToken();
  return Cut();
}

FileTools::ParseItem TRuleTokens::NextItem(std::string_view block) {
  if (rest_.empty()) {
    const FileTools::ParseItem item = reader_.ReadItem(block);
    if (item.kind != FileTools::ParseItem::kToken) return item;
    rest_ = item.name;
  }
  return {FileTools::ParseItem::kToken, Cut(), {}, false};
}

std::string_view TRuleTokens::Cut() {
  constexpr std::string_view kBrackets = "()";
  const std::size_t bracket = rest_.find_first_of(kBrackets);
  const std::string_view token = rest_.substr(0, bracket == 0 ? 1 : bracket);
  rest_.remove_prefix(token.size());
  return token;
}

}  // namespace kiln
