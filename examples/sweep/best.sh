#!/usr/bin/env bash
# best.sh: keeps the network with the least error of all trials in the present folder as best.net, and
# says which it was. Of equal errors the first trial wins.
set -euo pipefail
read -r error number what < <(sort -g -k 1,1 -k 2,2 -- *.result)
cp "$number.net" best.net
echo "trial $number: $what, error $error"
