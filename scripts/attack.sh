#!/usr/bin/env bash
# Attacks the simulator: calls that fail one after the other, kills, odd files, limits, closed
# streams, hostile names, and mutated cases that quillmere-mesh check must judge as the simulator
# does. Prints counts per kind of attack; fails, and says how to repeat it, where a run breaks the
# rule of scripts/attack/judge.py. Some 5,000 attacks, a hundred per second of two cores.
# --thorough lets every single call fail in every way (39,000 attacks); --only PATTERN
# repeats the attacks whose names match; --bin FOLDER attacks programs that are built already.
# The folders of the runs that broke the rule are kept in build/attack/violations.
set -euo pipefail
cd "$(dirname "$0")/.."

options=()
bin=
while [ "$#" -gt 0 ]; do
  case "$1" in
    --thorough) options+=(--thorough); shift ;;
    --only) options+=(--only "$2"); shift 2 ;;
    --bin) bin="$2"; shift 2 ;;
    *) echo "usage: scripts/attack.sh [--thorough] [--only PATTERN] [--bin FOLDER]" >&2; exit 2 ;;
  esac
done

if [ -z "$bin" ]; then
  scripts/install_dependencies.sh build tools
  cmake --preset release >/dev/null
  cmake --build --preset release --target quillmere >/dev/null
  if cmake --build --preset release --target help | grep '^quillmere-mesh:' >/dev/null; then
    cmake --build --preset release --target quillmere-mesh >/dev/null
  fi
  bin=build/release/bin
fi
mkdir -p build/attack
cc -O1 -shared -fPIC -o build/attack/faults.so scripts/attack/faults.c
[ ! -w /dev/shm ] || export TMPDIR=/dev/shm  # thousands of small folders are written
exec /usr/bin/python3 -B scripts/attack/attack.py "${options[@]}" "$bin" build/attack
