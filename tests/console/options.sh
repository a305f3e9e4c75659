#!/usr/bin/env bash
# options.sh KILN FOLDER: what the program makes of its command line, with which status it ends, and
# where its answers go.
set -uo pipefail
kiln=$(realpath "$1")
rm -rf "$2" && mkdir -p "$2/sub" && cd "$2" || exit 1
failures=0

# expect STATUS OUTPUT ERRORS ARGUMENT...: runs the program, its input being $input; in OUTPUT and
# ERRORS each line ends with "|".
input=
expect() {
  local status=$1 output=$2 errors=$3 got
  shift 3
  printf '%b' "$input" | "$kiln" "$@" >out.txt 2>err.txt
  got="$? $(tr '\n' '|' <out.txt) $(tr '\n' '|' <err.txt)"
  [ "$got" = "$status $output $errors" ] && return
  printf 'kiln %s\n  expected: %s\n  got:      %s\n' "$*" "$status $output $errors" "$got"
  failures=$((failures + 1))
}

printf '# comment\n\nquery aliasexists $NAME\npurge\n' >good.kiln
printf 'purge\r\nrun filename (worse.kiln)\npurge\n' >bad.kiln
printf 'query aliasexists $NAME\ndestroy $OTHER\n' >worse.kiln
printf 'query aliasexists here\n' >sub/here.kiln

expect 0 'Kiln 0.9|' '' -V
expect 2 '' 'kiln: -D takes NAME=VALUE, not 1=2|kiln --help shows the options|' -D 1=2
cores='takes a number of cores from 1 to 1024, not'
expect 2 '' "kiln: -j $cores 0|kiln --help shows the options|" -j 0
expect 2 '' "kiln: -j $cores 2x|kiln --help shows the options|" -j 2x
KILN_THREADS=-1 expect 2 '' "kiln: KILN_THREADS $cores -1|"
KILN_THREADS=x expect 0 'OK|' '' -j 1024 -e purge
expect 2 '' 'kiln: cannot work in nowhere: No such file or directory|' -C nowhere
# Files and commands in the order given, the first failure being the last command.
expect 0 'OK|Result: false|OK|' '' -e purge -D NAME=x good.kiln
expect 0 'false|true|' '' -q good.kiln -e 'create Data alias d inputs 1 outputs 1 rows 1 labels off' \
  -D NAME=d good.kiln
expect 1 'OK|' 'Error: line 2 of file bad.kiln Error: line 2 of file worse.kiln Error: $OTHER is not defined|' \
  -D NAME=x bad.kiln good.kiln
expect 1 '' 'Error: $OTHER does not exist (-e destroy $OTHER)|' -e 'destroy $OTHER'
expect 1 '' 'Error: cannot open file none.kiln|' none.kiln -e purge
expect 0 'Result: false|' '' -C sub here.kiln
expect 1 '' 'Error: Unknown command (-e @true)|' -e '@true'
expect 1 '' 'Error: line holds a line end (-e purge|purge)|' -e $'purge\npurge'
expect 0 'OK|Result: {a$ Data}|' '' -D N_1=a -e '# $' -e '' -e 'create Data alias $N_1$ inputs 1 outputs 1 rows 1 labels off' \
  -e 'query objects'
input='log start filename (/dev/full)\npurge\nquit'
expect 1 'Kiln>>OK|Kiln>>OK|Kiln>>' 'kiln: cannot write all of file /dev/full|'
"$kiln" --nonsense 2>/dev/null && failures=$((failures + 1))

# Strictness, and conversations behind or without anything.
expect 1 '' 'Error: epochs is no tag of purge (-e purge epochs 5)|' -s -e 'purge epochs 5'
input='purge epochs 5\nquery aliasexists $x\nnonsense\npurge'
expect 0 'Kiln>>OK|Kiln>>Result: false|Kiln>>Error: Unknown command|Kiln>>OK|Kiln>>' ''
expect 1 'Kiln>>OK|Kiln>>Result: false|Kiln>>Error: Unknown command|' '' -b
expect 0 'false|' 'Error: Unknown command|' -q
expect 0 'Kiln>>Error: epochs is no tag of purge|Kiln>>Result: false|Kiln>>Error: Unknown command|Kiln>>OK|Kiln>>' '' -s
input='purge'
expect 0 'OK|' '' -
expect 0 'Result: false|OK|Kiln>>OK|Kiln>>' '' -i -D NAME=x good.kiln

# Help fits a screen; output that cannot be written is a failure.
[ "$("$kiln" --help | wc -l)" -le 24 ] || failures=$((failures + 1))
"$kiln" -e help >/dev/full && failures=$((failures + 1))
[ "$failures" -eq 0 ]
