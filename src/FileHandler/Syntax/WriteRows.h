#pragma once

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <vector>

#include "FileHandler/Syntax/Writer.h"
#include "Shared/Interruption.h"
#include "Shared/TTeam.h"

namespace kiln::FileTools {

// Writes the rows of a table, each with so many values, by write(writer, n) for the n-th of them.
// Blocks of rows are the pieces of a team, each laid out by a writer of its own. Throws
// TInterrupted.
template <typename TWrite>
void WriteRows(Writer& writer, int rows, int values, const TWrite& write) {
  constexpr int kValuesOfPiece = 1 << 13;
  constexpr double kOperationsOfValue = 200.0;  // what its digits take in additions
  constexpr int kPiecesOfRound = 64;            // that are held at a time
  const int rows_of_piece = std::max(kValuesOfPiece / std::max(values, 1), 1);
  const auto most = static_cast<std::size_t>(std::min(rows / rows_of_piece + 1, kPiecesOfRound));
  const std::size_t workers = TTeam::WorkersFor(most, kOperationsOfValue * kValuesOfPiece);
  if (workers == 1) {
    for (int n = 0; n < rows; ++n) write(writer, n);
    return;
  }
  std::vector<std::ostringstream> texts(most);
  for (int first = 0; first < rows;) {
    const int left = (rows - first - 1) / rows_of_piece + 1;
    const std::size_t pieces = std::min(most, static_cast<std::size_t>(left));
    TTeam::ForEach(pieces, workers, [&](std::size_t piece, std::size_t) {
      Interruption::Check();
      texts[piece].str({});
      Writer own(texts[piece]);
      const int begin = first + static_cast<int>(piece) * rows_of_piece;
      const int end = begin + std::min(rows_of_piece, rows - begin);
      for (int n = begin; n < end; ++n) write(own, n);
    });
    for (std::size_t piece = 0; piece < pieces; ++piece) writer.WriteText(texts[piece].view());
    first += std::min(static_cast<int>(pieces) * rows_of_piece, rows - first);
  }
}

}  // namespace kiln::FileTools
