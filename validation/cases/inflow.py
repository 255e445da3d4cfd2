"""Hydrograph and limnigraph: the volume that comes in against the volume that is stored."""
import numpy as np

from validation import figures, input_files, meshes, norms, runner
from validation.case import Case, Table
from validation.runner import Setup, constant

LENGTH, WIDTH = 200.0, 40.0  # m, of a basin
INITIAL = 1.0  # depth where it is not dry, m
RISE = 0.5  # m, of the limnigraph


class Inflow(Case):
    """A basin, closed but for its western side, on three meshes."""

    sizes = (40, 80, 160)
    source = "Conservation of volume; the series are integrated exactly, as straight lines."
    times = tuple(60.0 * k for k in range(1, 21))
    # Chosen before the runs: a series sampled once a step, of which there are some thousands.
    allowed = 1e-3

    slope, initial, friction = 0.0, INITIAL, 0.0

    def bed(self, x, y):
        return self.slope * (LENGTH - x)

    def simulate(self, simulator, n, name):
        mesh = meshes.Rectangle(LENGTH, WIDTH, n, n // 5, "irregular")
        lines = [f"{len(self.series)}"] + [f"{t} {value!r}" for t, value in self.series]
        setup = Setup(lambda x, y: mesh.bed() + self.initial, self.times, bed=self.bed,
                      boundaries={"west": (self.code, "series.txt")},
                      manning=constant(self.friction), files={"series.txt": lines},
                      zero_depth=1e-4)
        return simulator.simulate(name, self.title, mesh, setup)

    def expected(self, t):
        """Volume (m3) that should have come in by the times t."""
        raise NotImplementedError

    def measure(self, simulator, result, quick):
        sizes = self.sizes[:2] if quick else self.sizes
        rows, errors = [], []
        for n in sizes:
            run = result.runs[n] = self.simulate(simulator, n, str(n))
            t, stored = self.stored(run)
            expected = self.expected(t)
            errors.append(abs(stored[-1] - expected[-1]) / expected.max())
            rows.append([str(n), str(len(run.areas)), f"{expected[-1]:.2f}", f"{stored[-1]:.2f}",
                         f"{errors[-1]:.1e}"])
            result.require_at_most(f"n = {n}: error of the volume, relative to its largest change",
                                   errors[-1], self.allowed)
        for row, order in zip(rows, norms.observed_orders([LENGTH / n for n in sizes], errors)):
            row.append("" if order is None else f"{order:.2f}")
        result.tables.append(Table(["n", "triangles", "volume in (m³)"],
                                   ["stored (m³)", "relative error", "order"], rows))

    def stored(self, run):
        t = np.array([state.time for state in run.states])
        volumes = np.array([run.volume(k) for k in range(len(t))])
        return t, volumes - self.initial * LENGTH * WIDTH

    def draw(self, figure, results):
        t = np.linspace(0, self.times[-1], 300)
        lines, errors = [], []
        for scheme, result in results.items():
            for n, run in result.runs.items():
                time, stored = self.stored(run)
                if n == max(result.runs):
                    lines.append((f"stored, n = {n}", scheme, time, stored))
                errors.append((f"n = {n}", scheme, time, stored - self.expected(time)))
        lines.append(("volume in", None, t, self.expected(t)))
        figures.curves(figure, [("", "t (s)", "volume (m³)", lines),
                                ("", "t (s)", "stored - in (m³)", errors)])
        return ("Left: volume over the time. Right: what is stored less what came in. "
                f"{figures.COLOUR_WORDS}.")


class Hydrograph(Inflow):
    name = "hydrograph"
    title = "Volume of a hydrograph"
    tests = ("A flood wave of 10 minutes runs into a dry valley that is closed at its lower end, "
             "and fills a lake there. It tests that the discharge of the series, times the length "
             "of the boundary, is what is stored.")
    reasons = {"LHLLC": "The error arises in the first minute, as the figure shows: on dry ground "
               "the first water is a film, and the time step, which follows the depth, is many "
               "seconds long. On a finer mesh that step is shorter."}
    limit = ("The series is read once a step and holds for that step; the clock that it is read at "
             "runs ahead or behind by the change of the time step.")
    second_order = "It reads the series in the middle of a step, and the clock is that of the step."
    slope, initial, friction = 0.02, 0.0, 0.03
    code = input_files.HYDROGRAPH
    series = ((0, 0.0), (300, -0.5), (600, 0.0), (2000, 0.0))  # m2/s; negative enters

    def expected(self, t):
        times, q = np.array(self.series).T
        fine = np.linspace(0, t.max(), 20001)
        rate = -np.interp(fine, times, q) * WIDTH
        volume = np.append(0, np.cumsum(0.5 * (rate[1:] + rate[:-1]) * np.diff(fine)))
        return np.interp(t, fine, volume)

    def measure(self, simulator, result, quick):
        super().measure(simulator, result, quick)
        if not quick:
            result.remarks.append(self.remark_on_returning_waves(simulator))

    def remark_on_returning_waves(self, simulator):
        """What happens if the wave comes back: the same in a flat frictionless pond."""
        pond = Hydrograph()
        pond.slope, pond.initial, pond.friction = 0.0, INITIAL, 0.0
        try:
            pond.simulate(simulator, self.sizes[0], "pond")
        except runner.RunError as error:
            return ("The same inflow into a flat, frictionless pond, whose waves come back to the "
                    f"boundary, ends with “{str(error).splitlines()[1]}”: an imposed discharge "
                    "strengthens a wave that runs against it. Place such a boundary where no waves "
                    "return.")
        return ("The same inflow into a flat, frictionless pond, whose waves come back to the "
                "boundary, runs to its end.")


def smooth_step(s):
    """From 0 to 1 with no first or second derivative at either end."""
    return s ** 3 * (10 - 15 * s + 6 * s * s)


class Limnigraph(Inflow):
    name = "limnigraph"
    title = "Volume of a limnigraph"
    tests = ("The level at the open side of a basin rises by half a metre in half an hour, so "
             "slowly and smoothly that hardly a wave arises, and stays. It tests that the basin "
             "follows: in the end the volume is the area times the rise.")
    limit = ("Only the end is exact: on the way the basin lags behind the boundary by the time of "
             "a wave. An imposed level reflects waves; a rise with a kink would leave the basin "
             "swinging.")
    second_order = "The lag is the boundary's, not the scheme's: it does not depend on the mesh."
    code = input_files.LIMNIGRAPH
    sizes = (20, 40, 80)
    times = tuple(120.0 * k for k in range(1, 21))
    series = tuple((30.0 * k, INITIAL + RISE * smooth_step(k / 60)) for k in range(61))

    def expected(self, t):
        times, level = np.array(self.series).T
        return (np.interp(t, times, level) - INITIAL) * LENGTH * WIDTH


CASES = [Hydrograph(), Limnigraph()]
