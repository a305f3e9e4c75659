# begin.sh KILN DIRECTORY, sourced by a show.sh: copies its example into a new folder of the directory, beside
# a link to the irises, and goes there. $kiln is the program, $here the folder of the example.
set -euo pipefail
kiln=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
folder=$2/${here##*/}
rm -rf "$folder"
mkdir -p "$folder"
ln -sfn "$here/../iris" "$2/iris"
cp "$here"/* "$folder"
cd "$folder"
