#!/usr/bin/env bash
# Passes all tests in a build that counts what they run, and prints for each file of src/ which
# lines and branches they reach. Fails where they reach less than 95 % of the lines, or in
# src/physics less than every line and every branch. Branches into the handling of an exception are
# not counted: a compiler puts them wherever memory is allocated.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install_dependencies.sh build test coverage
cmake --preset coverage >/dev/null
cmake --build --preset coverage
find build/coverage -name '*.gcda' -delete
ctest --preset coverage --parallel "$(nproc)"

counts=build/coverage/counts.json
gcovr --root . --filter src/ --exclude-throw-branches -j "$(nproc)" --json "$counts" build/coverage

status=0
gcovr --root . --add-tracefile "$counts" --fail-under-line 95 || status=1
gcovr --root . --add-tracefile "$counts" --filter src/physics/ --branches \
  --fail-under-line 100 --fail-under-branch 100 || status=1
exit "$status"
