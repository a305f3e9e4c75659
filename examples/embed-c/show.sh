#!/usr/bin/env bash
# show.sh KILN DIRECTORY: in a folder of the directory trains a network, writes it as C, compiles it into
# a program of its own and compares what that program and Kiln say of 50 flowers. The exit status is 0
# when they agree.
. "$(dirname "$0")/../begin.sh"

"$kiln" --strict embed.kiln >session.txt
"${CC:-cc}" -std=c99 -pedantic -Wall -Wextra -Wconversion -Werror -O2 main.c iris.c -lm -o recognise

in_kiln=$(grep -A 1 '^query score' embed.log | sed -n 's/#Result: \(.*\) error.* right/\1 right/p')
in_c=$(./recognise <unseen.csv)
printf 'In Kiln: %s\nIn a program of C, with nothing of Kiln in it: %s\n' "$in_kiln" "$in_c"
printf 'Size of the network in it, in bytes:\n'
"${CC:-cc}" -std=c99 -O2 -c iris.c -o iris.o
size iris.o
[ "$in_kiln" = "$in_c" ]
