#!/usr/bin/env bash
# Feeds every reader of input files with mutated files, under the address and undefined-behaviour
# sanitizers: SECONDS for each (30 if not given). Says how many inputs each reader met; fails when
# one of them crashed, hung, leaked, or took more than 1 GB of memory, and keeps that input.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${1:-30}"
if ! [[ "$seconds" =~ ^[1-9][0-9]*$ ]] || [ "$#" -gt 1 ]; then
  echo "usage: scripts/fuzz.sh [SECONDS]" >&2
  exit 2
fi

scripts/install_dependencies.sh build test clang

source_folder=$PWD
work=$source_folder/build/fuzz
bin=$source_folder/build/asan/bin
example=examples/meandering_valley
mkdir -p "$work"

if ! { cmake --preset asan && cmake --build --preset asan --target fuzzers; } >"$work/build.log" 2>&1; then
  tail -n 60 "$work/build.log" >&2
  echo "scripts/fuzz.sh: the fuzzers were not built, and nothing was checked" >&2
  exit 1
fi
[ ! -w /dev/shm ] || export TMPDIR=/dev/shm  # thousands of small files are written

# What the corpus of an earlier run found out stays; the seeds and the examples join it.
seed_from() { mkdir -p "$work/$1" && cp "$2" "$work/$1/$3"; }
for folder in tests/fuzz/seeds/*/; do
  seed_from "$(basename "$folder")" "$folder/case.txt" case.txt
done
for data in examples/*/data.json; do
  seed_from data_file "$data" "$(basename "$(dirname "$data")").json"
done
seed_from inflow $example/boundary_inflow.txt example.txt
seed_from level $example/boundary_inflow.txt example.txt
seed_from rain $example/rain.txt example.txt
seed_from soils $example/soils.txt example.txt
seed_from gauges_in $example/gauges.txt example.txt
seed_from sections_in examples/flume_dam_break/sections.txt example.txt
seed_from snapshots_in $example/snapshots.txt example.txt

fuzz() {
  local name=$1
  local log=$work/$name.log
  mkdir -p "$work/$name"  # not every reader has seeds
  # A small quarantine: every input takes and frees large buffers.
  if ASAN_OPTIONS=quarantine_size_mb=8 "$bin/${name}_fuzzer" -max_total_time="$seconds" \
      -timeout=20 -rss_limit_mb=1024 -max_len=4096 -dict="$source_folder/tests/fuzz/words.dict" \
      -artifact_prefix="$work/$name-" -print_final_stats=1 "$work/$name" >"$log" 2>&1; then
    printf '%-14s %9s inputs\n' "$name" \
      "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")"
  else
    printf '%-14s FAILED\n' "$name"
    tail -n 60 "$log"
    return 1
  fi
}
export -f fuzz
export seconds source_folder work bin

find "$bin" -name '*_fuzzer' -printf '%f\n' | sed 's/_fuzzer$//' | sort |
  xargs -P "$(nproc)" -I NAME bash -euo pipefail -c 'fuzz NAME'
