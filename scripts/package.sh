#!/usr/bin/env bash
# From a bare clone to packages: installs what is missing, builds what is shipped, makes Debian packages
# and an archive in build/release/packages, and has lintian look at them. With --try they are installed
# and used in a bare Debian as well, which needs root and the network, and takes minutes.
set -euo pipefail
cd "$(dirname "$0")/.."

try=
for option in "$@"; do
  case "$option" in
    --try) try=yes ;;
    *) echo "usage: scripts/package.sh [--try]" >&2; exit 2 ;;
  esac
done

# The same without MPI where it cannot be had.
scripts/install_dependencies.sh build tools python package
scripts/install_dependencies.sh mpi || echo "No package for clusters: MPI cannot be installed here."

# The folder is shared with the tests: whether it builds them is left as it was configured.
if [ ! -e build/release/build.ninja ]; then
  cmake --preset release -DQUILLMERE_TESTS=OFF
else
  cmake build/release >/dev/null  # finds the libraries that have come since
fi
cmake --build build/release --target packaged

packages=build/release/packages
rm -rf "$packages"
cpack --config build/release/CPackConfig.cmake -G "DEB;TGZ"
rm -rf "$packages/_CPack_Packages"
lintian --fail-on error --allow-root --tag-display-limit 0 "$packages"/*.deb
if [ -n "$try" ]; then
  scripts/install_dependencies.sh try
  scripts/package/try.sh "$packages"
fi
echo "Packages and archive: $PWD/$packages"
