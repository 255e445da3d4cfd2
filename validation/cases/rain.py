"""Rain on a plane against the kinematic wave."""
import numpy as np

from validation import figures, norms
from validation.case import AnalyticCase
from validation.meshes import mesh_tools
from validation.runner import Setup, constant

LENGTH, SLOPE, MANNING = 182.88, 0.0016, 0.025
INTENSITY, DURATION = 50.8e-3 / 3600, 1800.0  # m/s, s
END = 3600.0
ALPHA, M = np.sqrt(SLOPE) / MANNING, 5 / 3
TIME_OF_CONCENTRATION = (LENGTH / (ALPHA * INTENSITY ** (M - 1))) ** (1 / M)


def depth(x, t):
    """Depth of the kinematic wave at distances x from the top, for a rain that lasts longer than
    the time of concentration."""
    rising = np.minimum(INTENSITY * min(t, DURATION), (INTENSITY * x / ALPHA) ** (1 / M))
    if t <= DURATION:
        return rising
    # After the rain each depth h travels at alpha m h^(m-1) from where it was: bisection for h.
    low, high = np.zeros_like(rising), (INTENSITY * x / ALPHA) ** (1 / M)
    for _ in range(60):
        h = 0.5 * (low + high)
        reach = ALPHA * h ** M / INTENSITY + ALPHA * M * h ** (M - 1) * (t - DURATION)
        low, high = np.where(reach < x, h, low), np.where(reach < x, high, h)
    return high


def discharge(x, t):
    """Unit discharge, m2/s."""
    return ALPHA * depth(x, t) ** M


class Rain(AnalyticCase):
    name = "rain_on_plane"
    title = "Rain on a plane (kinematic wave)"
    tests = ("Rain of 50.8 mm/h falls for 30 minutes on a plane 183 m long; a film of at most some 10 mm runs "
             "off. It tests rain, friction in thin water, and wetting and drying everywhere at once.")
    source = ("Kinematic wave with Manning friction by characteristics: Henderson and Wooding (1964), J. "
              "Geophys. Res. 69, 1531–1540. The simulator solves the full equations, which differ a "
              "little. Compared at 1800 s, when the flow is steady.")
    limit = ("Where the bed falls from cell to cell by a good part of the depth, the first-order flux, which "
             "contains the difference of the levels, carries more water than friction allows: the film is "
             "too thin and its rise too slow until the cells are small. The time step follows the depth "
             "before the rain: with a zero depth far below the 1 mm used here, a film is given minutes in one "
             "step, and rain falls in lumps.")
    reason = ("The fall of one cell is not small against the depth; the error falls with the first order.")
    sizes = (50, 100, 200, 400)
    quick_sizes = 4
    kinds = ("structured", "irregular")
    times = (600.0, 1800.0)
    interval = 60.0
    length = LENGTH

    def bed(self, x, y=None):
        return SLOPE * (LENGTH - x)

    def setup(self, mesh):
        count = len(mesh.cells)
        files = {"rain.txt": ["1", "1 2 0", f"0 {INTENSITY!r}", f"{DURATION} 0"],
                 "hyetocells.txt": ["1"] * count}
        return Setup(lambda x, y: mesh.bed(), (*self.times, END), bed=self.bed,
                     manning=constant(MANNING), zero_depth=1e-3, files=files,
                     boundaries={"east": (mesh_tools.TRANSMISSIVE, None)},
                     sources={"rainfall": "rain.txt", "hyetocells": "hyetocells.txt"},
                     sections=[list(mesh.edges_on("east"))], interval=self.interval)

    def exact(self, x, y, t):
        h = depth(x, t)
        return h, ALPHA * h ** M, np.zeros_like(h)

    def errors(self, run, state):
        return super().errors(run, run.states[1])

    def evaluate(self, folder, quick=False):
        result = super().evaluate(folder, quick)
        for row, error in zip(result.tables[0].rows, self.hydrograph_errors()):
            row.append(f"{error:.2e}")
        result.tables[0].titles.append("hydrograph")
        result.remarks.append("The last column is the relative L1 error of the discharge at the outlet over "
                              f"{END:.0f} s.")
        return result

    def hydrograph(self, run):
        """Times, and the unit discharge at the outlet."""
        t, Q = run.sections.T[:2]
        return t, Q / run.mesh.width

    def hydrograph_errors(self):
        for runs in self.runs.values():
            for run in runs.values():
                t, q = self.hydrograph(run)
                exact = np.array([discharge(np.array([LENGTH]), time)[0] for time in t])
                yield norms.relative_l1(q - exact, exact, np.ones_like(t))

    def draw(self, figure):
        t = np.linspace(1, END, 400)
        outlet = [(f"{kind}, n = {max(runs)}", self.hydrograph(runs[max(runs)])) for kind, runs in
                  self.runs.items()]
        lines = [(label, time, 1000 * q, False) for label, (time, q) in outlet]
        lines.append(("kinematic wave", t, [1000 * discharge(np.array([LENGTH]), s)[0] for s in t], True))
        x = np.linspace(0.5, LENGTH, 300)
        profile = [("kinematic wave", x, 1000 * depth(x, 1800.0), True)]
        for kind, runs in self.runs.items():
            run = runs[max(runs)]
            order = np.argsort(run.x)
            profile.insert(-1, (f"{kind}, n = {max(runs)}", run.x[order],
                                1000 * run.states[1].h[order], False))
        figures.curves(figure, [("at the outlet", "t (s)", "unit discharge (10⁻³ m²/s)", lines),
                                ("t = 1800 s", "x (m)", "depth (mm)", profile)])
        return "Left: hydrograph at the outlet. Right: depth along the plane at the end of the rain."


CASES = [Rain()]
