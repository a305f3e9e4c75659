#!/usr/bin/env bash
# show.sh KILN DIRECTORY: runs som.kiln in the directory, draws the map and tells how well it names
# flowers. The exit status is 0 when at least 45 of 50 unseen flowers stand among their own kind.
set -euo pipefail
kiln=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$2"
cd "$2"
cp "$here"/{som.kiln,train.dat,test.dat,units.dat} .
rm -f som.log garden.net ./*.csv

"$kiln" --strict som.kiln >session.txt
cmp guesses.csv guesses-again.csv

# The label of each row of a table, its last cell.
labels() { tail -n +2 "$1" | sed 's/.*,//'; }

printf 'An 8 by 8 map of 100 irises, made without telling it their kinds:\n\n'
labels chart.csv | sed 's/^setosa/S/; s/^versicolor/E/; s/^virginica/I/; s/^$/./' |
  paste -d ' ' - - - - - - - - | sed 's/^/  /'
printf '\n  S setosa  E versicolor  I virginica  . nobody stands here; where kinds meet, most of them\n'

printf '\nHow well it stands for them: %s\n' "$(grep -A 1 '^query score' som.log | sed -n 's/^#Result: //p')"

right=$(paste -d , <(labels unseen.csv) <(labels guesses.csv) | grep -c '^\(.*\),\1$')
nobody=$(labels guesses.csv | grep -c '^$' || true)
printf '\nOf 50 flowers that it had never seen, %s came to stand among their own kind,\n' "$right"
printf '%s among others and %s where nobody stands.\n' "$((50 - right - nobody))" "$nobody"
[ "$right" -ge 45 ]
