#!/usr/bin/env bash
# Imports, runs and draws a case with the installed programs, and steps it in Python; then the module is
# removed without a trace. For a system that is thrown away.
set -euo pipefail
cd "$(mktemp -d)"

cat >basin.2dm <<'MESH'
MESH2D
ND 1 0 0 0
ND 2 1 0 0
ND 3 1 1 0
ND 4 0 1 0
E3T 1 1 2 3 1
E3T 2 1 3 4 1
MESH
quillmere-mesh import basin.2dm basin --level 1 --end 1 >import.log
cd basin
quillmere -f data.json -nodisplay >run.log
quillmere-export plot .
quillmere-export netcdf .
python3 -c 'import quillmere; quillmere.Simulation.open("data.json").step()'

if command -v mpiexec >/dev/null; then
  mpiexec --allow-run-as-root --oversubscribe -n 2 quillmere-mpi -f data.json -nodisplay >run.log
fi
apt-get -q -y remove --purge python3-quillmere >remove.log
test ! -e /usr/lib/python3/dist-packages/quillmere
