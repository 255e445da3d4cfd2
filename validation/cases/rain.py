"""Rain on a plane against the kinematic wave."""
import numpy as np

from validation import figures, input_files, norms
from validation.case import AnalyticCase
from validation.runner import Setup, constant

M = 5 / 3  # the exponent of the depth in Manning's law


class Plane:
    """The kinematic wave on a plane of a length (m) and slope under a rain (m/s) that lasts longer
    (s) than the time of concentration: Henderson and Wooding (1964)."""

    def __init__(self, length, slope, manning, intensity, duration):
        self.length, self.intensity, self.duration = length, intensity, duration
        self.alpha = np.sqrt(slope) / manning
        self.time_of_concentration = (length / (self.alpha * intensity ** (M - 1))) ** (1 / M)

    def depth(self, x, t):
        """Depth (m) at distances x from the top."""
        steady = (self.intensity * x / self.alpha) ** (1 / M)
        if t <= self.duration:
            return np.minimum(self.intensity * t, steady)
        # After the rain each depth h travels at alpha m h^(m-1) from where it was: bisection for h.
        low, high = np.zeros_like(steady), steady
        for _ in range(60):
            h = 0.5 * (low + high)
            reach = (self.alpha * h ** M / self.intensity
                     + self.alpha * M * h ** (M - 1) * (t - self.duration))
            low, high = np.where(reach < x, h, low), np.where(reach < x, high, h)
        return high

    def discharge(self, x, t):
        """Unit discharge, m2/s."""
        return self.alpha * self.depth(x, t) ** M

    def rain(self, t):
        """What has fallen per metre of width by the times t, m2."""
        return self.intensity * np.minimum(t, self.duration) * self.length

    def volume_out(self, t):
        """What has left per metre of width by the time t, m2."""
        x = (np.arange(2000) + 0.5) * self.length / 2000
        return self.rain(t) - self.depth(x, t).mean() * self.length


SLOPE, MANNING = 0.0016, 0.025
PLANE = Plane(182.88, SLOPE, MANNING, 50.8e-3 / 3600, 1800.0)


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
    reasons = {"LHLLC": "The fall of one cell is not small against the depth; the error falls with "
               "the first order.",
               "HLL2": "What is left is no error of the scheme but what the kinematic wave leaves "
               "out: the slope of the surface against that of the bed, by which the film is some "
               "1.5 % deeper, and the drawdown before the free outflow, in the last 13 m."}
    sizes = (50, 100, 200, 400)
    quick_kind, quick_sizes = "structured", 4
    kinds = ("structured", "irregular")
    times = tuple(150.0 * k for k in range(1, 25))
    judged_state = times.index(PLANE.duration)  # when the flow is steady
    length = PLANE.length

    def bed(self, x, y=None):
        return SLOPE * (PLANE.length - x)

    def setup(self, mesh):
        files, sources = input_files.rain(len(mesh.cells), (0, PLANE.intensity),
                                          (PLANE.duration, 0))
        return Setup(lambda x, y: mesh.bed(), self.times, bed=self.bed,
                     manning=constant(MANNING), zero_depth=1e-3, files=files,
                     boundaries={"east": (input_files.TRANSMISSIVE, None)},
                     sources=sources,
                     sections=[list(mesh.edges_on("east"))])

    def exact(self, x, y, t):
        return PLANE.depth(x, t), PLANE.discharge(x, t), np.zeros_like(x)

    def measure(self, simulator, result, quick):
        super().measure(simulator, result, quick)
        runs = [run for runs in result.runs.values() for run in runs.values()]
        result.tables[0].measures += ["hydrograph", "volume out"]
        for row, run in zip(result.tables[0].rows, runs):
            row += [f"{error:.2e}" for error in self.outlet_errors(run)]
        result.remarks.append(
            "The last columns are relative L1 errors over the time: *hydrograph* of the discharge "
            "at the outlet as the sections file gives it, *volume out* of the rain less what is on "
            "the plane. The sections file takes the discharge from the state of the cells, and in "
            "a film on a slope that is less than what the flux carries: where they differ, trust "
            "the volume.")

    def hydrograph(self, run):
        """Times, and the unit discharge at the outlet after the sections file."""
        t, Q = run.sections.T[:2]
        return t, Q / run.mesh.width

    def volume_out(self, run):
        """Times, and what has left per metre of width, m2: rain less what is there."""
        t = np.array([state.time for state in run.states])
        stored = np.array([run.volume(k) for k in range(len(t))]) / run.mesh.width
        return t, PLANE.rain(t) - stored

    def outlet_errors(self, run):
        t, q = self.hydrograph(run)
        exact_q = np.array([PLANE.discharge(np.array([PLANE.length]), time)[0] for time in t])
        t, out = self.volume_out(run)
        exact_out = np.array([PLANE.volume_out(time) for time in t])
        return [norms.relative_l1(a - b, b, np.ones_like(b)) for a, b in
                ((q, exact_q), (out, exact_out))]

    def draw(self, figure, results):
        outlet, plane = [], []
        for scheme, result in results.items():
            n = self.sizes[0]
            run, label = result.runs["irregular"][n], f"irregular, n = {n}"
            order = np.argsort(run.x)
            outlet.append((label, scheme, *self.volume_out(run)))
            depth = run.states[self.judged_state].h[order]
            plane.append((label, scheme, run.x[order], 1000 * depth))
        t, x = np.linspace(1, self.times[-1], 200), np.linspace(0.5, PLANE.length, 300)
        outlet.append(("kinematic wave", None, t, [PLANE.volume_out(time) for time in t]))
        plane.append(("kinematic wave", None, x, 1000 * PLANE.depth(x, PLANE.duration)))
        figures.curves(figure, [("", "t (s)", "volume out (m³ per m)", outlet),
                                (f"t = {PLANE.duration:.0f} s", "x (m)", "depth (mm)", plane)])
        return ("Left: what has left the plane. Right: depth along the plane at the end of the "
                f"rain. {figures.COLOUR_WORDS}.")


CASES = [Rain()]
