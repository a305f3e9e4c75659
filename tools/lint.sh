#!/usr/bin/env bash
# Runs clang-tidy on the sources of src/ that it has not yet found clean as they are now. A source is
# another one when it, a header or kernel that it includes, the rules or the linter have changed.
#
#   tools/lint.sh changed   sources of a folder together, which takes a fifth of the time
#   tools/lint.sh each      every source by itself, as the few checks that pass over included files want
#
# build/ has to be built: its compile commands say how sources are read, and its dependencies what
# they include.
set -uo pipefail
cd "$(dirname "$0")/.." || exit 1

stamps=build/lint
export stamps

# Prints a line for each source that build/ compiles: its path and the digests of all that it stands for.
signatures() {
  local rules
  rules=$({ clang-tidy --version; cat .clang-tidy; } | sha256sum | cut -c1-64)
  {
    find src -type f -print0 | xargs -0 sha256sum
    ninja -C build -t deps
  } | awk -v rules="$rules" -v root="$PWD/" '
    NF == 2 && $2 ~ /^src\// { digest[$2] = $1; next }
    /^[^ ]/ { source = ""; next }
    NF == 1 {
      path = index($1, "../") == 1 ? substr($1, 4) : $1
      if (index(path, root) == 1) path = substr(path, length(root) + 1)
      if (source == "") source = path  # the first that an object depends on
      if (source ~ /^src\/.*\.cpp$/ && path in digest) line[source] = line[source] " " digest[path]
    }
    END { for (source in line) print source, rules line[source] }' | sort
}

# unclean KIND: prints the sources without a stamp of this kind for what they are now.
unclean() {
  local source signature
  while read -r source signature; do
    [ "$signature" = "$(cat "$stamps/$1/$source" 2>/dev/null)" ] || printf '%s\n' "$source"
  done <"$stamps/signatures"
}

# stamp KIND SOURCE...
stamp() {
  local kind=$1 source
  shift
  for source in "$@"; do
    mkdir -p "$stamps/$kind/${source%/*}"
    sed -n "s|^$source ||p" "$stamps/signatures" >"$stamps/$kind/$source"
  done
}

lint_one() {
  clang-tidy --quiet -p build "$1" 2> >(grep -v ' generated\.$' >&2) || return
  stamp changed "$1"
  stamp each "$1"
}

# Together, and if that is not clean, because of a fault or of a name that two of them give to different
# things, each by itself.
lint_group() {
  local unit source status=0
  unit=$(mktemp "$stamps/group-XXXXXX.cpp")
  printf "#include \"$PWD/%s\"\n" "$@" >"$unit"
  if clang-tidy --quiet --config-file=.clang-tidy --checks=-bugprone-suspicious-include "$unit" -- \
    -std=c++20 -Isrc -fopenmp-simd >/dev/null 2>&1; then
    stamp changed "$@"
  else
    for source in "$@"; do lint_one "$source" || status=1; done
  fi
  rm "$unit"
  return $status
}
export -f lint_one lint_group stamp

# Puts sources on lines of 12 at most, those that define the same names on different ones, those with
# options of their own on one each. A name is the last word before the bracket or sign in a line that
# begins a definition.
grouped() {
  xargs -r awk '
    FNR == 1 {
      source[++count] = FILENAME
      alone[count] = FILENAME ~ /^src\/(Main\.cpp|NeuralNets\/Kernels\/)/
    }
    /^[A-Za-z[]/ && !/^(namespace|using|template)/ {
      sub(/^\[\[[^]]*\]\] */, "")
      sub(/[(=\[{;].*/, "")
      if ($NF !~ /::/) names[count] = names[count] " " $NF
    }
    function fits(line, words, n,   i) {
      for (i = 1; i <= n; i++) if ((line, words[i]) in defined) return 0
      return size[line] < 12 && (!alone[s] || size[line] == 0)
    }
    END {
      for (s = 1; s <= count; s++) {
        n = split(names[s], words)
        for (line = 1; !fits(line, words, n); line++);
        for (i = 1; i <= n; i++) defined[line, words[i]] = 1
        text[line] = text[line] (size[line]++ ? " " : "") source[s]
        if (alone[s]) size[line] = 12
        if (line > lines) lines = line
      }
      for (line = 1; line <= lines; line++) print text[line]
    }'
}

mkdir -p "$stamps"
signatures >"$stamps/signatures"
[ -s "$stamps/signatures" ] || { echo 'build/ has not been built' >&2; exit 1; }
case ${1-} in
  changed) unclean changed | grouped | xargs -r -L 1 -P "$(nproc)" bash -c 'lint_group "$@"' lint ;;
  each) unclean each | xargs -r -n 1 -P "$(nproc)" bash -c 'lint_one "$@"' lint ;;
  *) echo 'usage: tools/lint.sh changed|each' >&2; exit 2 ;;
esac
