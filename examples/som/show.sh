#!/usr/bin/env bash
# show.sh KILN DIRECTORY: runs som.kiln in the directory, draws the map and tells how well it names
# flowers. The exit status is 0 when at least 90 % of the unseen flowers stand among their own kind.
set -euo pipefail
kiln=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$2"
cd "$2"
cp "$here"/{som.kiln,train.dat,test.dat,units.dat} .
rm -f som.log garden.net chart.dat guesses.dat guesses-again.dat

"$kiln" --strict som.kiln >session.txt
cmp guesses.dat guesses-again.dat

# Prints for each row of a data file its first two numbers and then, by weight, the kind that most of
# its labels name, `nobody` without labels, and whether all labels name the same.
kinds() {
  grep '^[0-9].*\[' "$1" | awk '
    {
      best = "nobody"
      weight = all = 0
      n = split(substr($0, index($0, "[") + 1), label, /[] ]+/)
      for (i = 1; i <= n; i++) {
        if (label[i] == "") continue
        split(label[i], part, "=")
        w = part[2] == "" ? 1 : part[2]
        all += w
        if (w > weight) { weight = w; best = part[1] }
      }
      print $1, $2, best, weight == all
    }'
}

printf 'An 8 by 8 map of 100 irises, made without telling it their kinds:\n\n'
kinds chart.dat | awk '
  BEGIN { letter["setosa"] = "S"; letter["versicolor"] = "E"; letter["virginica"] = "I"; letter["nobody"] = "." }
  {
    if ($1 != row) printf "%s", (NR > 1 ? "\n" : "")
    row = $1
    printf "  %s", ($4 ? letter[$3] : tolower(letter[$3]))
  }
  END {
    printf "\n\n  S setosa  E versicolor  I virginica  . nobody stands here\n"
    printf "  small where kinds meet on a unit, the letter being that of most of them\n"
  }'

paste <(kinds test.dat) <(kinds guesses.dat) | awk '
  { seen[$3]++; if ($7 == $3) right[$3]++; else if ($7 == "nobody") unknown++; else wrong++ }
  END {
    split("setosa versicolor virginica", kind)
    printf "\nOf the flowers that it had never seen, these came to stand among their own kind:\n\n"
    for (k = 1; k <= 3; k++) {
      printf "  %-12s %2d of %2d\n", kind[k], right[kind[k]], seen[kind[k]]
      all += right[kind[k]]
    }
    printf "  %-12s %2d of %2d, that is %.0f %%\n\n", "together", all, NR, NR ? 100 * all / NR : 0
    printf "%d came to others, %d to a unit where nobody stands.\n", wrong, unknown
    exit !(NR == 50 && all >= 0.9 * NR)
  }'
