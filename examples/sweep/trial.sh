#!/usr/bin/env bash
# trial.sh NUMBER: carries out the trial in that line of trials.txt, in the present folder. It leaves
# NUMBER.net, the network, and NUMBER.result: its error, its number, and what was tried.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
read -r seed hidden rate < <(sed -n "$1p" "$here/trials.txt")

# One core a trial: there are more trials than cores.
score=$("${KILN:-kiln}" -j 1 --strict --quiet -D DATA="$here/../iris" -D SEED="$seed" -D HIDDEN="$hidden" \
  -D RATE="$rate" -D NAME="$1" "$here/trial.kiln" | tail -n 1)
[[ $score =~ error\ ([^ ]*) ]]
echo "${BASH_REMATCH[1]} $1 seed $seed hidden $hidden rate $rate" >"$1.result"
