#!/usr/bin/env bash
# show.sh KILN DIRECTORY: runs som.kiln in a folder of the directory, draws the map and tells how well
# it stands for flowers. The exit status is 0 when these are nearer than 0.12 to their units on average,
# and less than 5 % of them nearest to two units that are no neighbours.
. "$(dirname "$0")/../begin.sh"

"$kiln" --strict som.kiln >session.txt
cmp guesses.csv guesses-again.csv

printf 'A map of 100 irises, made without telling it their kinds:\n\n'
sed 's/^/  /' map.txt

mapfile -t scores < <(grep -A 1 '^query score' som.log | sed -n 's/^#Result: //p')
printf '\nHow well it stands for them:          %s\n' "${scores[0]}"
printf 'and for 50 flowers that it never saw:  %s\n' "${scores[1]}"
for score in "${scores[@]}"; do
  [[ $score =~ quantisation\ 0\.(0[0-9]|1[01])[0-9]*\ topographic\ 0(\.0[0-4])?[0-9]*$ ]]
done
