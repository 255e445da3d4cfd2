#!/usr/bin/env bash
# Measures the speed of the simulator on generated meshes, of reading and writing, of the import of
# meshes, of the pure formulas and of the export, and the work for a given error, and writes
# docs/performance.md.
# bench.sh [CELLS...] chooses the mesh sizes; REPEATS=n how often every run is repeated (3).
# bench.sh scaling [CELLS...] measures how ranks scale instead, and writes docs/scaling.md. It needs
# MPI. MEMORY_CELLS is the mesh whose memory is measured (10,000,000), STEPS the length of runs on many
# ranks (3000); QUILLMERE_FLOOD_DATA names the folder of the data of the real flood, which are not in the
# repository: without it that case is left out.
# bench.sh device [CELLS...] writes the section on graphics cards alone: whether a card gives the bits of
# the processor, and its times; without a card what is known without one, with exit status 77.
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "${1:-}" = device ]; then
  shift
  scripts/install_dependencies.sh build bench validation test
  cuda=$(PATH="$PATH:/usr/local/cuda/bin" command -v nvcc >/dev/null && echo ON || echo OFF)
  cmake --preset release -DQUILLMERE_BENCHMARKS=ON -DQUILLMERE_TOOLS=OFF -DQUILLMERE_CUDA="$cuda" \
    -B build/bench_device >/dev/null
  targets=(bench_run bench_device_memory)
  if [ "$cuda" = ON ]; then
    targets+=(bench_card_copy engine_tests card_tests physics_on_device)
  fi
  cmake --build build/bench_device --target "${targets[@]}"
  exec /usr/bin/python3 bench/device.py build/bench_device "${REPEATS:-3}" "$@"
fi

groups="build tools bench validation"
[ "${1:-}" = scaling ] && groups="build bench mpi"
# shellcheck disable=SC2086  # a word for every group
scripts/install_dependencies.sh $groups
cmake --preset release -DQUILLMERE_BENCHMARKS=ON -DQUILLMERE_TESTS=OFF -B build/bench >/dev/null
bin=build/bench/bin

if [ "${1:-}" = scaling ]; then
  shift
  cmake --build build/bench --target bench_case bench_ranks
  cmake --build build/bench --target bench_mpi || {
    echo "The scaling of ranks is measured with MPI, which CMake did not find." >&2
    exit 1
  }
  mpiexec=$(sed -n 's/^MPIEXEC_EXECUTABLE:[^=]*=//p' build/bench/CMakeCache.txt)
  exec /usr/bin/python3 bench/scaling.py "$bin" "$mpiexec" "${REPEATS:-3}" "$@"
fi

cmake --build build/bench

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
