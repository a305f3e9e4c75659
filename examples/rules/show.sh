#!/usr/bin/env bash
# show.sh KILN DIRECTORY: runs rules.kiln in a folder of the directory, shows the rules that were
# found, and how many flowers the network that found them recognises and the one that was made of them.
# The exit status is 0 when there are at most three rules, of three conditions in all, each network
# recognises at least 45 of 50 unseen flowers, and the same rules can be read from both.
. "$(dirname "$0")/../begin.sh"

"$kiln" --strict rules.kiln >session.txt

printf 'A fuzzy network learned from 100 irises and put it in words:\n\n'
sed -n '/^if /,/^$/p' iris.rules | sed 's/^./  &/'

printf 'The same as a picture:\n\n'
sed 's/^/  /' rules.txt

mapfile -t scores < <(grep -A 1 '^query score' rules.log | sed -n 's/^#Result: .* right //p')
printf '\nOf 50 flowers that it had never seen, the network recognised %s; a network made of these rules alone, %s.\n' \
  "${scores[@]}"
[ "${scores[0]}" -ge 45 ]
[ "${scores[1]}" -ge 45 ]
[ "$(grep -c '^if ' iris.rules)" -le 3 ]
[ "$(grep '^if ' iris.rules | grep -o '<' | wc -l)" -le 3 ]
cmp iris.rules iris-again.rules
printf 'The rules that can be read from the second network are those that it was made of.\n'
