"""Runs the steps on a graphics card: first whether its bits are those of the processor, then times;
without a card, what is known without one. Writes the section of docs/performance.md:
device.py BUILD_FOLDER REPEATS [CELLS...]. Exit status: 0 measured, 77 without a card, 1 where the card
does not give the bits of the processor or fails."""
import os
import re
import shutil
import statistics
import subprocess
import sys

import card_section
import page
import report

NO_CARD = 77

KERNELS = {"AdvancePatchesILb0E": "patches, LHLLC", "AdvancePatchesILb1E": "patches, LHLLC, sediment",
           "OuterFluxesILb0E": "outer fluxes, LHLLC", "OuterFluxesILb1E": "outer fluxes, LHLLC, sediment",
           "AdvanceHll1ILb0E": "patches, HLL1", "AdvanceHll1ILb1E": "patches, HLL1, sediment",
           "AdvanceHll2E": "patches, HLL2", "BeginStepE": "begin of a step",
           "FindActiveE": "patches of a step", "EndStepE": "end of a step"}


def registers(build):
    """Of the kernels, by architecture."""
    said = subprocess.run(["ctest", "--test-dir", build, "-R", "device.KernelsFitACard", "-V"],
                          check=True, capture_output=True, text=True).stdout
    found = re.findall(r"run_on_card\w*?(" + "|".join(KERNELS) + r")\w* for (sm_\d+): (\d+) registers", said)
    architectures = sorted({architecture for _, architecture, _ in found},
                           key=lambda name: int(name[3:]))
    used = {(kernel, architecture): count for kernel, architecture, count in found}
    if not found:
        return "(The compiler of the cards was not found, or said nothing.)"
    rows = [[name, *(used.get((kernel, architecture), "") for architecture in architectures)]
            for kernel, name in KERNELS.items()]
    return page.table(["registers of a thread", *architectures], rows)


def models(bench, cells):
    """Name, cells of a patch, KB of scratch, bytes per cell and step."""
    lines = bench.program("bench_device_memory", cells).splitlines()
    return [line.split(";") for line in lines]


def without_card(build, bench, cells=100000):
    machine = page.machine()
    scratch = models(bench, cells)
    emulated = []
    for kind, scheme in (("wet", "LHLLC"), ("sediment", "LHLLC"), ("wet", "HLL1"), ("wet", "HLL2")):
        runs = [bench.run("device", bench.cores, cells, kind, 50, scheme)
                for _ in range(bench.repeats)]
        emulated.append([f"{scheme}, {kind}", page.minimum_and_median(report.times(runs))])
    return [
        "What the compiler says of the kernels; none spills a register (`device.KernelsFitACard`). A "
        "block has 256 threads, one of the outer fluxes 64, that of the end of a step 1,024; a "
        "multiprocessor has 65,536 registers.",
        registers(build),
        f"Scratch of a block, and bytes of the columns that a step moves per cell, each once for every "
        f"patch that needs it, on {cells:,} triangles. A multiprocessor of compute capability 9.0 has "
        "227 KB of scratch.",
        page.table(["model", "cells of a patch", "scratch (KB)", "bytes per cell and step"], scratch),
        "Played by the processor (`--device emulated`, ns per cell and step, minimum / median): tests of "
        f"the kernels, no measure of a card. Machine: {machine}.",
        page.table(["steps", f"{bench.cores} threads"], emulated)]


def passes(command, **settings):
    print("$", *command, flush=True)
    return subprocess.run(command, env={**os.environ, **settings}).returncode == 0


def has_same_bits(build, binaries):
    """Formulas, bodies, the suites of the device on the card, and a whole run."""
    on_card = {"QUILLMERE_TEST_DEVICE": "card"}
    suites = "*OnADevice*:*ADevice*:AdvanceAlone.*:DeviceBackend.*"
    return (passes(["ctest", "--test-dir", build, "-R", "device.", "--output-on-failure"]) and
            passes([f"{binaries}/card_tests"]) and
            passes([f"{binaries}/engine_tests", f"--gtest_filter={suites}"], **on_card))


def is_sane(binaries):
    """What the tools of CUDA find in a short run; true where they are not installed."""
    sanitizer = shutil.which("compute-sanitizer",
                             path=os.environ["PATH"] + ":/usr/local/cuda/bin")
    if sanitizer is None:
        print("compute-sanitizer is not installed: left out")
        return True
    settings = {"QUILLMERE_ENGINE": "device"}
    return all(passes([sanitizer, "--tool", tool, "--error-exitcode", "1",
                       f"{binaries}/bench_run", "5000", "wet", "20", scheme], **settings)
               for tool in ("memcheck", "racecheck", "synccheck") for scheme in ("LHLLC", "HLL2"))


def timings(bench, sizes, copy):
    """A row for every case: time of a step, and the share of the bandwidth of a copy."""
    bytes_per_step = {name: float(count) for name, _, _, count in models(bench, 100000)}
    cases = [(cells, "wet", "LHLLC") for cells in sizes]
    cases += [(sizes[-1], "dry", "LHLLC"), (10_000_000, "sources", "LHLLC"),
              (10_000_000, "sediment", "LHLLC"), (10_000_000, "wet", "HLL1"),
              (10_000_000, "wet", "HLL2")]
    rows = []
    for cells, kind, scheme in cases:
        steps = max(100, min(3000, 3_000_000_000 // cells))
        runs = [bench.run("device", bench.cores, cells, kind, steps, scheme)
                for _ in range(bench.repeats)]
        count, best = runs[0][0], min(report.times(runs))
        model = scheme + (", sediment" if kind == "sediment" else "")
        moved = bytes_per_step[model] / best
        share = "" if kind == "dry" else f"{moved / copy:.0%}"
        rows.append([f"{count:,.0f} {kind}, {scheme}", page.minimum_and_median(report.times(runs)),
                     f"{best * count * 1e-3:,.0f}", share])
        print("  ".join(rows[-1]), flush=True)
    return page.table(["triangles", "ns per cell and step", "us per step", "share of a copy"], rows)


def overhead(bench, option, cells=1_000_000, steps=1500):
    runs = [[bench.run("device", bench.cores, cells, "wet", steps, *options)
             for options in ((), (option,))] for _ in range(bench.repeats)]
    return statistics.median(b[3] / a[3] for a, b in runs)


def with_card(bench, card, sizes):
    name, within, home = card
    return [
        f"{name}: a copy within its memory reads and writes {within} GB/s, one to the host {home} GB/s. "
        "The card gives the bits of the processor: formulas, bodies, and the suites of the device.",
        timings(bench, sizes, float(within)),
        f"Against the same run without, on 1,000,000 triangles, ten snapshots in NetCDF take "
        f"{overhead(bench, 'results'):.2f} of the time, and a report "
        f"{overhead(bench, 'report', steps=200):.2f}."]


def main():
    build, repeats = os.path.abspath(sys.argv[1]), int(sys.argv[2])
    sizes = [int(cells) for cells in sys.argv[3:]] or [100_000, 1_000_000, 10_000_000, 50_000_000]
    binaries = f"{build}/bin"
    bench = report.Bench(binaries, repeats)
    copies = f"{binaries}/bench_card_copy"
    copy = subprocess.run([copies], capture_output=True, text=True) if os.path.exists(copies) else None
    has_card = copy is not None and copy.returncode == 0
    if copy is not None and copy.returncode not in (0, NO_CARD):
        print(f"The copies on the card failed: {copy.stderr}")
        return 1
    if not has_card and "The card gives the bits" in card_section.present():
        print("There is no graphics card: what was measured on one stays on the page.")
        return NO_CARD
    if has_card and not (has_same_bits(build, binaries) and is_sane(binaries)):
        print("The card does not do what the processor does: nothing is measured.")
        return 1
    os.environ["QUILLMERE_DEVICE"] = "emulated"
    parts = [card_section.HEADING, "Written by `scripts/bench.sh device`.", *without_card(build, bench)]
    if has_card:
        os.environ["QUILLMERE_DEVICE"] = "card"
        parts += with_card(bench, copy.stdout.split("\n")[:3], sizes)
    else:
        parts.append("**No card has run it yet**: that one gives these bits, and how long a step takes "
                     "there, is not proven.")
    card_section.write("\n\n".join(parts))
    if has_card:
        return 0
    print("There is no graphics card: nothing was measured on one.")
    return NO_CARD


if __name__ == "__main__":
    sys.exit(main())
