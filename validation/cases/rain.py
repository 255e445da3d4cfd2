"""Rain on a plane against the kinematic wave."""
import numpy as np

from validation import figures, input_files, norms
from validation.case import AnalyticCase
from validation.runner import Setup, constant

LENGTH, SLOPE, MANNING = 182.88, 0.0016, 0.025
INTENSITY, DURATION = 50.8e-3 / 3600, 1800.0  # m/s, s
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


def exact_volume_out(t):
    """What has left per metre of width by the time t, m2."""
    x = (np.arange(2000) + 0.5) * LENGTH / 2000
    return INTENSITY * min(t, DURATION) * LENGTH - depth(x, t).mean() * LENGTH


class Rain(AnalyticCase):
    name = "rain_on_plane"
    title = "Rain on a plane (kinematic wave)"
    tests = ("Rain of 50.8 mm/h falls for 30 minutes on a plane 183 m long; a film of at most some "
             "10 mm runs off. It tests rain, friction in thin water, and wetting and drying "
             "everywhere at once.")
    source = ("Kinematic wave with Manning friction by characteristics: Henderson and Wooding "
              "(1964), J. Geophys. Res. 69, 1531–1540. The simulator solves the full equations, "
              "which differ a little. Compared at 1800 s, when the flow is steady.")
    limit = ("Where the bed falls from cell to cell by a good part of the depth, the first-order "
             "flux, which contains the difference of the levels, carries more water than friction "
             "allows: the film is too thin and its rise too slow until the cells are small. The "
             "time step follows the depth before the rain: with a zero depth far below the 1 mm "
             "used here, a film is given minutes in one step, and rain falls in lumps.")
    reason = ("The fall of one cell is not small against the depth; the error falls with the first "
              "order.")
    sizes = (50, 100, 200, 400)
    quick_sizes = 4
    kinds = ("structured", "irregular")
    times = tuple(150.0 * k for k in range(1, 25))
    length = LENGTH

    def bed(self, x, y=None):
        return SLOPE * (LENGTH - x)

    def setup(self, mesh):
        count = len(mesh.cells)
        files = {"rain.txt": ["1", "1 2 0", f"0 {INTENSITY!r}", f"{DURATION} 0"],
                 "hyetocells.txt": ["1"] * count}
        return Setup(lambda x, y: mesh.bed(), self.times, bed=self.bed,
                     manning=constant(MANNING), zero_depth=1e-3, files=files,
                     boundaries={"east": (input_files.TRANSMISSIVE, None)},
                     sources={"rainfall": "rain.txt", "hyetocells": "hyetocells.txt"},
                     sections=[list(mesh.edges_on("east"))])

    def exact(self, x, y, t):
        h = depth(x, t)
        return h, ALPHA * h ** M, np.zeros_like(h)

    def errors(self, run, state):
        return super().errors(run, self.steady(run))

    def steady(self, run):
        return run.states[self.times.index(DURATION)]

    def evaluate(self, folder, quick=False):
        result = super().evaluate(folder, quick)
        runs = [run for runs in self.runs.values() for run in runs.values()]
        result.tables[0].titles += ["hydrograph", "volume out"]
        for row, run in zip(result.tables[0].rows, runs):
            row += [f"{error:.2e}" for error in self.outlet_errors(run)]
        result.remarks.append(
            "The last columns are relative L1 errors over the time: *hydrograph* of the discharge "
            "at the outlet as the sections file gives it, *volume out* of the rain less what is on "
            "the plane. The sections file takes the discharge from the state of the cells, and in "
            "a film on a slope that is less than what the flux carries: where they differ, trust "
            "the volume.")
        return result

    def hydrograph(self, run):
        """Times, and the unit discharge at the outlet after the sections file."""
        t, Q = run.sections.T[:2]
        return t, Q / run.mesh.width

    def volume_out(self, run):
        """Times, and what has left per metre of width, m2: rain less what is there."""
        t = np.array([state.time for state in run.states])
        stored = np.array([run.volume(k) for k in range(len(t))]) / run.mesh.width
        return t, INTENSITY * np.minimum(t, DURATION) * LENGTH - stored

    def outlet_errors(self, run):
        t, q = self.hydrograph(run)
        exact_q = np.array([discharge(np.array([LENGTH]), time)[0] for time in t])
        t, out = self.volume_out(run)
        exact_out = np.array([exact_volume_out(time) for time in t])
        return [norms.relative_l1(a - b, b, np.ones_like(b)) for a, b in
                ((q, exact_q), (out, exact_out))]

    def draw(self, figure):
        outlet, plane = [], []
        for kind, runs in self.runs.items():
            run, label = runs[max(runs)], f"{kind}, n = {max(runs)}"
            order = np.argsort(run.x)
            outlet.append((label, *self.volume_out(run), False))
            plane.append((label, run.x[order], 1000 * self.steady(run).h[order], False))
        t, x = np.linspace(1, self.times[-1], 200), np.linspace(0.5, LENGTH, 300)
        outlet.append(("kinematic wave", t, [exact_volume_out(time) for time in t], True))
        plane.append(("kinematic wave", x, 1000 * depth(x, DURATION), True))
        figures.curves(figure, [("", "t (s)", "volume out (m³ per m)", outlet),
                                (f"t = {DURATION:.0f} s", "x (m)", "depth (mm)", plane)])
        return "Left: what has left the plane. Right: depth along the plane at the end of the rain."


CASES = [Rain()]
