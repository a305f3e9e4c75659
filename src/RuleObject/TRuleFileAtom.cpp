#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "RuleObject/TRuleFile.h"
#include "Shared/NumberScan.h"
#include "Shared/Say.h"
#include "Shared/TException.h"
#include "Shared/Text.h"

namespace kiln::TRuleFile {

namespace {

using FileTools::Reader;
using TWords = std::vector<std::string_view>;

[[noreturn]] void Fail(const std::string& message) {
  throw TException(message, "Bad Rule File", "TRuleFile::LoadAtom");
}

// The words from `token` to the ">", which is taken too.
TWords ReadWords(Reader& reader, std::string_view token, std::size_t max_words) {
  TWords words;
  for (; token != ">"; token = reader.ReadToken()) {
    if (words.size() == max_words) Fail("'>' expected");
    words.push_back(token);
  }
  return words;
}

// Takes the last word as the degree if it is a finite number: "nano" and "info" are names, though
// not-a-number and infinity may be written so.
void TakeDegree(TWords& words, TRuleAtom& atom) {
  if (words.empty()) return;
  const auto degree = ScanNumber(words.back());
  if (!degree || !std::isfinite(*degree)) return;
  atom.degree = *degree;
  words.pop_back();
}

// Behind "is": "[not] TERM [DEGREE] >". A number that stands alone is the name of the term.
void ReadTerm(Reader& reader, const TBasicMFSet& set, TRuleAtom& atom) {
  TWords words = ReadWords(reader, reader.ReadToken(), 3);
  if (words.size() > 1) TakeDegree(words, atom);
  if (words.size() > 2) Fail("Extra parameter(s), '>' expected");
  if (words.size() == 2) {
    if (!EqualNoCase(words[0], "not")) Fail("Extra parameter, '>' expected");
    atom.negated = true;
  }
  atom.mf = words.empty() ? -1 : set.FindMF(words.back());
  if (atom.mf < 0) Fail("Invalid classification name");
}

// Without "is": "[not] [DEGREE] >", of which `token` is the first.
void ReadBareAtom(Reader& reader, std::string_view token, TRuleAtom& atom) {
  TWords words = ReadWords(reader, token, 2);
  TakeDegree(words, atom);
  if (words.size() > 1) {
    SayLine(std::to_string(words.size()));
    Fail("illegal atom format");
  }
  if (words.empty()) return;
  if (!EqualNoCase(words[0], "not")) {
    SayLine(words[0]);
    Fail("'is' or 'not' expected");
  }
  atom.negated = true;
}

}  // namespace

TRuleAtom LoadAtom(Reader& reader, const TMFSetList& list) {
  TRuleAtom atom;
  atom.variable = list.FindMFSet(reader.ReadToken());
  if (atom.variable < 0) Fail("Invalid input or output name");
  const std::string_view token = reader.ReadToken();
  if (EqualNoCase(token, "is")) {
    ReadTerm(reader, *list.GetMFSet(atom.variable), atom);
  } else {
    ReadBareAtom(reader, token, atom);
  }
  return atom;
}

}  // namespace kiln::TRuleFile
