#!/usr/bin/env bash
# Installs what is missing of the packages that the project needs (Debian 12). Says nothing, and
# touches nothing, when all of them are there. Run as root or as a user who may use sudo.
set -euo pipefail

usage() {
  cat <<'TEXT'
Usage: install_dependencies.sh GROUP...

Groups:
  build       compiler, CMake, Ninja and the JSON library
  tools       what the companion tools build on, and matplotlib for their pictures
  test        GoogleTest, numpy, what reads exported files, schemas and packages back
  browser     Chromium, to look at reports
  coverage    gcovr
  python      what the Python module is built and packaged with
  mpi         Open MPI and MPICH, for quillmere-mpi and its tests
  clang       Clang, with its fuzzer and sanitizers
  bench       Google Benchmark
  package     what makes and checks Debian packages
  try         mmdebstrap, to try them in a bare system
  validation  numpy and matplotlib for /usr/bin/python3
TEXT
}

packages_of() {
  case "$1" in
    build) echo g++ cmake ninja-build nlohmann-json3-dev ;;
    tools) echo libcli11-dev libgmsh-dev libgdal-dev libnetcdf-dev python3-matplotlib ;;
    test) echo libgtest-dev python3-numpy python3-netcdf4 python3-meshio python3-gdal python3-jsonschema dpkg-dev file ;;
    browser) echo chromium ;;
    coverage) echo gcovr ;;
    python) echo python3-dev pybind11-dev python3-numpy python3-pip python3-setuptools python3-wheel ;;
    mpi) echo libopenmpi-dev openmpi-bin libmpich-dev mpich pkgconf ;;
    clang) echo clang libclang-rt-dev ;;
    bench) echo libbenchmark-dev ;;
    package) echo dpkg-dev file lintian ;;
    try) echo mmdebstrap mount ;;
    validation) echo python3-numpy python3-matplotlib ;;
    *) return 1 ;;
  esac
}

is_installed() {
  [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    echo "install_dependencies.sh: needs root or sudo to install: ${missing[*]}" >&2
    exit 1
  fi
}

case "${1:-}" in
  "") usage >&2; exit 2 ;;
  -h | --help) usage; exit 0 ;;
esac
if ! command -v dpkg-query >/dev/null; then
  echo "install_dependencies.sh: no dpkg here; install by hand what README.md lists." >&2
  exit 1
fi

missing=()
for group in "$@"; do
  if ! packages=$(packages_of "$group"); then
    echo "install_dependencies.sh: no group \"$group\"." >&2
    usage >&2
    exit 2
  fi
  for package in $packages; do
    is_installed "$package" || missing+=("$package")
  done
done
[ "${#missing[@]}" -gt 0 ] || exit 0

echo "Installing ${missing[*]}"
as_root apt-get -qq update
as_root env DEBIAN_FRONTEND=noninteractive \
  apt-get -qq install -y --no-install-recommends "${missing[@]}" >/dev/null
