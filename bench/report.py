"""Runs the benchmarks and writes docs/performance.md: report.py BIN_FOLDER REPEATS [CELLS...]."""
import os
import re
import statistics
import sys

import card_section
import work_for_error
from page import machine, minimum_and_median, output_of, shown, table

# Bytes of the columns that a step of the hydrodynamic model with friction moves per cell: state read
# and written, bed, largest depth, highest vertex, area and roughness read, three slots of 2 bytes,
# and one and a half edges of 28 bytes. A new largest depth adds 8.
BYTES_PER_STEP = 2 * 3 * 8 + 5 * 8 + 6 + 1.5 * 28

SCHEMES = ("LHLLC", "HLL1", "HLL2")


class Bench:
    def __init__(self, folder, repeats):
        self.folder = folder
        self.repeats = repeats
        self.cores = os.cpu_count()

    def program(self, name, *arguments, **settings):
        return output_of([f"{self.folder}/{name}", *map(str, arguments)], **settings)

    def run(self, path, threads, cells, kind, *options):
        """Triangles, steps, set-up (s), ns per cell and step, bytes per cell of one run."""
        line = self.program("bench_run", cells, kind, *options, QUILLMERE_ENGINE=path,
                            OMP_NUM_THREADS=threads)
        return [float(word) for word in line.split()]

    def compare(self, cells, kind):
        """Runs of the objects and the tables side by side, `repeats` times."""
        paths = {"objects": ("objects", 1), "one": ("tables", 1), "all": ("tables", self.cores)}
        runs = {name: [] for name in paths}
        for _ in range(self.repeats):
            for name, (path, threads) in paths.items():
                runs[name].append(self.run(path, threads, cells, kind))
        return runs


def times(runs):
    return [run[3] for run in runs]


def median_ratio(over, under):
    return f"{statistics.median(a / b for a, b in zip(times(over), times(under))):.1f}"


def row_of(runs, kind):
    one, every = runs["one"], runs["all"]
    return [f"{one[0][0]:,.0f} {kind}", minimum_and_median(times(runs["objects"])),
            minimum_and_median(times(one)), median_ratio(runs["objects"], one),
            minimum_and_median(times(every)), median_ratio(runs["objects"], every),
            f"{statistics.median(run[2] for run in every):.2f}",
            f"{statistics.median(run[4] for run in every):.0f}"]


def roofline(bench, runs):
    """Share of the measured bandwidth that the largest wet mesh uses."""
    rows = []
    for name, threads in (("one", 1), ("all", bench.cores)):
        bandwidth = float(bench.program("bench_memory", threads))
        used = BYTES_PER_STEP / min(times(runs[name]))
        rows.append([str(threads), f"{bandwidth:.1f}", f"{used:.1f}", f"{used / bandwidth:.0%}"])
    return table(["threads", "streams reach (GB/s)", "the step moves (GB/s)", "share"], rows)


def cost_of_report(bench, cells=300000, steps=1500):
    """Time of a step with a report over that without. So many steps hide the start of the watch, which
    costs as much as about ten."""
    rows = []
    for threads in (1, bench.cores):
        runs = [[bench.run("tables", threads, cells, "wet", steps, *options)
                 for options in ((), ("report",))] for _ in range(bench.repeats)]
        without, having = ([run[3] for run in column] for column in zip(*runs))
        ratio = statistics.median(b / a for a, b in zip(without, having))
        rows.append([str(threads), minimum_and_median(without), minimum_and_median(having),
                     f"{ratio:.3f}"])
    return table(["threads", "without", "with report", "ratio"], rows)


def loss_by_snapshots(bench, cells=300000, steps=3000, snapshots=60):
    """What the loop loses by a snapshot in NetCDF, and how far apart they must be to cost 1 %."""
    rows = []
    for threads in (1, bench.cores):
        lines = [bench.program("bench_run", cells, "wet", steps, "results", snapshots,
                               QUILLMERE_ENGINE="tables", OMP_NUM_THREADS=threads)
                 for _ in range(bench.repeats)]
        found = [re.search(r"takes ([\d.]+) ms from the loop \(a step takes ([\d.]+) ms", line)
                 for line in lines]
        loss, step = (statistics.median(float(match[k]) for match in found) for k in (1, 2))
        rows.append([str(threads), f"{step:.2f}", f"{loss:.1f}", f"{100 * loss / step:.0f}"])
    return table(["threads", "a step (ms)", "a snapshot takes (ms)",
                  "steps between snapshots that cost 1 %"], rows)


def steps_for(cells):
    return max(50, min(4000, 60_000_000 // cells))


def cost_of_schemes(bench, cases):
    """Times of the flux schemes side by side, and the medians of their ratios to the first."""
    rows = []
    for threads in (1, bench.cores):
        for cells, kind in cases:
            steps = steps_for(cells)
            runs = [[bench.run("tables", threads, cells, kind, steps, scheme)
                     for scheme in SCHEMES] for _ in range(bench.repeats)]
            columns = [[run[3] for run in column] for column in zip(*runs)]
            ratios = [statistics.median(b / a for a, b in zip(columns[0], column))
                      for column in columns[1:]]
            rows.append([f"{runs[0][0][0]:,.0f} {kind}", str(threads),
                         *map(minimum_and_median, columns), *(f"{ratio:.2f}" for ratio in ratios)])
    head = ["triangles", "threads", *SCHEMES, *(f"{scheme} / LHLLC" for scheme in SCHEMES[1:])]
    return table(head, rows)


def main():
    bench = Bench(os.path.abspath(sys.argv[1]), int(sys.argv[2]))
    sizes = [int(cells) for cells in sys.argv[3:]] or [3000, 30000, 300000, 3000000]
    before = machine()
    cases = [(cells, "wet") for cells in sizes]
    cases += [(300000, kind) for kind in ("shuffled", "dry", "sediment")]
    measured = {}
    for case in cases:
        measured[case] = bench.compare(*case)
        print("  ".join(row_of(measured[case], case[1])), flush=True)
    largest = measured[(sizes[-1], "wet")]
    parts = [
        "# Performance",
        "Written by `scripts/bench.sh`. A dam break in a channel over an uneven bed with Manning "
        "friction, the loop of the whole program; times in ns per cell and step, minimum / median "
        f"of {bench.repeats} runs side by side; ratios are medians of objects over tables. "
        "*Shuffled* is the same mesh with nodes, cells and edges in random order, *dry* has water in "
        "a tenth of the channel at the start, *sediment* a bed of sand that moves.",
        f"Machine: {before}.",
        table(["triangles", "objects, 1 thread", "tables, 1 thread", "ratio",
               f"tables, {bench.cores} threads", "ratio", "set-up (s)", "bytes per cell (peak)"],
              [row_of(measured[case], case[1]) for case in cases]),
        "## Memory bandwidth",
        f"A step moves {BYTES_PER_STEP:.0f} bytes per cell where the tables do not fit into a cache "
        f"(counted from the columns). On {largest['one'][0][0]:,.0f} triangles:",
        roofline(bench, largest),
        "## With a report",
        "The same times on 299,924 wet triangles with and without `--report`, in pairs; the ratio is "
        "the median of theirs.",
        shown(cost_of_report(bench)),
        "## With results in NetCDF",
        "What a snapshot in `results.nc` takes from the loop on 299,924 wet triangles: the copy of the "
        "fields, and the time in which its writer, a thread of its own, shares the cores and the memory "
        "with the threads of the loop. Medians of the snapshots of a run, each against the steps around "
        "it, as the machine itself changes its speed by more. Where a core is free, less is lost.",
        shown(loss_by_snapshots(bench)),
        "## Flux schemes",
        "The same runs by each scheme, in turns: ns per cell and step, minimum / median of "
        f"{bench.repeats}, and the medians of the ratios. Steps are those of the scheme: HLL1 and HLL2 "
        "take larger ones where small cells are dry.",
        shown(cost_of_schemes(bench, [(cells, "wet") for cells in sizes] + [(300000, "dry")])),
        "## Work for a given error",
        "[Validation cases](validation.md) on irregular meshes, n squares of two triangles along "
        "their length, on one thread: relative L1 error of the depth, and the time of all steps, the "
        f"shortest of {bench.repeats} runs. The finest mesh of LHLLC against the coarsest one on "
        "which HLL2 is no worse.",
        table(*work_for_error.measure(f"{bench.folder}/quillmere",
                                      "docs/performance/work_for_error.svg", bench.repeats)),
        "![Error of the depth over the time of the steps](performance/work_for_error.svg)",
        "## Files",
        "Reading and writing against formatted streams, and the location of points, on a mesh of "
        f"{min(sizes[-1], 1000000):,} triangles.",
        "```\n" + bench.program("bench_files", min(sizes[-1], 1000000)).rstrip() + "\n```",
    ]
    parts += [section for section in (card_section.present(),) if section]
    with open(card_section.PAGE, "w") as file:
        file.write("\n\n".join(parts) + "\n")
    print(f"Written: {card_section.PAGE}")


if __name__ == "__main__":
    main()
