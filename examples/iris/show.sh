#!/usr/bin/env bash
# show.sh KILN DIRECTORY: runs iris.kiln in the directory, tells what was done and how well it went.
# The exit status is 0 when at least 47 of 50 unseen flowers were recognised, and as many by the
# network that was read back from its file, with the same error.
set -euo pipefail
kiln=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$2"
cd "$2"
cp "$here"/{iris.kiln,train.dat,test.dat} .
rm -f iris.log iris.net answers.csv errors.txt

"$kiln" --strict iris.kiln >session.txt

printf 'What Kiln was told, and what it answered:\n\n'
sed 's/^/  /' iris.log

printf '\n'
sed 's/^/  /' errors.txt

mapfile -t scores < <(grep -A 1 '^query score' iris.log | grep '^#Result')
right=${scores[0]##* }
printf '\nOf 50 flowers that it had never seen, the network recognised %s.\n' "$right"
[ "$right" -ge 47 ]
[ "${scores[0]}" = "${scores[1]}" ]
printf 'The network read back from its file answers the same.\n'
