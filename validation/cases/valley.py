"""A steep valley that drains to the last drop."""
import numpy as np

from validation import figures, input_files, meshes
from validation.case import Case, Table
from validation.runner import GRAVITY, Setup, constant

LENGTH, WIDTH = 300.0, 90.0  # m
SLOPE, FLANK = 0.3, 0.5  # along the valley, and of its sides
LEVEL, SHORE, MANNING = 95.0, 80.0, 0.04  # of the lake at its head: m, its end, m; s/m^(1/3)


def bed(x, y):
    return SLOPE * (LENGTH - x) + FLANK * np.abs(y - WIDTH / 2)


class DrainingValley(Case):
    name = "draining_valley"
    title = "Steep valley that drains"
    tests = ("A lake at the head of a valley, which falls by 30 % between sides of 50 %, is let "
             "go; after 50 minutes nearly nothing is left. It tests that water runs off steep "
             "ground, down to the last drop, with no depth below zero and no water made.")
    source = ("Conservation of volume; no velocity can be larger than that of a fall from the "
              "level of the lake to the outlet, without friction: sqrt(2 g H), 43 m/s.")
    limit = ("Thin water on a fall from cell to cell that is many times its depth takes more from "
             "a cell than it holds.")
    reasons = {"LHLLC": "See above. Depths below zero lie beside others that are too large by as "
               "much, so that the books close."}
    sizes = (30, 60)
    times = tuple(100.0 * k for k in range(1, 31))
    head = LEVEL  # above the lowest bed, m
    # Chosen before the runs: what may stay; the books of the run.
    allowed_rest, allowed_books = 2e-3, 1e-9

    def run(self, simulator, n):
        mesh = meshes.Rectangle(LENGTH, WIDTH, n, round(n * WIDTH / LENGTH), "irregular")

        def level(x, y):
            return np.where(x < SHORE, np.maximum(LEVEL, mesh.bed()), mesh.bed())

        setup = Setup(level, self.times, bed=bed, manning=constant(MANNING), zero_depth=1e-4,
                      boundaries={"east": (input_files.TRANSMISSIVE, None)})
        return simulator.simulate(str(n), self.title, mesh, setup)

    def measure(self, simulator, result, quick):
        rows = []
        for n in self.sizes[:1] if quick else self.sizes:
            run = result.runs[n] = self.run(simulator, n)
            water = run.report["water"]
            wet = np.sum(np.maximum(run.states[-1].h, 0) * run.areas)
            rest, books = wet / water["initial_m3"], abs(water["relative_error"])
            lowest = min(state.h.min() for state in run.states)
            fastest = run.report["velocity"]["largest"]["m_per_s"]
            rows.append([str(n), str(len(run.areas)), f"{water['initial_m3']:.0f}",
                         f"{100 * rest:.2g} %", f"{lowest:.2g}",
                         str(max(int((state.h < 0).sum()) for state in run.states)),
                         f"{fastest:.1f}", f"{books:.0e}"])
            for text, measured, bound in (
                    ("lowest depth in a snapshot, below zero (m)", max(-lowest, 0.0), 0.0),
                    ("share of the water above zero that is left", rest, self.allowed_rest),
                    ("largest velocity (m/s)", fastest, np.sqrt(2 * GRAVITY * self.head)),
                    ("books of the run", books, self.allowed_books)):
                result.require_at_most(f"n = {n}: {text}", measured, bound)
        result.tables.append(Table(["n", "triangles", "water at first (m³)"],
                                   ["left above zero", "lowest depth (m)", "most cells below zero",
                                    "largest velocity (m/s)", "books"], rows))
        result.remarks.append("Lowest depths and cells below zero are those of the snapshots, "
                              "every 100 s.")

    def draw(self, figure, results):
        volumes, depths = [], []
        for scheme, result in results.items():
            run = result.runs[self.sizes[-1]]
            t = [state.time for state in run.states]
            left = [np.sum(np.maximum(state.h, 0) * run.areas) for state in run.states]
            volumes.append(("", scheme, t, left))
            depths.append(("", scheme, t, [1000 * state.h.min() for state in run.states]))
        figures.curves(figure, [("", "t (s)", "water above zero (m³)", volumes),
                                ("", "t (s)", "lowest depth (mm)", depths)])
        figure.axes[0].set_yscale("log")
        return f"Left: what is left above zero. Right: lowest depth. {figures.COLOUR_WORDS}."


CASES = [DrainingValley()]
