"""Lakes at rest: what moves although nothing should."""
import filecmp
import os

import numpy as np

from validation import figures, meshes, runner
from validation.case import POSITIVE, Case, Table
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

    def run(self, simulator, n, kind, first="lower", threads=1):
        mesh = meshes.square(SIDE, n, kind)
        setup = Setup(runner.constant(LEVEL), [EARLY, END], bed=self.bed, bed_by=self.bed_by,
                      first=first, zero_depth=self.zero_depth)
        return simulator.simulate(self.folder(n, kind, first, threads), self.title, mesh, setup,
                                  threads)

    def folder(self, n, kind, first="lower", threads=1):
        return f"{kind}_{n}_{first}_{threads}"

    def motion(self, run):
        """Largest |q| (m2/s), speed (m/s) where a millimetre of water is, and change of level (m)
        where the bed lies below it; number of cells where it does not."""
        state, bed = run.states[-1], run.mesh.bed()
        lake, wet = bed < LEVEL, state.h > figures.SHOWN_DEPTH
        q = np.hypot(state.qx, state.qy)
        change = np.abs(state.h + bed - LEVEL)[lake].max()
        return q.max(), (q[wet] / state.h[wet]).max(), change, int((~lake).sum())

    def row(self, name, n, run):
        q, speed, change, dry = self.motion(run)
        return [name, str(n), str(len(run.areas)), str(dry), f"{q:.1e}", f"{speed:.1e}",
                f"{change:.1e}"]

    keys = ["mesh", "n", "triangles", "dry"]
    measures = ["largest q (m²/s)", "largest speed (m/s)", "largest change of level (m)"]

    def measure(self, simulator, result, quick):
        result.tables.append(Table(self.keys, self.measures, []))
        for kind in ("irregular",) if quick else self.kinds:
            self.measure_mesh(simulator, result, quick, kind)
        result.remarks.append("Depths are written with six digits: a change of level shows from "
                              "about 1e-6 m on. The tests of the model hold it to 1e-12 m.")

    def measure_mesh(self, simulator, result, quick, kind, first="lower", is_required=True):
        """Runs a mesh in all its sizes, with the lower, the higher or any cell of an edge named
        first."""
        name = kind if first == "lower" else f"{kind}, {first} cell first"
        for n in self.sizes[:2] if quick else self.sizes:
            run = result.runs[name, n] = self.run(simulator, n, kind, first)
            result.tables[0].rows.append(self.row(name, n, run))
            if is_required:
                result.require_at_most(f"{name}, n = {n}: largest q (m²/s)", self.motion(run)[0],
                                       self.allowed)

    shown = "structured"

    def draw(self, figure, results):
        runs = {scheme: result.runs[self.shown, self.sizes[-1]]
                for scheme, result in results.items()}
        return figures.map_of_speed(figure, runs["LHLLC"], runs)


ROUNDING = ("Rounding: the balance on an edge leaves the same few units in the sixteenth digit in "
            "every step, and nothing brakes what they drive; it grows in proportion to the time.")


class RestWet(Rest):
    name = "rest_wet"
    title = "Lake at rest, all wet"
    tests = ("A lake over a wavy bed lies still for 1000 s. It tests that the thrust of the water "
             "on every edge balances the step of the bed to rounding.")
    limit = "Nothing: this holds to rounding at any order."
    reasons = {"LHLLC": ROUNDING}

    def measure(self, simulator, result, quick):
        super().measure(simulator, result, quick)
        kind, n = list(result.runs)[-1]
        if not quick:
            early, late = (np.hypot(s.qx, s.qy).max() for s in result.runs["irregular", n].states)
            result.remarks.append(f"On the finest irregular mesh the largest q is {early:.1e} m²/s "
                                  f"after {EARLY:.0f} s and {late:.1e} m²/s after {END:.0f} s.")
        self.run(simulator, n, kind, threads=2)
        paths = [os.path.join(simulator.folder, self.folder(n, kind, threads=threads), "out",
                              snapshot_name(END)) for threads in (1, 2)]
        different = 0 if filecmp.cmp(*paths, shallow=False) else 1
        result.require_at_most("snapshots of 1 and 2 threads that differ in any byte", different, 0)


class RestIsland(Rest):
    name = "rest_island_nodes"
    title = "Lake at rest around an island in the nodes"
    tests = ("The same with an island that the mesh's nodes form, so that the shore runs through "
             "cells. It tests the rules for partly wet cells.")
    limit = ("The shore lies where cells are: its place is known to one cell. The edges name the "
             "lower cell first, as the manual asks.")
    second_order = ("Which cell an edge names first does not matter to it: the criterion is asked "
                    "of both ways.")
    reasons = {"LHLLC": ROUNDING}
    bed = staticmethod(island)

    def measure(self, simulator, result, quick):
        super().measure(simulator, result, quick)
        self.measure_mesh(simulator, result, quick, "irregular", "higher",
                          simulator.scheme in POSITIVE)


class RestBedFile(RestIsland):
    name = "rest_island_bed_file"
    title = "Lake at rest around an island of a bed file"
    tests = ("The same island given by a bed file, one level per cell, over flat nodes. The rule "
             "for partly wet cells, which looks at the nodes, then does nothing, and all depends "
             "on the flux.")
    limit = ("At an edge between a wet cell and a higher dry one, the thrust on the right cell is "
             "taken with the sign of a step that goes down. If the wet cell is the left one, it is "
             "balanced; if it is the right one, it is not, and water circulates along the shore. "
             "The criterion is therefore asked of edges that name the lower cell first; the rows "
             "“any cell first” and “higher cell first” measure the spurious flow without that.")
    reasons = {"LHLLC": ROUNDING + " A larger flow comes from a cell whose film of water is "
               "thinner than the zero depth (here the default, 1e-4 m): the flux takes it for dry "
               "although its level is that of the lake, and its neighbours feel a step that is not "
               "there."}
    bed_by = "file"
    shown = "structured, any cell first"

    def measure(self, simulator, result, quick):
        super().measure(simulator, result, quick)
        self.measure_mesh(simulator, result, quick, "structured", "any",
                          simulator.scheme in POSITIVE)
        n = self.sizes[1 if quick else -1]
        celerity = np.sqrt(runner.GRAVITY * 0.75)  # over the mean bed
        worst = self.motion(result.runs[self.shown, n])[1]
        result.remarks.append(f"With any cell first the spurious flow reaches {worst:.2g} m/s "
                              f"after {END:.0f} s, against {celerity:.2g} m/s of a wave in this "
                              "lake.")
        if not quick:
            thin = RestBedFile()
            thin.zero_depth = 1e-7
            q = thin.motion(thin.run(simulator, n, "irregular"))[0]
            result.remarks.append("With the lower cell first and a zero depth of 1e-7 m, below any "
                                  f"film of this lake, the irregular mesh of n = {n} has {q:.1e} "
                                  "m²/s.")


CASES = [RestWet(), RestIsland(), RestBedFile()]
