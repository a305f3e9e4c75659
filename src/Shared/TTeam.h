#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <span>

#include "Shared/Ranks.h"

namespace kiln {

// The workers of the program, threads that carry out numbered pieces of work together with the
// thread that asks for it. Which pieces there are must depend on the work alone, and results be put
// together in the order of the pieces: then they are the same, bit for bit, for any number of
// workers.
//
// A piece draws no random numbers, writes nothing that another one reads or writes, and calls
// nothing that belongs to the console. What a worker needs for itself it finds by its place.
class TTeam {
 public:
  static constexpr std::size_t kMaxWorkers = 1024;

  // What different workers write lies so many bytes apart: processors fetch lines of 64 in pairs.
  static constexpr std::size_t kApart = 128;

  // Takes so many workers from now on, the thread that asks for work included; 1 at first.
  // REQUIRES: 1 <= workers <= kMaxWorkers; nothing is being carried out.
  static void SetWorkers(std::size_t workers);
  static std::size_t Workers();

  // How many workers so many pieces are worth, which take about so many additions and
  // multiplications each: 1 where waking another one would take longer than it could save.
  static std::size_t WorkersFor(std::size_t pieces, double operations);

  // Calls piece(number, place) for each number from 0 to before `pieces`, by at most `workers`
  // workers, whose places are numbered from 0. No two pieces with the same place run at a time.
  // With one worker, and inside of a piece, all run at once, in order, at place 0.
  //
  // When pieces throw, those behind them may be left out, and the exception of the one with the
  // lowest number is thrown.
  template <typename TPiece>
  static void ForEach(std::size_t pieces, std::size_t workers, const TPiece& piece) {
    const auto carry_out = [](const void* context, std::size_t number, std::size_t place) {
      (*static_cast<const TPiece*>(context))(number, place);
    };
    Run({carry_out, &piece, pieces}, workers);
  }

  // Gives each place of `results` what piece(number, place) returns for its number, for which it
  // takes about so many additions and multiplications. The other ranks of the session take their
  // share, so nothing but the results may tell of the pieces. REQUIRES: not inside of a piece.
  template <typename TResult, typename TPiece>
  static void Collect(std::span<TResult> results, double operations, std::size_t workers,
                      const TPiece& piece) {
    Ranks::Collect(results, operations, 1, [&](std::size_t first, std::size_t end) {
      ForEach(end - first, workers, [&](std::size_t number, std::size_t place) {
        results[first + number] = piece(first + number, place);
      });
    });
  }

 private:
  struct TWork {
    void (*carry_out)(const void* context, std::size_t number, std::size_t place);
    const void* context;
    std::size_t pieces;
  };

  static void Run(const TWork& work, std::size_t workers);

  friend struct TTeamLoop;
};

}  // namespace kiln
