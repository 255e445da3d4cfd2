"""Measures how ranks scale and writes docs/scaling.md:
scaling.py BIN_FOLDER MPIEXEC REPEATS [CELLS...], with the meshes of the comparison of ranks and
threads. MEMORY_CELLS sets the mesh on which memory is measured, STEPS the length of the runs on ranks
of one process, QUILLMERE_FLOOD_DATA the folder of the data of the real flood."""
import math
import os
import shutil
import statistics
import subprocess
import sys
import tempfile

import scaling_model
from page import machine, minimum_and_median, shown, table

FLOOD = "QUILLMERE_FLOOD_DATA"
# Any user may start more ranks than cores, none of them bound to one.
SETTINGS = {"OMPI_ALLOW_RUN_AS_ROOT": "1", "OMPI_ALLOW_RUN_AS_ROOT_CONFIRM": "1",
            "OMPI_MCA_rmaps_base_oversubscribe": "1", "OMPI_MCA_mpi_yield_when_idle": "1",
            "OMPI_MCA_hwloc_base_binding_policy": "none"}
WHOLE_FLOOD = 14_000  # steps; it ends before
ABOUT_FLOOD = (
    "While the flood spreads, few cells are wet (in its first 3,000 steps 65 of the 765 of each of 64 "
    "ranks in the mean), and soon others. A patch of 32 cells takes part as soon as one of them does. "
    "To move cells more often would make these ranks more even and their steps slower: a move takes "
    "as long as some 200 steps of so few cells.")
FEWEST_CELLS = 1000  # of the mesh that tells what a step takes besides its cells


def steps_for(cells):
    """So many that what a run writes at its end does not count."""
    return max(150, min(3000, 30_000_000 // cells))


def free_memory():
    """MB."""
    with open("/proc/meminfo") as lines:
        kilobytes = next(int(line.split()[1]) for line in lines if line.startswith("MemAvailable"))
    return kilobytes / 1000


class Scaling:
    def __init__(self, folder, mpiexec, repeats):
        self.folder = os.path.abspath(folder)
        self.mpiexec = mpiexec
        self.repeats = repeats
        self.most_messages = 0.0  # of a rank and step, as cells move
        self.cases = tempfile.mkdtemp(prefix="quillmere_scaling_")

    def output(self, *command, **settings):
        environment = {**os.environ, **SETTINGS,
                       **{name: str(value) for name, value in settings.items()}}
        done = subprocess.run([str(word) for word in command], env=environment, text=True,
                              capture_output=True)
        if done.returncode != 0:
            sys.exit(f"{' '.join(map(str, command))} ended with {done.returncode}:\n{done.stderr}")
        return [float(word) for word in done.stdout.split()]

    def case(self, cells, kind, steps):
        """The folder of a case, which is written once."""
        folder = os.path.join(self.cases, f"{kind}_{cells}_{steps}")
        if not os.path.isdir(folder):
            os.mkdir(folder)
            self.output(f"{self.folder}/bench_case", folder, cells, kind, steps)
        return folder

    def job(self, case, ranks, threads=1):
        """Cells, steps, set-up (s), ns per cell and step, peak memory of every rank (MB)."""
        return self.output(self.mpiexec, "-n", ranks, f"{self.folder}/bench_mpi", case,
                           OMP_NUM_THREADS=threads)

    def in_process(self, case, ranks, steps, *options):
        """What bench_ranks prints, by name."""
        names = ("cells", "ranks", "steps", "imbalance", "later_imbalance", "imbalance_of_cells",
                 "recuts", "moving", "messages", "bytes", "reductions", "orders")
        return dict(zip(names, self.output(f"{self.folder}/bench_ranks", case, ranks, steps,
                                           *options)))

    # Sections of the page.

    def ranks_and_threads(self, sizes):
        rows = []
        for cells in sizes:
            case = self.case(cells, "wet", steps_for(cells))
            rounds = [[self.job(case, *how) for how in ((1, 1), (1, 2), (2, 1))]
                      for _ in range(self.repeats)]
            one, threads, ranks = ([run[3] for run in column] for column in zip(*rounds))
            ratio = statistics.median(b / a for a, b in zip(threads, ranks))
            rows.append([f"{rounds[0][0][0]:,.0f}", *map(minimum_and_median, (one, threads, ranks)),
                         f"{ratio:.2f}"])
        return table(["wet triangles", "1 rank, 1 thread", "1 rank, 2 threads", "2 ranks, 1 thread",
                      "ranks / threads"], rows)

    def messages(self, cells):
        rows = []
        case = self.case(cells, "wet", 10_000)
        for ranks in (2, 4, 16, 64):
            run = self.in_process(case, ranks, 128, "fixed")
            ghosts = scaling_model.GHOSTS * math.sqrt(run["cells"] / ranks)
            rows.append([f"{ranks}", f"{run['messages']:.2f}", f"{run['bytes']:,.0f}",
                         f"{scaling_model.BYTES_PER_GHOST * ghosts:,.0f}",
                         f"{run['reductions']:.3f}", f"{run['orders']:.3f}"])
        return table(["ranks", "messages of a rank", "bytes of a rank", "planned, at most",
                      "reductions", "orders"], rows)

    def memory(self, cells):
        case = self.case(cells, "wet", 10)
        rows, left_out, alone = [], "", None
        for ranks in (1, 2, 4, 8, 16):
            # What all ranks take grows with their number, if at all, by what the others do not share.
            needed = 310e-6 * cells if alone is None else sum(last) * 1.3
            if needed > free_memory():
                left_out = (f"\n\nFrom {ranks} ranks on it may not fit into the memory of this "
                            f"machine ({free_memory():,.0f} MB are free), and was left out.")
                break
            run = self.job(case, ranks)
            last = run[4:]
            alone = alone or last[0]
            limit = 1.25 * alone / ranks + 60
            rows.append([f"{ranks}", f"{run[2]:.1f}", f"{max(last):,.0f}", f"{limit:,.0f}"])
        shutil.rmtree(case)
        return table(["ranks", "set-up (s)", "largest of all (MB)", "1.25 shares + 60 (MB)"],
                     rows) + left_out

    def balance(self, steps):
        cases = [("all wet", self.case(300_000, "wet", 10_000), 640),
                 ("dam break, 90 % dry", self.case(300_000, "dry", 10_000), steps),
                 ("dam break, 90 % dry", self.case(1_000_000, "dry", 10_000), steps)]
        flood = os.environ.get(FLOOD)
        if flood:
            cases += [("flood in a town", os.path.join(flood, "case"), count)
                      for count in (steps, WHOLE_FLOOD)]
        rows = []
        for name, case, count in cases:
            for ranks in (16, 64):
                fixed = self.in_process(case, ranks, count, "fixed")
                balanced = self.in_process(case, ranks, count)
                self.most_messages = max(self.most_messages, balanced["messages"])
                rows.append([name, f"{balanced['cells']:,.0f}", f"{ranks}",
                             f"{balanced['steps']:,.0f}", f"{fixed['imbalance']:.2f}",
                             f"{balanced['imbalance']:.2f}", f"{balanced['later_imbalance']:.2f}",
                             f"{balanced['imbalance_of_cells']:.2f}", f"{balanced['recuts']:.0f}",
                             f"{balanced['moving']:.2f}", f"{fixed['messages']:.0f}",
                             f"{balanced['messages']:.0f}"])
        note = ABOUT_FLOOD if flood else (f"The real flood was left out: `{FLOOD}` does not name the "
                                          "folder of its data.")
        return table(["case", "triangles", "ranks", "steps", "cells stay", "cells move",
                      "its second half", "by cells", "moves", "their time", "messages, stay",
                      "messages, move"], rows) + "\n\n" + note

    def measured_model(self, cells):
        """Of the time of a cell on `cells` triangles, and what a step takes besides."""
        def step(mesh):
            case = self.case(mesh, "wet", steps_for(mesh))
            runs = [self.job(case, 1) for _ in range(self.repeats)]
            return statistics.median(run[3] * run[0] for run in runs) * 1e-9, runs[0][0]
        many, few = step(cells), step(FEWEST_CELLS)
        per_cell = (many[0] - few[0]) / (many[1] - few[1])
        return scaling_model.Model(per_cell, max(0.0, few[0] - per_cell * few[1]))


def percent(share):
    return f"{share:.0%}".replace("%", " %")


def duration(seconds):
    return f"{seconds * 1e6:,.0f} µs" if seconds < 1e-3 else f"{seconds * 1e3:,.1f} ms"


def of_ranks(numbers):
    return ["1 rank" if count == 1 else f"{count:,} ranks" for count in numbers]


def weak_table(model):
    ranks = (4, 16, 64, 256, 1024, 4096)
    rows = [[f"{cells:,}"] + [percent(model.efficiency(cells * count, count)) for count in ranks]
            for cells in (1000, 3000, 10_000, 100_000, 10 ** 10 // 4096)]
    return table(["cells of a rank"] + of_ranks(ranks), rows)


def strong_table(model):
    ranks = (1, 16, 64, 256, 1024, 4096, 16384)
    rows = [[f"{cells:.0e}".replace("e+0", "e")] +
            [f"{duration(model.step(cells, count))}, {percent(model.strong_efficiency(cells, count))}"
             for count in ranks] for cells in (10 ** 7, 10 ** 9)]
    return table(["cells"] + of_ranks(ranks), rows)


def ends(model):
    rows = []
    for cells in (10 ** 7, 10 ** 9):
        ranks = model.most_ranks(cells, 0.8)
        rows.append([f"{cells:.0e}".replace("e+0", "e"), f"{ranks:,}", f"{cells / ranks:,.0f}",
                     duration(model.step(cells, ranks))])
    return table(["cells", "ranks", "cells of each", "a step"], rows)


def main():
    scaling = Scaling(sys.argv[1], sys.argv[2], int(sys.argv[3]))
    sizes = [int(cells) for cells in sys.argv[4:]] or [300_000, 3_000_000]
    memory_cells = int(os.environ.get("MEMORY_CELLS", 10_000_000))
    steps = int(os.environ.get("STEPS", 3000))
    before = machine()
    try:
        parts = page(scaling, sizes, memory_cells, steps, before)
    finally:
        shutil.rmtree(scaling.cases)
    with open("docs/scaling.md", "w") as file:
        file.write("\n\n".join(parts) + "\n")
    print("Written: docs/scaling.md")


def page(scaling, sizes, memory_cells, steps, before):
    model = scaling.measured_model(sizes[0])
    return [
        "# How ranks scale",
        "Written by `scripts/bench.sh scaling`. The dam break in a channel of "
        "[the performance page](performance.md), on the ranks of an MPI job or, where it is said, on "
        "ranks that are threads of one process. What more machines than one do was not measured: "
        "the last section computes it.",
        f"Machine: {before}.",
        "## Ranks against threads",
        "The loop of the whole program on both cores: ns per cell and step, minimum / median of "
        f"{scaling.repeats} runs side by side, and the median of the ratios.",
        shown(scaling.ranks_and_threads(sizes)),
        "## What ranks tell each other",
        "Counted on ranks of one process, per step, while the program has nothing to write: messages "
        "of a rank to its neighbours, and their bytes, as means over the ranks; reductions in which "
        "all take part; orders of rank 0. The plan is a message to every neighbour of 24 bytes per "
        "ghost, of which n cells have at most 4.6 √n, one reduction, and no order. What there is "
        "more comes from the looks at the balance of the ranks, every 64 steps.",
        shown(scaling.messages(300_000)),
        "## Memory",
        f"Peak of every process on a mesh of about {memory_cells:,} triangles. All ranks read the case together.",
        shown(scaling.memory(memory_cells)),
        "## Balance",
        "Time of the busiest rank over the mean of all, summed up over the looks of a run, every 64 "
        "steps: 1 is even, 2 means that half of the time is spent in waiting. By the time that the "
        "threads of ranks in one process have a core, so that neither the number of cores nor other "
        "load takes part in it; but where many threads share few cores, each finds its caches cold. "
        "How much of the figures that is, the rows of a mesh that is all wet show, where all ranks "
        "have the same to do. First with the cells that ranks begin with, then as cells move, and the "
        "second half of those steps by itself. By cells: the same of the numbers of cells that ranks "
        "computed as cells move, which no noise reaches. Their time: what the moves took the busiest "
        "rank, over the mean time of a rank for all steps. Messages: of a rank in a step.",
        "Cells move first before the first step, and then once waiting has cost as much as the last "
        "move. Every rank gets a part of the water and of each of several bands around it, so that it "
        "has more neighbours than with one run of the curve. Bands are in the order in which water is "
        "expected: by the way from the water, on which a metre of climb counts as 40 m.",
        "The goal is 1.2.",
        shown(scaling.balance(steps)),
        "## Many machines: a model",
        "Time of a step = cells of a rank · time of a cell + time of a step besides + messages + what "
        "of them is not hidden behind the patches in the interior + the reduction. Measured: "
        f"{model.per_cell * 1e9:.1f} ns per cell and {model.per_step * 1e6:.1f} µs besides, on one "
        "core. Assumed, not measured:",
        table(["what", "assumed"], scaling_model.ASSUMPTIONS),
        "Ranks are cores here, and all have the same to do. Outputs are left out. With a rank per "
        "NUMA domain and threads inside there are fewer ranks and larger ones.",
        "Weak scaling: time of a step on one rank over that on so many, each with as many cells; the "
        "last row reaches 1e10 cells.",
        shown(weak_table(model)),
        "Strong scaling: time of a step, and the time on one rank over that of all.",
        shown(strong_table(model)),
        "Where an efficiency of 80 % ends:",
        shown(ends(model)),
        f"On 4,096 ranks, 80 % takes {model.fewest_cells(4096, 0.8):,.0f} cells of each or more; with "
        f"{scaling.most_messages:.0f} neighbours, the most that ranks have above where their cells move, "
        f"{model.with_neighbours(scaling.most_messages).fewest_cells(4096, 0.8):,.0f} that take part "
        "in the step.",
    ]


if __name__ == "__main__":
    main()
