#include "FileHandler/NumberTable.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <vector>

#include "Shared/Interruption.h"
#include "Shared/TTeam.h"

namespace kiln::Filer {

namespace {

constexpr std::size_t kPieceSize = std::size_t{1} << 16;  // characters
constexpr std::size_t kPiecesOfWorker = 8;                // whose numbers are held at a time
constexpr double kOperationsOfCharacter = 10.0;           // what they take in additions

bool IsBlank(char c) {
  return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

// The numbers of a piece of the text, up to its end or the first thing that is none.
struct alignas(TTeam::kApart) TPiece {
  std::string_view text;
  std::vector<double> numbers;
  bool is_whole = false;  // nothing else stands in it

  // Reads at most `most` numbers. Returns how many characters it has passed.
  std::size_t Read(std::size_t most) {
    numbers.clear();
    is_whole = false;
    const char* at = text.data();
    const char* const end = at + text.size();
    while (numbers.size() < most) {
      while (at != end && IsBlank(*at)) ++at;
      is_whole = at == end;
      double number = 0.0;
      const auto [behind, fault] = std::from_chars(at, end, number);
      if (fault != std::errc() || (behind != end && !IsBlank(*behind))) break;
      numbers.push_back(number);
      at = behind;
    }
    return static_cast<std::size_t>(at - text.data());
  }
};

// The next piece of a text, with whole numbers, which is taken from its front.
std::string_view TakePiece(std::string_view& text) {
  std::size_t size = std::min(kPieceSize, text.size());
  while (size < text.size() && !IsBlank(text[size])) ++size;
  const std::string_view piece = text.substr(0, size);
  text.remove_prefix(size);
  return piece;
}

}  // namespace

std::optional<std::size_t> ReadNumbers(std::string_view text, std::size_t count,
                                       const TNumberTaker& take) {
  const std::size_t all = text.size() / kPieceSize + 1;
  const std::size_t workers = TTeam::WorkersFor(all, kOperationsOfCharacter * kPieceSize);
  std::vector<TPiece> pieces(std::min(all, kPiecesOfWorker * workers));
  std::vector<std::size_t> first(pieces.size());  // index of the first number of each
  std::size_t read = 0;
  for (std::string_view rest = text; !rest.empty();) {
    for (TPiece& piece : pieces) piece.text = TakePiece(rest);
    TTeam::ForEach(pieces.size(), workers, [&](std::size_t i, std::size_t) {
      Interruption::Check();
      pieces[i].Read(count);
    });
    std::size_t used = 0;
    for (; used < pieces.size() && read < count; ++used) {
      TPiece& piece = pieces[used];
      first[used] = read;
      if (piece.numbers.size() >= count - read) piece.numbers.resize(count - read);
      read += piece.numbers.size();
      if (read < count && !piece.is_whole) return std::nullopt;
    }
    TTeam::ForEach(used, workers,
                   [&](std::size_t i, std::size_t) { take(first[i], pieces[i].numbers); });
    if (read < count) continue;
    TPiece& last = pieces[used - 1];
    const std::size_t before = static_cast<std::size_t>(last.text.data() - text.data());
    return before + last.Read(last.numbers.size());
  }
  return std::nullopt;
}

}  // namespace kiln::Filer
