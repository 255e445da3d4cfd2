#!/usr/bin/env bash
# Measures the speed of the simulator on generated meshes, of reading and writing, of the import of
# meshes, of the pure formulas and of the export, and the work for a given error, and writes
# docs/performance.md.
# bench.sh [CELLS...] chooses the mesh sizes; REPEATS=n how often every run is repeated (3).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install_dependencies.sh build tools bench validation
cmake --preset release -DQUILLMERE_BENCHMARKS=ON -DQUILLMERE_TESTS=OFF -B build/bench >/dev/null
cmake --build build/bench
bin=build/bench/bin

/usr/bin/python3 bench/report.py "$bin" "${REPEATS:-3}" "$@"

cells=${1:+${*: -1}}
cells=${cells:-1000000}
if [ -x "$bin/bench_import" ]; then
  printf '\n%-8s %12s %14s %12s %16s\n.msh     ' import triangles 'file (MB)' 'time (s)' 'peak (MiB)'
  "$bin/bench_import" "$cells" "$bin/quillmere-mesh"
fi
if [ -x "$bin/bench_export" ]; then
  printf '\n%12s %9s %14s %10s %12s %18s\n' \
    triangles snapshots 'text (MB)' 'netcdf (s)' 'MB/s of text' 'memory (snapshots)'
  "$bin/bench_export" "$bin/quillmere-export" "$cells" 20
fi
echo
"$bin/bench_formulas" --benchmark_format=console 2>/dev/null
