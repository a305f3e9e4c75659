#!/usr/bin/env bash
# try_ranks.sh PROGRAM FOLDER: holds one session by itself and on 1, 2 and 3 ranks, whose answers and
# files have to be the same; then on ranks of which one is short of memory, or killed.
set -uo pipefail
kiln=$1
folder=$2
rm -rf "$folder" && mkdir -p "$folder" && cd "$folder" || exit 1

fail() {
  printf '%s\n' "$*" >&2
  exit 1
}

# ranks NUMBER ARGUMENT...
ranks() {
  local number=$1
  shift
  OMPI_ALLOW_RUN_AS_ROOT=1 OMPI_ALLOW_RUN_AS_ROOT_CONFIRM=1 timeout 60 \
    mpirun --oversubscribe --mca btl self,vader -n "$number" "$@"
}

awk 'BEGIN {
  print "a,b,c,y"
  for (i = 0; i < 2100; ++i) { a = i % 41 / 41; b = i % 29 / 29; c = i % 7 / 7; print a "," b "," c "," a * b + c / 9 }
}' >table.csv
cat >session.kiln <<'END'
load CSV alias d filename (table.csv) outputs {y}
create MLP alias net inputs 3 layers 4 hidden {20, 16} outputs 1 bias on seed 3
create BPTrainer alias teacher network net
train alias teacher data d epochs 5 mode batch LearningRate 0.001 validation d
train alias teacher data d epochs 3 method rprop
create Tarn alias fuzzy inputs 3 condition {3, 3, 3} rules 6 outputs 1 action {2}
create GATrainer alias breeder network fuzzy population 20 minweight -2 maxweight 2
train alias breeder data d generations 3 mutation 0.1 crossover 0.6
gettrained source breeder destination best
log start filename (day.log)
query score network best data d
log stop
run filename (inner.kiln)
save Tarn alias best filename (best.net)
save MLP alias net filename (net.net)
query history teacher
plot teacher filename (errors.gp)
END
echo 'save Data alias d filename (d.dat)' >inner.kiln

# The clock is left out: what it begins is the same on all ranks, but not in another session.
sed 's/\(action {2}\|crossover 0.6\)$/& seed 5/' session.kiln >seeded.kiln
mkdir alone
"$kiln" -j 1 seeded.kiln >alone/answers || fail "the session does not succeed by itself"
mv best.net net.net d.dat day.log errors.gp alone
for number in 1 2 3; do
  ranks $number "$kiln" seeded.kiln >answers 2>errors || fail "$number ranks fail: $(cat errors)"
  for file in answers best.net net.net d.dat day.log errors.gp; do
    cmp "$file" "alone/$file" || fail "$number ranks differ"
  done
  ranks $number "$kiln" -q <session.kiln >answers 2>errors || fail "by the clock: $(cat errors)"
done
[ "$(wc -l <answers)" -eq 6 ] || fail "a pipe is answered otherwise: $(cat answers)"

echo 'save Tarn alias x filename (nowhere/x.net)' >wrong.kiln
for wrong in wrong.kiln missing.kiln '-e create' -Z; do
  ranks 2 "$kiln" $wrong >answers 2>errors && fail "success after $wrong"
  [ "$(grep -cE 'Error: |unknown|invalid' errors)" -eq 1 ] || fail "$wrong: $(cat errors)"
done

ranks 1 "$kiln" session.kiln : -n 1 bash -c 'ulimit -v 300000; exec "$@"' - \
  "$kiln" -e 'create Data alias large inputs 1 outputs 1 rows 20000000 labels false' session.kiln \
  >answers 2>errors && fail "ranks that differ succeed"
grep -q 'do not answer alike' errors || fail "ranks that differ: $(cat errors)"

ranks 1 "$kiln" -e 'help quit' : -n 1 env KILN_THREADS=x "$kiln" -e 'help quit' >answers 2>errors &&
  fail "success though a rank refuses its options"
grep -q 'another rank refuses' errors || fail "a rank that refuses its options: $(cat errors)"
ranks 1 "$kiln" -e 'help quit' : -n 1 "$kiln" -V >answers 2>errors && fail "ranks part unnoticed"
grep -q 'other options' errors || fail "a rank that ends early: $(cat errors)"

# Saves again and again until a rank is killed.
rm best.net
sed 's/generations 3/generations 2000000000/' seeded.kiln >endless.kiln
sed -i '/^create GATrainer/i save MLP alias net filename (net.net)' endless.kiln
rm net.net
ranks 2 "$kiln" endless.kiln >answers 2>errors &
for _ in $(seq 300); do [ -e net.net ] && break; sleep 0.1; done
pkill -KILL -n -f "^$kiln endless.kiln" || fail "no rank to kill"
SECONDS=0
wait $! && fail "the session succeeds without a rank"
[ $SECONDS -lt 10 ] || fail "it takes $SECONDS s to notice that a rank is gone"
cmp net.net alone/net.net || fail "what was saved is harmed"
[ -z "$(find . -name '.kiln-save*')" ] || fail "a temporary is left"
