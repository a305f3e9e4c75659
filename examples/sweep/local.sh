#!/usr/bin/env bash
# All trials on this machine, as many at a time as it has cores. With --sshlogin, parallel uses others.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
seq "$(wc -l <"$here/trials.txt")" | parallel "$here/trial.sh"
"$here/best.sh"
