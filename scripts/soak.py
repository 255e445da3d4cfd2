#!/usr/bin/python3
"""A long run of a tiny flood: every feature, every kind of output at every few steps. Fails when the
run does, when a sanitizer reports something, or when memory grows."""
import argparse
import json
import os
import subprocess
import sys
import tempfile
import time
from pathlib import Path

SEEDS = Path(__file__).resolve().parent.parent / "tests" / "fuzz" / "seeds"
INPUTS = ("nodes", "cells", "edges", "bed", "friction", "initial", "hyetocells", "infiltracells",
          "infiltrated", "inflow", "level", "rain", "soils", "gauges_in", "sections_in")
DATA = {
    "name": "Soak",
    "t0": 0, "tend": 0, "CFL": 0.5,
    "mesh": {"nodes": "nodes.txt", "cells": "cells.txt", "edges": "edges.txt"},
    "model": {
        "name": "Quillmere", "flux scheme": "LHLLC", "zero depth value": 0.001,
        "conditions": {"initial conditions": "initial.txt", "fixed bed level": "bed.txt",
                       "friction": "friction.txt"},
        "sources": {"rainfall": "rain.txt", "hyetocells": "hyetocells.txt",
                    "infiltration": "soils.txt", "infiltracells": "infiltracells.txt",
                    "initial infiltration": "infiltrated.txt"},
    },
    "output": {"folder": "out/", "snapshots of flow": "snapshots.txt", "gauges": "gauges_in.txt",
               "discharges": "sections_in.txt", "final state": "final.txt",
               "maxima of flow": {"file": "maxima.txt"}, "results": "results.nc"},
}
PILOT = 20.0  # s, of simulation
SETTINGS = {
    "ASAN_OPTIONS": "detect_leaks=1:quarantine_size_mb=1",  # freed memory is not held back
    "TSAN_OPTIONS": "halt_on_error=1",
    "UBSAN_OPTIONS": "print_stacktrace=1",
}
FEWEST_LOOKS = 40  # at the memory: a shorter run tells nothing of its growth
GROWTH = 1.02  # of the largest resident set, from the second to the last quarter of the run


def write_case(folder, end, interval):
    """Gauges, snapshots and envelopes at an interval (s), sections at every step."""
    for name in INPUTS:
        text = (SEEDS / name / "case.txt").read_text()
        if name == "gauges_in":
            text = text.replace("\n0.5\n", f"\n{interval}\n")
        if name == "edges":
            text = text.replace("-3 -0.5", "-5")  # a flow that stays calm for days
        if name == "sections_in":
            text = text.replace(" 0.5 ", " 1e-9 ")
        (folder / f"{name}.txt").write_text(text)
    times = [i * interval for i in range(int(end / interval) + 1)]
    (folder / "snapshots.txt").write_text(f"{len(times)}\n" + "\n".join(map(str, times)) + "\n")
    DATA["tend"] = end
    DATA["output"]["time step enveloppe of results"] = interval
    (folder / "data.json").write_text(json.dumps(DATA))
    (folder / "out").mkdir(exist_ok=True)


def resident_set(process):
    """KiB of memory that the process holds; 0 once it has ended."""
    try:
        for line in Path(f"/proc/{process.pid}/status").read_text().splitlines():
            if line.startswith("VmRSS:"):
                return int(line.split()[1])
    except OSError:
        pass
    return 0


def run(program, folder):
    """Runs the case; answers the resident set (KiB) over time."""
    with open(folder / "err.txt", "w") as err:
        process = subprocess.Popen([program, "-f", "data.json", "-nodisplay"], cwd=folder,
                                   stdout=subprocess.DEVNULL, stderr=err,
                                   env={**os.environ, **SETTINGS})
        memory = []
        while process.poll() is None:
            memory.append(resident_set(process))
            time.sleep(0.1)
    words = (folder / "err.txt").read_text()
    if process.returncode != 0 or words:
        sys.exit(f"soak.py: status {process.returncode}\n{words[:4000]}")
    return [size for size in memory if size > 0]


def count_lines(path):
    with open(path) as file:
        return sum(1 for _ in file)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program")
    parser.add_argument("steps", type=int)
    parser.add_argument("--allow-growth", action="store_true", help="show the memory, no more")
    options = parser.parse_args()
    program = os.path.abspath(options.program)
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        write_case(folder, PILOT, 1.0)
        run(program, folder)
        step = PILOT / count_lines(folder / "sections.txt")

        start = time.monotonic()
        write_case(folder, 1.02 * options.steps * step, 4 * step)
        memory = run(program, folder)
        seconds = time.monotonic() - start
        steps = count_lines(folder / "sections.txt")
        snapshots = len(list((folder / "out").glob("pic_*.txt")))
        gauge_lines = count_lines(folder / "out" / "gauges.txt") - 1
    if len(memory) < FEWEST_LOOKS:
        sys.exit(f"soak.py: {len(memory)} looks at the memory in {seconds:.1f} s, expected "
                 f"{FEWEST_LOOKS} or more: too few steps to see whether it grows")
    quarters = [max(memory[i * len(memory) // 4:(i + 1) * len(memory) // 4]) for i in range(4)]
    print(f"{options.program}: {steps} steps, {snapshots} snapshots, {gauge_lines} gauge lines in "
          f"{seconds:.0f} s; largest resident set of each quarter: "
          + ", ".join(f"{size / 1024:.1f}" for size in quarters) + " MiB")
    if steps < options.steps:
        sys.exit(f"soak.py: {options.steps} steps were expected")
    if quarters[3] > GROWTH * quarters[1] and not options.allow_growth:
        sys.exit(f"soak.py: memory grows: {quarters[1]} KiB in the second quarter of the run and "
                 f"{quarters[3]} KiB in the last, expected at most {GROWTH:g} times as much")


if __name__ == "__main__":
    main()
