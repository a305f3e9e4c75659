#!/usr/bin/env bash
# packages.sh BUILD FOLDER: makes the packages, installs them into an empty system below the folder, runs
# the iris example and builds a program on the library from there, and removes them without a trace.
set -euo pipefail
build=$(realpath "$1")
rm -rf "$2" && mkdir -p "$2" && cd "$2"

cpack --config "$build/CPackConfig.cmake" -B packages >cpack.log 2>&1
tar -tzf packages/kiln-*.tar.gz | grep '/bin/kiln$' >/dev/null

root=$PWD/root
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
touch "$root/var/lib/dpkg/status"
as_package_manager() {
  dpkg --root="$root" --force-depends --force-not-root --force-bad-path --force-script-chrootless --log="$PWD/dpkg.log" "$@" >>dpkg.out 2>&1
}
as_package_manager -i packages/*.deb || { cat dpkg.out; exit 1; }

PATH=$root/usr/bin:$PATH
doc=$root/usr/share/doc/kiln
cp -r "$doc/examples/iris" . && kiln -C iris -s iris.kiln >answers.txt
"$doc/examples/iris/show.sh" "$root/usr/bin/kiln" iris | tail -n 3
[ "$(zcat "$root/usr/share/man/man1/kiln.1.gz" | grep -c '^\.SH')" -ge 5 ]
# Every option of the program stands in the manual and in the completion.
kiln --help | grep -oE -- '--[a-z]+' | sort -u | while read -r option; do
  zcat "$root/usr/share/man/man1/kiln.1.gz" | sed 's/\\-/-/g' | grep -e "$option" >/dev/null
  grep -q -- "$option" "$root/usr/share/bash-completion/completions/kiln"
done
! command -v man >/dev/null || [ -z "$(man --warnings -l "$root/usr/share/man/man1/kiln.1.gz" 2>&1 >/dev/null)" ]
bash -c '. "$1"; COMP_WORDS=(kiln --str) COMP_CWORD=1; _kiln; [ "${COMPREPLY[*]}" = --strict ]' - \
  "$root/usr/share/bash-completion/completions/kiln"
grep -q 'kilnForm.*FuzzyRules' "$root/usr/share/vim/vimfiles/syntax/kiln.vim"

cmake -S "$doc/examples/embed" -B embed -DKiln_DIR="$root/usr/lib/cmake/Kiln" >embed.log 2>&1
cmake --build embed >>embed.log 2>&1 || { cat embed.log; exit 1; }
embed/embed | tail -n 4 | tee embed.txt
[ "$(grep -cE 'inputs \{(0, 0|1, 1)\} outputs \{0\.0|inputs \{(0, 1|1, 0)\} outputs \{0\.9' embed.txt)" = 4 ]

if /usr/bin/python3 -c 'import numpy' 2>/dev/null; then
  PYTHONPATH=$root/usr/lib/python3/dist-packages env -u PYTHONDONTWRITEBYTECODE /usr/bin/python3 -c 'import kiln; assert kiln.Session()("purge") is None'
fi

as_package_manager --purge kiln libkiln-dev
[ -z "$(find "$root/usr" -type f 2>/dev/null)" ] || { find "$root" -type f; exit 1; }
