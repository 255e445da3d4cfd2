#!/usr/bin/env bash
# Installs the Debian packages of a folder in a bare Debian 12, with what they depend on, and uses them
# there: try.sh FOLDER. Of what they recommend comes what pictures and MPI jobs need. Nothing of that
# system is kept.
set -euo pipefail

packages=("$1"/*.deb)
here=$(dirname "$0")

mmdebstrap --quiet --variant=apt --format=null \
  --customize-hook="copy-in ${packages[*]} $here/use.sh /opt" \
  --chrooted-customize-hook='
    apt-get -q -y install /opt/*.deb python3-matplotlib openmpi-bin >/opt/install.log 2>&1 ||
      { tail /opt/install.log; exit 1; }' \
  --chrooted-customize-hook='bash /opt/use.sh' \
  bookworm -
echo "The packages were installed and used in a bare Debian."
