#!/usr/bin/env bash
# show.sh KILN DIRECTORY: runs rules.kiln in the directory, shows the rules that were found, and how
# many flowers the network that found them recognises and the one that was made of them. The exit
# status is 0 when there are at most three rules, of three conditions in all, each network recognises at least 90 of 100 unseen
# flowers, and the same rules can be read from both.
set -euo pipefail
kiln=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$2"
cd "$2"
cp "$here"/{rules.kiln,iris.labels} "$here"/../iris/{train,test}.dat .
rm -f rules.log iris.rules iris-again.rules answers.dat answers-by-rules.dat

"$kiln" --strict rules.kiln >session.txt

printf 'A fuzzy network learned from 100 irises and put it in words:\n\n'
sed -n '/^if /,/^$/p' iris.rules | sed 's/^./  &/'

# Prints the rows of a data file, one a line.
rows() { sed -n '/^\[Data\]/,/^\[~Data\]/p' "$1" | grep -v '^\[' | grep .; }

# Columns 5 to 7 are the outputs: expected, given by the first network, given by the second.
paste <(rows test.dat) <(rows answers.dat) <(rows answers-by-rules.dat) | awk '
  function largest(from,   j, best) {
    best = from
    for (j = from; j < from + 3; j++) if ($j > $best) best = j
    return best - from + 1
  }
  {
    kind = largest(5)
    seen[kind]++
    if (largest(12) == kind) { learned[kind]++; learned[4]++ }
    if (largest(19) == kind) { told[kind]++; told[4]++ }
  }
  END {
    split("setosa versicolor virginica together", name)
    seen[4] = NR
    print "Flowers that neither had ever seen, recognised by the network that learned, and by one that\n" \
      "was made of the rules alone:\n"
    for (k = 1; k <= 4; k++) printf "  %-12s %2d and %2d of %2d\n", name[k], learned[k], told[k], seen[k]
    exit !(NR == 50 && learned[4] >= 0.9 * NR && told[4] >= 0.9 * NR)
  }'

[ "$(grep -c '^if ' iris.rules)" -le 3 ]
[ "$(grep '^if ' iris.rules | grep -o '<' | wc -l)" -le 3 ]
cmp iris.rules iris-again.rules
printf '\nThe rules that can be read from the second network are those that it was made of.\n'
