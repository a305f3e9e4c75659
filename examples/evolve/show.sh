#!/usr/bin/env bash
# show.sh KILN DIRECTORY: runs evolve.kiln in a folder of the directory, shows the errors of both
# networks before and after they were bred, and what they answer. The exit status is 0 when exclusive
# or is computed and at least 45 of 50 unseen flowers are recognised.
. "$(dirname "$0")/../begin.sh"

"$kiln" --strict evolve.kiln >session.txt

printf 'Networks were bred: a perceptron for exclusive or, a fuzzy network for 100 irises. Their errors\n'
printf '(root mean square) after so many generations at most:\n\n'
sed -n '/^train/ { s/.* data \([a-z]*\) generations \([0-9]*\).*/  \1\t\2/; N; s/\n#Result: /\t/; p }' evolve.log

printf '\nWhat the perceptron makes of two inputs:\n\n'
tail -n +2 xor.csv | sed 's/^/  /; s/,/ /g; s/\(\.[0-9]\{3\}\)[0-9]*$/\1/'

mapfile -t scores < <(grep -A 1 '^query score' evolve.log | grep '^#Result')
printf '\nOf 50 flowers that it had never seen, the fuzzy network recognised %s after 300 generations.\n' \
  "${scores[1]##* }"
[ "${scores[0]##* }" -eq 4 ]
[ "${scores[1]##* }" -ge 45 ]
