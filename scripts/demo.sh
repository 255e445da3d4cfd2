#!/usr/bin/env bash
# From a bare clone to pictures: installs what is missing, builds the programs, runs the flood wave
# of examples/meandering_valley in a copy under build/demo and draws its results there.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
example=$root/examples/meandering_valley
case_folder=$root/build/demo/meandering_valley
program=$root/build/release/bin/quillmere
exporter=$root/build/release/bin/quillmere-export

build() {
  # The folder is shared with the tests: whether it builds them is left as it was configured.
  if [ ! -e "$root/build/release/build.ninja" ]; then
    (cd "$root" && cmake --preset release -DQUILLMERE_TESTS=OFF)
  else
    cmake "$root/build/release" >/dev/null  # finds the libraries that have come since
  fi
  cmake --build "$root/build/release" --target quillmere quillmere-export
}

# The case's own files, without what a run in its folder may have left.
inputs() {
  find "$example" -maxdepth 1 \( -name '*.txt' -o -name data.json \) ! -name log.txt -print0 |
    sort -z
}

# What the results depend on: the program and every input file.
fingerprint() {
  inputs | xargs -0 cat "$program" | sha256sum
}

simulate() {
  local key
  key=$(fingerprint)
  if [ "$(cat "$case_folder/complete" 2>/dev/null)" = "$key" ]; then
    echo "The program and the case are unchanged: the results of the last run are kept."
    return
  fi
  echo "Running the flood wave (some seconds) ..."
  rm -rf "$case_folder"
  mkdir -p "$case_folder/out"
  inputs | xargs -0 cp -t "$case_folder"
  (cd "$case_folder" && "$program" -f data.json)
  echo
  echo "$key" >"$case_folder/complete"
}

"$root/scripts/install_dependencies.sh" build tools
build
simulate
echo "Drawing (some seconds) ..."
"$exporter" plot "$case_folder" --all --threshold 0.05 >/dev/null
cat <<TEXT

Results of the run:  $case_folder/out
Its log:             $case_folder/log.txt
Pictures:            $case_folder/export/pictures
TEXT
