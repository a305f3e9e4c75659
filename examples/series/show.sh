#!/usr/bin/env bash
# show.sh KILN DIRECTORY: makes the series and runs series.kiln in the directory, then tells how good
# the forecasts are. The exit status is 0 when both are within 2 % of the series' spread.
set -euo pipefail
kiln=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$2"
cd "$2"
cp "$here/series.kiln" .
rm -f ./*.csv series.log
awk -f "$here/mackey-glass.awk"

"$kiln" --strict series.kiln >session.txt

printf 'What Kiln was told, and what it answered:\n\n'
sed 's/^/  /' series.log

# Prints the rows of a table, one a line.
rows() { tail -n +2 "$1" | tr ',' ' '; }

# Column 5 is what came, 10 and 15 are what the two networks had forecast.
paste <(rows unseen.csv) <(rows forecast.csv) <(rows fuzzyforecast.csv) | awk '
  {
    sum += $5; squares += $5 * $5
    for (k = 1; k <= 2; k++) errors[k] += ($5 - $(5 + 5 * k)) ^ 2
    if (NR % 6 == 1 && NR < 200) {
      bar = sprintf("%60s", "")
      place = int(60 * $10)
      marked = substr(bar, 1, place) "o" substr(bar, place + 2)
      place = int(60 * $5)
      print "  " substr(marked, 1, place) "*" substr(marked, place + 2)
    }
  }
  BEGIN { print "\nEvery sixth value of the unseen series: * what came, o where the forecast was elsewhere\n" }
  END {
    spread = sqrt(squares / NR - (sum / NR) ^ 2)
    split("perceptron|fuzzy network", name, "|")
    print "\nRoot mean square error of the forecasts, over the standard deviation of the series:\n"
    for (k = 1; k <= 2; k++) {
      error[k] = sqrt(errors[k] / NR) / spread
      printf "  %-14s %.4f\n", name[k], error[k]
    }
    exit !(NR == 500 && error[1] < 0.02 && error[2] < 0.02)
  }'
