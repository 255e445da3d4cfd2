#!/usr/bin/env bash
# Installs what is missing, builds, and passes all tests: first an optimised build, then one with
# the address and undefined-behaviour sanitizers. With --quick the sanitizers are left out, with
# --tsan the thread sanitizer comes last.
set -euo pipefail
cd "$(dirname "$0")/.."

sanitizers=(asan)
for option in "$@"; do
  case "$option" in
    --quick) sanitizers=() ;;
    --tsan) sanitizers+=(tsan) ;;
    *) echo "usage: scripts/test.sh [--quick] [--tsan]" >&2; exit 2 ;;
  esac
done

groups=(build tools python test)
[ "${#sanitizers[@]}" -eq 0 ] || groups+=(clang)
scripts/install_dependencies.sh "${groups[@]}"
scripts/install_dependencies.sh browser || echo "No pictures of reports: there is no Chromium here."
for preset in release "${sanitizers[@]}"; do
  echo "== $preset"
  cmake --preset "$preset" -DQUILLMERE_TESTS=ON >/dev/null
  cmake --build --preset "$preset"
  ctest --preset "$preset" --parallel "$(nproc)"
done
