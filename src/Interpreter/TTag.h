#pragma once

#include <algorithm>
#include <span>
#include <string_view>

namespace kiln {

// What may stand behind a tag.
enum class TValueKind {
  kNewAlias,  // a name for an object that the command makes
  kAlias,     // the name of an object
  kAliases,   // names of objects in braces
  kWord,
  kChoice,  // one of a few words, in any case
  kBoolean,
  kLong,
  kSeed,  // a whole number; the tag counts only where one follows
  kDouble,
  kAnyCaseDouble,  // a number; the tag counts in any case, only where a number follows
  kWords,          // a list in braces, as are the next three
  kLongs,
  kDoubles,
  kPath,    // a file name in parentheses
  kPhrase,  // whatever there is up to the end of the line
};

// Whether values of the kind stand in braces.
constexpr bool IsList(TValueKind kind) {
  using enum TValueKind;
  return kind == kAliases || kind == kWords || kind == kLongs || kind == kDoubles;
}

// A tag of a command, as its row in the table of commands has it: a command can read no other.
struct TTag {
  std::string_view name;
  TValueKind kind;
  std::string_view help;       // what it means, in one line
  std::string_view words{};    // those of a choice, or the kinds of object that an alias may name
  std::string_view without{};  // what counts when it is left out; empty: it must be there

  // The same tag with the words of a choice, or the kinds of object, separated by blanks.
  constexpr TTag Of(std::string_view those) const {
    TTag tag = *this;
    tag.words = those;
    return tag;
  }

  // The same tag as one that may be left out.
  constexpr TTag Or(std::string_view otherwise) const {
    TTag tag = *this;
    tag.without = otherwise;
    return tag;
  }

  constexpr bool IsRequired() const { return without.empty(); }
};

// The tag called `name`, or null.
inline const TTag* FindTag(std::span<const TTag> tags, std::string_view name) {
  const auto found = std::ranges::find(tags, name, &TTag::name);
  return found == tags.end() ? nullptr : &*found;
}

}  // namespace kiln
