#!/usr/bin/env bash
# gnuplot.sh KILN FOLDER: gnuplot as it is installed, if it is, and all that can be wrong with it.
set -uo pipefail
kiln=$(realpath "$1")
rm -rf "$2" && mkdir -p "$2/bin" && cd "$2" || exit 1
failures=0
fail() {
  printf '%s\n' "$*"
  failures=$((failures + 1))
}

objects=(-e 'create Data alias d inputs 2 outputs 1 rows 3 labels on'
  -e "append alias d inputs {0.1, 0.5} outputs {1} labels {'}"
  -e 'append alias d inputs {0.4, 0.2} outputs {0} labels {down}'
  -e 'append alias d inputs {0.7, 0.3} outputs {1} labels {%g&;`id`}'
  -e 'create Tarn alias fuzzy inputs 2 condition {2, 3} rules 3 outputs 1 action {2} seed 1'
  -e 'retarn network fuzzy rules found'
  -e 'create BPTrainer alias t network fuzzy'
  -e 'train alias t data d epochs 9 validation d'
  -e 'create Kohonen alias k inputs 2 dimensions 2 mapdim {4, 4} seed 1')

# Without gnuplot, or with one that fails, the old file stays, nothing else is left, and the answer
# says why. A script named gnuplot is enough for that.
# expect ERROR [FILE]
expect() {
  local got
  printf 'old' >old.svg
  got=$(PATH=$path "$kiln" "${objects[@]}" -e "plot t filename (${2-old.svg})" 2>&1 >/dev/null)
  [ "$got" = "Error: $1 (-e plot t filename (${2-old.svg}))" ] || fail "expected $1, got $got"
  [ "$(cat old.svg) $(ls -A)" = "$(printf 'old %s\n' "$files")" ] || fail "$1 leaves: $(ls -A)"
}
fake() {
  printf '#!/bin/sh\n%s\n' "$1" >bin/gnuplot
  chmod +x bin/gnuplot
}
touch old.svg
files=$(ls -A)
path=
expect 'gnuplot is not installed: filename (old.gp) writes its script'
path=$PWD/bin:/usr/bin:/bin
fake 'echo "<svg"; echo "line 3: undefined" >&2; exit 1'
expect 'gnuplot failed: line 3: undefined'
fake 'cat >/dev/null; kill -KILL $$'
expect 'gnuplot was ended by a signal: Killed'
fake 'exec <&-; sleep 0.1'
expect 'gnuplot has drawn nothing'
fake 'cat >/dev/null; echo "<svg/>"'
expect 'cannot save to file none/x.svg: No such file or directory' none/x.svg
chmod 0 bin/gnuplot
if [ "$(id -u)" -ne 0 ]; then expect 'cannot run gnuplot: Permission denied'; fi

# What gnuplot says on the way does not matter, and -d keeps out what is set by others.
fake 'cat >/dev/null; echo warning >&2; echo "$*"'
PATH=$path "$kiln" "${objects[@]}" -e 'plot t filename (new.svg)' >/dev/null || fail "a warning is no error"
[ "$(cat new.svg)" = -d ] || fail "arguments: $(cat new.svg)"

# Ctrl-C ends gnuplot too.
fake 'kill -INT $PPID; exec sleep 60'
PATH=$path "$kiln" -i "${objects[@]}" -e 'plot t filename (new.svg)' </dev/null >/dev/null 2>err.txt
grep -q interrupted err.txt || fail "not interrupted: $(cat err.txt)"
[ "$(cat new.svg)" = -d ] || fail 'the interrupted picture is there'

# Every kind, drawn by the real one without a word, in the size that its script says.
if ! type gnuplot >/dev/null 2>&1; then
  echo 'Pictures are not drawn: there is no gnuplot'
  exit "$((failures > 0))"
fi
objects+=(-e 'create Data alias far inputs 5 outputs 1 rows 4 labels off'
  -e 'append alias far inputs {1700000000, 1e300, 1e-300, 7, nan} outputs {nan}'
  -e 'append alias far inputs {1700000001, -1e300, 2e-300, 7, 0.1} outputs {nan}'
  -e 'append alias far inputs {1700000001, inf, 0, 7.0000000000000009, 0.2} outputs {nan}'
  -e 'create MLP alias line inputs 5 layers 2 hidden {} outputs 1 bias on functions {linear} seed 1'
  -e 'create Kohonen alias row inputs 1 dimensions 1 mapdim {2} seed 1'
  -e 'create Kohonen alias cube inputs 1 dimensions 3 mapdim {9, 1, 2} seed 1')
number=0
for what in t d 'd columns {0}' 'fuzzy' 'fuzzy data d' 'found method rules' 'k data d' 'k columns {0, 1}' \
  far 'far columns {1, 2}' 'far columns {1}' 'far columns {2}' 'far columns {3}' 'far columns {3, 4}' \
  'far columns {4, 3}' 'far columns {4}' row 'row columns {0}' cube 'line data far'; do
  number=$((number + 1))
  "$kiln" "${objects[@]}" -e "plot $what filename ($number.gp)" -e "plot $what filename ($number.svg)" \
    -e "plot $what filename ($number.PNG)" -e "plot $what filename ($number.pdf)" >/dev/null || fail "$what"
  gnuplot -d $number.gp >again.svg 2>said.txt
  [ -s said.txt ] && fail "$what: $(cat said.txt)"
  cmp -s again.svg $number.svg || fail "$what: the script draws something else"
  size=$(sed -n 's/^set terminal svg size \([0-9]*\),\([0-9]*\) .*/\1 \2/p' $number.gp)
  grep -q "width=\"${size% *}\" height=\"${size#* }\"" $number.svg || fail "$what: size of the SVG"
  drawn=$(od -An -tu1 -j16 -N8 $number.PNG | awk '{ print ($3 * 256 + $4) / 2, ($7 * 256 + $8) / 2 }')
  [ "$drawn" = "$size" ] || fail "$what: the PNG is $drawn, not $size"
  head -c 5 $number.pdf | grep -q %PDF- || fail "$what: no PDF"
done
grep -q '<text>%g&amp;;`id`' 3.svg || fail 'a label is not as it was written'
exit "$((failures > 0))"
