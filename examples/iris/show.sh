#!/usr/bin/env bash
# show.sh KILN DIRECTORY: runs iris.kiln in the directory, tells what was done and how well it went.
# The exit status is 0 when at least 94 of 100 unseen flowers were recognised.
set -euo pipefail
kiln=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$2"
cd "$2"
cp "$here"/{iris.kiln,train.dat,test.dat} .
rm -f iris.log iris.net answers.dat answers-again.dat

"$kiln" --strict iris.kiln >session.txt

printf 'What Kiln was told, and what it answered:\n\n'
sed 's/^/  /' iris.log

awk '/^train / { getline
  printf "\nError on the 100 flowers that it learned from (root mean square): %.4f\n", $2 }' iris.log

# Prints the rows of a data file, one a line.
rows() { sed -n '/^\[Data\]/,/^\[~Data\]/p' "$1" | grep -v '^\[' | grep .; }

# Columns 5 to 7 are the outputs: expected, given, and given again by the network from its file.
paste <(rows test.dat) <(rows answers.dat) <(rows answers-again.dat) | awk '
  function largest(from,   j, best) {
    best = from
    for (j = from; j < from + 3; j++) if ($j > $best) best = j
    return best - from + 1
  }
  BEGIN { split("setosa versicolor virginica", kind) }
  {
    seen[largest(5)]++
    if (largest(5) == largest(12)) right[largest(5)]++
    for (j = 12; j < 15; j++) {
      d = $j - $(j + 7)
      if (d < 0) d = -d
      if (d > drift) drift = d
    }
  }
  END {
    printf "Of the flowers that it had never seen, the network recognised\n\n"
    for (k = 1; k <= 3; k++) {
      printf "  %-12s %2d of %2d\n", kind[k], right[k], seen[k]
      all += right[k]
    }
    printf "  %-12s %2d of %2d, that is %.0f %%\n\n", "together", all, NR, NR ? 100 * all / NR : 0
    printf "The network read back from its file gives the same answers (largest difference %.1g).\n", drift
    exit !(NR == 50 && all >= 0.94 * NR && drift < 1e-9)
  }'
