# Sourced by ./check and ./demo: gets the tools that they need from Debian's packages.

# have PACKAGE: whether what the package brings is there, however it came.
have() {
  case $1 in
    ninja-build) command -v ninja ;;
    libgtest-dev) have_header gtest/gtest.h ;;
    openmpi-bin) command -v mpirun ;;
    libopenmpi-dev) command -v mpicxx ;;
    libedit-dev) have_header histedit.h ;;
    gnuplot-nox) command -v gnuplot ;;
    libfuzzylite-dev) have_header fl/Headers.h ;;
    libclang-rt-14-dev) ls "$(clang++ -print-resource-dir)"/lib/linux/libclang_rt.fuzzer-*.a ;;
    python3-*) /usr/bin/python3 -c "import ${1#python3-}" ;;
    *) command -v "$1" ;;
  esac >/dev/null 2>&1
}

have_header() {
  printf '#include <%s>\n' "$1" | g++ -E -x c++ -o /dev/null -
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif [ -t 0 ]; then
    sudo "$@"
  else
    sudo -n "$@"
  fi
}

apt() {
  as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -y \
    -o Acquire::Retries=1 -o Acquire::http::Timeout=20 -o DPkg::Lock::Timeout=120 "$@"
}

# install_missing PACKAGE...: leaves alone what is there, installs the rest.
install_missing() {
  local package updated=
  for package in "$@"; do
    have "$package" && continue
    [ -n "$updated" ] || apt update >/dev/null 2>&1 </dev/null || true
    updated=yes
    printf 'Installing %s\n' "$package"
    apt install --no-install-recommends "$package" >/dev/null 2>&1 </dev/null || true
  done
}

# missing_of PACKAGE...: prints those that are not there.
missing_of() {
  local package
  for package in "$@"; do have "$package" || printf '%s ' "$package"; done
}

# require PACKAGE...: installs what is missing, and gives up when one cannot be had.
require() {
  install_missing "$@"
  local missing
  missing=$(missing_of "$@")
  [ -z "$missing" ] && return
  printf 'These packages are needed and cannot be installed here (no right to, or no network): %s\n' \
    "$missing" >&2
  exit 1
}
