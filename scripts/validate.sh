#!/usr/bin/env bash
# Validates the simulator: makes the meshes, runs it by the flux schemes LHLLC and HLL2, compares with
# the exact solutions, draws the figures and writes docs/validation.md. validate.sh CASE... does so for
# single cases. The data of the real flood are not in the repository: QUILLMERE_FLOOD_DATA names their
# folder; without it that case is skipped.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install_dependencies.sh build validation
# The folder is shared with the tests: whether it builds them is left as it was configured.
[ -e build/release/build.ninja ] || cmake --preset release -DQUILLMERE_TESTS=OFF >/dev/null
cmake --build --preset release --target quillmere
exec /usr/bin/python3 -m validation "$@"
