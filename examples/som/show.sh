#!/usr/bin/env bash
# show.sh KILN DIRECTORY: runs som.kiln in a folder of the directory, draws the map and tells how well
# it stands for flowers. The exit status is 0 when these are nearer than 0.12 to their units on average,
# and less than 5 % of them nearest to two units that are no neighbours.
set -euo pipefail
kiln=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$2/som"
ln -sfn "$here/../iris" "$2/iris"
cd "$2/som"
cp "$here"/{som.kiln,units.dat} .
rm -f som.log garden.net ./*.csv

"$kiln" --strict som.kiln >session.txt
cmp guesses.csv guesses-again.csv

# The label of each row of a table, its last cell.
labels() { tail -n +2 "$1" | sed 's/.*,//'; }

printf 'An 8 by 8 map of 100 irises, made without telling it their kinds:\n\n'
labels chart.csv | sed 's/^setosa/S/; s/^versicolor/E/; s/^virginica/I/; s/^$/./' |
  paste -d ' ' - - - - - - - - | sed 's/^/  /'
printf '\n  S setosa  E versicolor  I virginica  . nobody stands here; where kinds meet, most of them\n'

mapfile -t scores < <(grep -A 1 '^query score' som.log | sed -n 's/^#Result: //p')
printf '\nHow well it stands for them:          %s\n' "${scores[0]}"
printf 'and for 50 flowers that it never saw:  %s\n' "${scores[1]}"
for score in "${scores[@]}"; do
  [[ $score =~ quantisation\ 0\.(0[0-9]|1[01])[0-9]*\ topographic\ 0(\.0[0-4])?[0-9]*$ ]]
done
