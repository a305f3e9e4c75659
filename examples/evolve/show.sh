#!/usr/bin/env bash
# show.sh KILN DIRECTORY: runs evolve.kiln in the directory, shows the errors of both networks before
# and after they were bred, and what they answer. The exit status is 0 when exclusive or is computed
# within 0.2 and at least 90 of 100 unseen flowers are recognised.
set -euo pipefail
kiln=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$2"
cd "$2"
cp "$here"/evolve.kiln "$here"/../iris/{train,test}.dat .
rm -f evolve.log xor.dat answers.dat bred.net

"$kiln" --strict evolve.kiln >session.txt

printf 'Networks were bred. Their error (root mean square) before, and after so many generations at most:\n\n'
awk '
  function tag(name,   i) { for (i = 1; i < NF; i++) if ($i == name) return $(i + 1) }
  /^train / {
    generations = tag("generations")
    if (tag("data") != data) {
      data = tag("data")
      sum = 0
      printf "  %s\n", data == "xor" ? "exclusive or, by a perceptron" : "100 irises, by a fuzzy network"
    }
    sum += generations
    getline
    printf "    %5d  %.4f\n", sum, $2
  }' evolve.log

# Prints the rows of a data file, one a line.
rows() { sed -n '/^\[Data\]/,/^\[~Data\]/p' "$1" | grep -v '^\[' | grep .; }

printf '\nWhat the perceptron makes of two inputs:\n\n'
rows xor.dat | awk '
  {
    printf "  %d %d   %.3f\n", $1, $2, $3
    miss = $3 - ($1 != $2)
    if (miss < 0) miss = -miss
    if (miss > worst) worst = miss
  }
  END { exit !(NR == 4 && worst < 0.2) }'

# Columns 5 to 7 are the outputs: expected, and given.
paste <(rows test.dat) <(rows answers.dat) | awk '
  function largest(from,   j, best) {
    best = from
    for (j = from; j < from + 3; j++) if ($j > $best) best = j
    return best - from + 1
  }
  largest(5) == largest(12) { right++ }
  END {
    printf "\nOf the flowers that it had never seen, the fuzzy network recognised %d of %d after 300 generations.\n",
      right, NR
    exit !(NR == 50 && right >= 0.9 * NR)
  }'
