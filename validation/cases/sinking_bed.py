"""A channel whose bed sinks evenly under Meyer-Peter and Mueller transport."""
import numpy as np

from validation import figures, input_files, norms
from validation.case import AnalyticCase, Table
from validation.runner import GRAVITY, Setup, constant

g = GRAVITY
L, Q, D, S, N = 100.0, 2.0, 0.005, 2.65, 0.025  # m, m2/s, m, -, s/m^(1/3)
THETA_C, POROSITY, BETA, ALPHA = 0.047, 0.4, 1e-4, 4e-6  # -, -, m2/s, m/s
LAYER = 0.5  # m
SHOWN_FROM = 10.0  # m


def shields(x):
    """Shields number that carries q_b = beta + alpha x."""
    return THETA_C + ((BETA + ALPHA * x) / (8 * np.sqrt((S - 1) * g * D ** 3))) ** (2 / 3)


def velocity(x):
    return (shields(x) * (S - 1) * D * np.cbrt(Q) / N ** 2) ** (3 / 7)


def depth(x):
    return Q / velocity(x)


class Bed:
    """Initial bed with z(L) = 0, from dz/dx = -d(u^2/2g + h)/dx - Sf by trapezoids."""

    def __init__(self, intervals=20000):
        self.x = np.linspace(0, L, intervals + 1)
        u = velocity(self.x)
        slope = N ** 2 * u ** (10 / 3) / Q ** (4 / 3)
        losses = np.append(0, np.cumsum(0.5 * (slope[1:] + slope[:-1]) * np.diff(self.x)))
        energy = u ** 2 / (2 * g) + Q / u + losses
        self.z = energy[-1] - energy

    def __call__(self, x, y=None):
        return np.interp(x, self.x, self.z)


def sunk(t):
    """How far the bed has sunk, m."""
    return ALPHA * t / (1 - POROSITY)


class SinkingBed(AnalyticCase):
    name = "sinking_bed"
    title = "Sinking bed under Meyer-Peter and Müller transport"
    tests = ("The transport grows linearly along a channel, so that the whole bed sinks at one "
             "rate under a steady flow: an exact unsteady solution of the coupled equations with "
             "Manning friction. It tests the bed load, the balance of the bed and their coupling.")
    source = ("The construction of Berthon, Cordier, Delestre and Le (2012), C. R. Math. 350, "
              "183–186, carried over from Grass's law to that of Meyer-Peter and Müller (1948): "
              "choose q_b = beta + alpha x, find the Shields number, from it u and h, and z from "
              "the steady momentum equation.")
    limit = ("The inflow feeds no sediment, so a scour runs down from the inlet: compared is only "
             "what lies beyond its reach, from 40 to 95 m. The weak coupling would need care near "
             "critical flow, which this case, with Froude numbers from 0.29 to 0.44, avoids.")
    second_order = "It knows no sediments; this case runs by LHLLC alone."
    sizes = (50, 100, 200)
    kinds = ("structured",)
    quick_kind, quick_sizes = "structured", 1
    schemes = ("LHLLC",)  # HLL2 knows no sediments
    length, times = L, (900.0,)
    bed_tolerance = 0.05

    bed = Bed()

    def setup(self, mesh):
        # The level boundary counts its depth from the rigid floor of its cell.
        outlet = mesh.left[mesh.edges_on("east")]
        floor = float(self.bed(mesh.centres()[outlet, 0])[0]) - LAYER
        parameters = {"sediments mean grain diameter": D, "sediments density": S,
                      "sediments friction coefficient": N, "sediments porosity": POROSITY}
        return Setup(lambda x, y: self.bed(x) + depth(x), self.times, qx=constant(Q),
                     bed=lambda x, y: self.bed(x) - LAYER, bed_by="file", first="any",
                     manning=constant(N), sediment=(constant(LAYER), parameters), zero_depth=1e-4,
                     boundaries={"west": (input_files.DISCHARGE, repr(-Q)),
                                 "east": (input_files.LEVEL, repr(floor + float(depth(L))))})

    def exact(self, x, y, t):
        return depth(x), np.full_like(x, Q), np.zeros_like(x)

    def compared(self, x, y):
        return (x > 40) & (x < 95)

    def bed_error(self, run):
        """Mean absolute error of the bed, relative to how far it has sunk."""
        at, state = self.compared(run.x, run.y), run.states[-1]
        error = np.abs(state.zb - self.bed(run.x) + sunk(state.time))[at]
        return float(np.average(error, weights=run.areas[at]) / sunk(state.time))

    def measure(self, simulator, result, quick):
        super().measure(simulator, result, quick)
        runs = result.runs["structured"]
        errors = [self.bed_error(run) for run in runs.values()]
        orders = norms.observed_orders([run.mesh.size for run in runs.values()], errors)
        rows = [[str(n), f"{100 * e:.2f} %", "" if o is None else f"{o:.2f}"]
                for n, e, o in zip(runs, errors, orders)]
        result.tables.append(Table(["n"], ["error of the bed, of its sinking", "order"], rows))
        result.require_at_most("error of the bed relative to its sinking, worst mesh; the "
                               "tolerance of the depth", max(errors), self.bed_tolerance)

    def draw(self, figure, results):
        x = np.linspace(0, L, 300)
        runs = results["LHLLC"].runs["structured"]
        levels, sinking = [], []
        for n in (min(runs), max(runs)):
            run = runs[n]
            order = np.argsort(run.x)
            beyond = order[run.x[order] > SHOWN_FROM]
            sinking.append((f"n = {n}", "LHLLC", run.x[beyond],
                            1000 * (run.states[-1].zb - self.bed(run.x))[beyond]))
            levels.append((f"n = {n}", "LHLLC", run.x[order], run.states[-1].h[order]))
        t = run.states[-1].time
        levels.append(("exact", None, x, depth(x)))
        x = x[x > SHOWN_FROM]
        sinking.append(("exact", None, x, np.full_like(x, -1000 * sunk(t))))
        figures.curves(figure, [(f"t = {t:.0f} s", "x (m)", "depth (m)", levels),
                                (f"t = {t:.0f} s", "x (m)", "change of the bed (mm)", sinking)])
        return (f"Left: depth. Right: how far the bed has sunk beyond {SHOWN_FROM:g} m; before, "
                "the scour is much deeper.")


CASES = [SinkingBed()]
