#!/usr/bin/env bash
# Measures the speed of the simulator: runs on generated meshes (a dam break over an uneven bed with
# friction), the import of meshes, reading, writing and point location, the pure formulas, and the
# export of 20 snapshots. bench.sh [CELLS...] chooses the mesh sizes.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install_dependencies.sh build tools bench
cmake --preset release -DQUILLMERE_BENCHMARKS=ON -DQUILLMERE_TESTS=OFF -B build/bench >/dev/null
cmake --build build/bench

sizes=("$@")
[ ${#sizes[@]} -gt 0 ] || sizes=(3000 30000 300000 1000000)
printf '\n%-8s %7s %12s %8s %12s %18s %18s\n' \
  path threads triangles steps 'set-up (s)' 'ns/cell/step' 'bytes/cell (peak)'
row() {
  printf '%-8s %7s ' "$1" "$2"
  QUILLMERE_ENGINE=$1 OMP_NUM_THREADS=$2 build/bench/bin/bench_run "$3"
}
for cells in "${sizes[@]}"; do
  row objects 1 "$cells"
  row tables 1 "$cells"
  [ "$(nproc)" -eq 1 ] || row tables "$(nproc)" "$cells"
done
printf '\n%-8s %12s %14s %12s %16s\n' import triangles 'file (MB)' 'time (s)' 'peak (MiB)'
for cells in "${sizes[@]}"; do
  printf '%-8s ' '.msh'
  build/bench/bin/bench_import "$cells" build/bench/bin/quillmere-mesh
done
echo
build/bench/bin/bench_files "${sizes[-1]}"
echo
build/bench/bin/bench_formulas --benchmark_format=console 2>/dev/null

printf '\n%12s %9s %14s %10s %12s %18s\n' \
  triangles snapshots 'text (MB)' 'netcdf (s)' 'MB/s of text' 'memory (snapshots)'
for cells in "${sizes[@]}"; do
  build/bench/bin/bench_export build/bench/bin/quillmere-export "$cells" 20
done
