# Sourced by the scripts: goes to the project's folder and provides for what a build needs.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

build_packages=(g++ cmake ninja-build pkg-config libgtest-dev libbenchmark-dev libeigen3-dev
  libboost-math-dev libnlopt-cxx-dev libmuparser-dev libcli11-dev libsqlite3-dev liblmdb-dev
  nlohmann-json3-dev doxygen dpkg-dev file)

# step TEXT...: says what comes now.
step() {
  printf '\n== %s\n' "$*"
}

is_installed() {
  dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q '^install ok installed$'
}

# as_root COMMAND...: runs it as root, or fails where there is no way to.
as_root() {
  if [ "$(id -u)" = 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    return 1
  fi
}

# need PACKAGE...: installs the Debian packages that are missing.
need() {
  local package missing=()
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  [ ${#missing[@]} = 0 ] && return

  step "Installing what is missing: ${missing[*]}"
  if ! command -v apt-get >/dev/null || ! as_root true; then
    echo "Cannot install here. Please install ${missing[*]} (or your system's counterparts)." >&2
    exit 1
  fi
  as_root apt-get update -q
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends \
    "${missing[@]}"
}
