"""Lakes at rest: what moves although nothing should."""
import filecmp
import os

import numpy as np

from validation import figures, meshes, runner
from validation.case import Case, Result, Table
from validation.runner import Setup, snapshot_name

SIDE = 40.0  # m
LEVEL = 0.0
EARLY, END = 100.0, 1000.0  # s


def wavy(x, y):
    """A bed between -1 and -0.5 m."""
    return -0.75 + 0.25 * np.sin(0.5 * x) * np.cos(0.4 * y)


def island(x, y):
    """The same with a round island that rises to 0.6 m."""
    return np.maximum(wavy(x, y), 0.6 - 0.12 * np.hypot(x - SIDE / 2, y - SIDE / 2))


class Rest(Case):
    """A lake on a square, under a horizontal surface, for 1000 s."""

    sizes = (10, 20, 40)
    kinds = ("structured", "irregular", "rotated")
    bed, bed_by = staticmethod(wavy), "nodes"
    allowed = 1e-12  # m2/s
    source = ("A horizontal surface over any bed is a steady solution (the C-property of Bermúdez "
              "and Vázquez, 1994, Comput. Fluids 23, 1049–1071).")

    zero_depth = 1e-4  # m, the simulator's default

    def run(self, folder, n, kind, uphill=True, threads=1):
        mesh = meshes.square(SIDE, n, kind)
        setup = Setup(runner.constant(LEVEL), [EARLY, END], bed=self.bed, bed_by=self.bed_by,
                      uphill=uphill, zero_depth=self.zero_depth)
        folder = os.path.join(folder, f"{kind}_{n}_{uphill}_{threads}")
        return runner.simulate(folder, self.title, mesh, setup, threads)

    def measure(self, run):
        """Largest |q| (m2/s), speed (m/s) where a millimetre of water is, and change of level (m)
        where the bed lies below it; number of cells where it does not."""
        state, bed = run.states[-1], run.mesh.bed()
        lake, wet = bed < LEVEL, state.h > figures.SHOWN_DEPTH
        q = np.hypot(state.qx, state.qy)
        change = np.abs(state.h + bed - LEVEL)[lake].max()
        return q.max(), (q[wet] / state.h[wet]).max(), change, int((~lake).sum())

    def row(self, kind, n, run):
        q, speed, change, dry = self.measure(run)
        return [kind, str(n), str(len(run.areas)), str(dry), f"{q:.1e}", f"{speed:.1e}",
                f"{change:.1e}"]

    titles = ["mesh", "n", "triangles", "dry", "largest q (m²/s)", "largest speed (m/s)",
              "largest change of level (m)"]

    def evaluate(self, folder, quick=False):
        result, rows, self.runs = Result(), [], {}
        for kind in self.kinds[:1] if quick else self.kinds:
            for n in self.sizes[:2] if quick else self.sizes:
                run = self.runs[kind, n] = self.run(folder, n, kind)
                rows.append(self.row(kind, n, run))
                result.require_at_most(f"{kind}, n = {n}: largest q (m²/s)", self.measure(run)[0],
                                       self.allowed)
        result.tables.append(Table(self.titles, rows))
        result.remarks.append("Depths are written with six digits: a change of level shows from "
                              "about 1e-6 m on. The tests of the model hold it to 1e-12 m.")
        return result

    def draw(self, figure):
        n = max(n for _, n in self.runs)
        return figures.map_of_speed(figure, self.runs["structured", n], LEVEL)


ROUNDING = ("Rounding: the balance on an edge leaves the same few units in the sixteenth digit in "
            "every step, and nothing brakes what they drive; it grows in proportion to the time.")


class RestWet(Rest):
    name = "rest_wet"
    title = "Lake at rest, all wet"
    tests = ("A lake over a wavy bed lies still for 1000 s. It tests that the thrust of the water "
             "on every edge balances the step of the bed to rounding.")
    limit = "Nothing: this holds to rounding at any order."
    reason = ROUNDING

    def evaluate(self, folder, quick=False):
        result = super().evaluate(folder, quick)
        kind, n = list(self.runs)[-1]
        if not quick:
            early, late = (np.hypot(s.qx, s.qy).max() for s in self.runs["irregular", n].states)
            result.remarks.append(f"On the finest irregular mesh the largest q is {early:.1e} m²/s "
                                  f"after {EARLY:.0f} s and {late:.1e} m²/s after {END:.0f} s.")
        folders = [os.path.join(folder, f"{kind}_{n}_True_{threads}") for threads in (1, 2)]
        self.run(folder, n, kind, threads=2)
        paths = [os.path.join(f, "out", snapshot_name(END)) for f in folders]
        different = 0 if filecmp.cmp(*paths, shallow=False) else 1
        result.require_at_most("snapshots of 1 and 2 threads that differ in any byte", different, 0)
        return result


class RestIsland(Rest):
    name = "rest_island_nodes"
    title = "Lake at rest around an island in the nodes"
    tests = ("The same with an island that the mesh's nodes form, so that the shore runs through "
             "cells. It tests the rules for partly wet cells.")
    limit = ("The shore lies where cells are: its place is known to one cell. The edges name the "
             "lower cell first, as the manual asks.")
    reason = ROUNDING
    bed = staticmethod(island)


class RestBedFile(Rest):
    name = "rest_island_bed_file"
    title = "Lake at rest around an island of a bed file"
    tests = ("The same island given by a bed file, one level per cell, over flat nodes. The rule "
             "for partly wet cells, which looks at the nodes, then does nothing, and all depends "
             "on the flux.")
    limit = ("At an edge between a wet cell and a higher dry one, the thrust on the right cell is "
             "taken with the sign of a step that goes down. If the wet cell is the left one, it is "
             "balanced; if it is the right one, it is not, and water circulates along the shore. "
             "The criterion is therefore asked of edges that name the lower cell first; the rows "
             "“edges in any order” measure the spurious flow without that.")
    reason = (ROUNDING + " A larger flow comes from a cell whose film of water is thinner than the "
              "zero depth (here the default, 1e-4 m): the flux takes it for dry although its "
              "level is that of the lake, and its neighbours feel a step that is not there.")
    bed, bed_by = staticmethod(island), "file"

    def evaluate(self, folder, quick=False):
        result = super().evaluate(folder, quick)
        rows, worst = [], 0.0
        for n in self.sizes[:2] if quick else self.sizes:
            run = self.run(folder, n, "structured", uphill=False)
            self.runs["edges in any order", n] = run
            rows.append(self.row("edges in any order", n, run))
            worst = max(worst, self.measure(run)[1])
        result.tables[0].rows += rows
        celerity = np.sqrt(runner.GRAVITY * 0.75)  # over the mean bed
        result.remarks.append(f"With edges in any order the spurious flow reaches {worst:.2g} m/s "
                              f"after {END:.0f} s, against {celerity:.2g} m/s of a wave in this "
                              "lake. The figure shows it.")
        if not quick:
            thin = RestBedFile()
            thin.zero_depth = 1e-7
            q = thin.measure(thin.run(folder, n, "irregular"))[0]
            result.remarks.append("With edges in order and a zero depth of 1e-7 m, below any film "
                                  f"of this lake, the irregular mesh of n = {n} has {q:.1e} m²/s.")
        return result

    def draw(self, figure):
        n = max(n for _, n in self.runs)
        return figures.map_of_speed(figure, self.runs["edges in any order", n], LEVEL)


CASES = [RestWet(), RestIsland(), RestBedFile()]
