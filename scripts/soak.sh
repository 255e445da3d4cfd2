#!/usr/bin/env bash
# Runs 200,000 steps of a tiny flood with every kind of output every few steps: once under the
# thread sanitizer, once under the address sanitizer with its leak check, and once as it is shipped.
# Fails when a sanitizer has anything to say, when the run does, or when memory grows: the largest
# resident set of the last quarter of the run may exceed that of the second by 2 % at the most. Under
# the address sanitizer that is only shown, since it keeps some 200 bytes of its own for every thread
# that ever ran; there its leak check speaks.
# --steps N and --preset NAME choose another length and one build.
set -euo pipefail
cd "$(dirname "$0")/.."

steps=200000
presets=(tsan asan release)
while [ "$#" -gt 0 ]; do
  case "$1" in
    --steps) steps="$2"; shift 2 ;;
    --preset) presets=("$2"); shift 2 ;;
    *) echo "usage: scripts/soak.sh [--steps N] [--preset NAME]" >&2; exit 2 ;;
  esac
done

groups=(build test)
[[ " ${presets[*]} " != *" asan "* ]] || groups+=(clang)
scripts/install_dependencies.sh "${groups[@]}"
[ ! -w /dev/shm ] || export TMPDIR=/dev/shm  # tens of thousands of small files are written
for preset in "${presets[@]}"; do
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" --target quillmere >/dev/null
  options=()
  [ "$preset" != asan ] || options+=(--allow-growth)
  /usr/bin/python3 scripts/soak.py "${options[@]}" "build/$preset/bin/quillmere" "$steps"
done
