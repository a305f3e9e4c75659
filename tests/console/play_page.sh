#!/usr/bin/env bash
# play_page.sh PAGE RUNNER KILN DATA FOLDER: carries out a page of documentation as it stands. Its blocks
# that begin with "Kiln>>" are one conversation; lines behind "$ " in others go to the shell in their
# places, with the program on the path and the source tree where a package has its documents. Of numbers
# with six decimals or more the first three are compared: the last ones depend on the processor.
set -euo pipefail
page=$(realpath "$1")
sources=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
mkdir -p "$5"
conversation=$5/$(basename "$page" .md).txt
awk -v sources="$sources" -v folder="$(dirname "$3")" '
  /^```/ { inside = !inside; plays = 0; next }
  inside && /^Kiln>>|^\$ / { plays = 1 }
  !inside || !plays { next }
  /^\$ / {
    gsub("/usr/share/doc/kiln", sources)
    print "Kiln>>@PATH=" folder ":$PATH; " substr($0, 3)
    next
  }
  { print (!/^Kiln>>/ && /[0-9]\.[0-9][0-9][0-9][0-9][0-9][0-9]/ ? "~" : "") $0 }
' "$page" |
  sed -E '/^~/ { s/[][{}()*+?.^$|\\]/\\&/g; s/(\\\.[0-9]{3})[0-9]{3,}/\1[0-9]*/g }' >"$conversation"
grep -q '^Kiln>>' "$conversation"
exec "$2" "$3" "$4" "$conversation"
