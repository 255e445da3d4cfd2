"""Rain on a V-shaped catchment: two planes and a channel between them."""
import numpy as np

from validation import figures, input_files, meshes, norms
from validation.case import Case, Table
from validation.cases.rain import Plane
from validation.runner import Setup

LENGTH = 1000.0  # m, along the channel
HILL, CHANNEL = 800.0, 20.0  # m, across one hillside, across the channel
HILL_SLOPE, CHANNEL_SLOPE, BANK = 0.05, 0.02, 1.0  # -, -, height of the bank at the upper end, m
HILL_MANNING, CHANNEL_MANNING = 0.015, 0.15
INTENSITY, DURATION = 10.8e-3 / 3600, 5400.0  # m/s, s
ROWS_OF_CHANNEL = 4
HIGHEST_SHOWN = 7.0  # discharge in the figure, m3/s
HILLSIDE = Plane(HILL, HILL_SLOPE, HILL_MANNING, INTENSITY, DURATION)


class Catchment(meshes.Rectangle):
    """`rows` rows of squares on each hillside, and narrower ones in the channel. Open is only the
    lower end of the channel."""

    def __init__(self, rows):
        hill, channel = np.linspace(0, HILL, rows + 1), np.linspace(0, CHANNEL, ROWS_OF_CHANNEL + 1)
        lines = np.concatenate((hill, HILL + channel[1:], HILL + CHANNEL + hill[1:]))
        super().__init__(LENGTH, lines[-1], round(rows * LENGTH / HILL), len(lines) - 1, rows=lines)

    def side_of_edges(self):
        sides = super().side_of_edges()
        return np.where(beside_channel(self.edge_midpoints()[:, 1]) > 0, -1, sides)


def beside_channel(y):
    """Distance from the channel, m; 0 in it."""
    return np.maximum(np.abs(y - HILL - CHANNEL / 2) - CHANNEL / 2, 0)


def bed(x, y):
    away = beside_channel(y)
    return np.where(away > 0, HILL_SLOPE * away, CHANNEL_SLOPE * (LENGTH - x)
                    - CHANNEL_SLOPE * LENGTH - BANK)


def manning(x, y):
    return np.where(beside_channel(y) > 0, HILL_MANNING, CHANNEL_MANNING)


class VCatchment(Case):
    name = "v_catchment"
    title = "V-shaped catchment under rain"
    tests = ("10.8 mm/h fall for 90 minutes on two planes of 800 m by 1000 m, which fall by 5 % to "
             "a channel 20 m wide that lies 1 m below them at its upper end and falls by 2 %; the "
             "run lasts 180 minutes. It tests the film on the hillsides, its fall over the bank, "
             "and the wave in the channel.")
    source = ("Di Giammarco, Todini and Lamberti (1996), J. Hydrol. 175, 267–291: n = 0.015 on the "
              "hillsides, 0.15 in the channel. The hillside is held against its kinematic wave by "
              "characteristics (Henderson and Wooding, 1964); in equilibrium 2.4 m³/s leave each "
              "hillside and, with the rain on the channel, 4.86 m³/s the channel.")
    limit = ("On the hillsides the bed falls by a metre and more from cell to cell, and the film "
             "is 5 mm deep: the first-order flux empties cells below zero.")
    second_order = ("At first the water is a film near the depth from which on a cell counts as "
                    "wet, 0.1 mm, and a step lasts minutes: on the coarse mesh the rise comes late "
                    "by as much.")
    reasons = {"LHLLC": "See above: thin water on steps of the bed far higher than it is deep.",
               "HLL2": "On the coarse mesh the discharge still rises a little when the rain ends."}
    sizes = (20, 40)
    times = tuple(300.0 * k for k in range(1, 37))
    # Chosen before the runs; the last one is the tolerance for analytical solutions.
    allowed_discharge, allowed_books, allowed_volume = 0.01, 1e-9, 0.05

    def run(self, simulator, n):
        mesh = Catchment(n)
        files, sources = input_files.rain(len(mesh.cells), (0, INTENSITY), (DURATION, 0.0))
        setup = Setup(bed, self.times, bed=bed, bed_by="file", zero_depth=1e-4, manning=manning,
                      files=files, sources=sources,
                      boundaries={"east": (input_files.TRANSMISSIVE, None)})
        return simulator.simulate(str(n), self.title, mesh, setup)

    def measure(self, simulator, result, quick):
        rows = []
        for n in self.sizes[:1] if quick else self.sizes:
            run = result.runs[n] = self.run(simulator, n)
            t, hill, out = self.discharges(run)
            end = np.searchsorted(t, DURATION) - 1
            error = self.error_of_hillside(run)
            books = abs(run.report["water"]["relative_error"])
            rows.append([str(n), str(len(run.areas)), f"{hill[end]:.3f}", f"{out[end]:.3f}",
                         f"{out.max():.3f}", f"{100 * error:.2f} %", f"{books:.0e}",
                         f"{100 * run.report['below_zero']['share']:.2g} %"])
            full = INTENSITY * LENGTH * HILL, INTENSITY * run.areas.sum()
            for text, found, exact in (("hillside", hill[end], full[0]),
                                       ("outlet", out[end], full[1])):
                result.require_at_most(f"n = {n}: discharge of the {text} at the end of the rain, "
                                       "from that of equilibrium", abs(found / exact - 1),
                                       self.allowed_discharge)
            if n == self.sizes[-1]:
                result.require_at_most(f"n = {n}: volume off the hillside over the time, L1", error,
                                       self.allowed_volume)
            result.require_at_most(f"n = {n}: books of the run", books, self.allowed_books)
        result.tables.append(Table(["rows of a hillside", "triangles"],
                                   ["hillside at 90 min (m³/s)", "outlet at 90 min (m³/s)",
                                    "highest at the outlet (m³/s)", "volume off the hillside, L1",
                                    "books", "below zero, share"], rows))
        result.remarks.append("Discharges are means of the five minutes before, from the rain less "
                              "what is stored. *Volume off the hillside* is the relative L1 error "
                              "over the time against the kinematic wave.")

    def volumes_out(self, run):
        """Times, and the volumes (m3) that have left one hillside, in the mean of both, and the
        channel: rain less what is there."""
        t = np.array([0.0, *(state.time for state in run.states)])
        on_hill = beside_channel(run.y) > 0
        hill = np.array([0.0, *(np.sum((s.h * run.areas)[on_hill]) / 2 for s in run.states)])
        everywhere = np.array([0.0, *(run.volume(k) for k in range(len(run.states)))])
        rain = INTENSITY * np.minimum(t, DURATION)
        return t, rain * LENGTH * HILL - hill, rain * run.areas.sum() - everywhere

    def discharges(self, run):
        """Middles of the times between snapshots, and the discharges (m3/s) of hillside and outlet
        then."""
        t, hill, out = self.volumes_out(run)
        return 0.5 * (t[1:] + t[:-1]), np.diff(hill) / np.diff(t), np.diff(out) / np.diff(t)

    def error_of_hillside(self, run):
        t, hill, _ = self.volumes_out(run)
        exact = LENGTH * np.array([HILLSIDE.volume_out(time) for time in t])
        return norms.relative_l1(hill - exact, exact, np.ones_like(t))

    def draw(self, figure, results):
        hillside, outlet = [], []
        for scheme, result in results.items():
            t, hill, out = self.discharges(result.runs[self.sizes[-1]])
            hillside.append(("", scheme, t / 60, hill))
            outlet.append(("", scheme, t / 60, out))
        t = np.linspace(1, self.times[-1], 300)
        hillside.append(("kinematic wave", None, t / 60,
                         [LENGTH * HILLSIDE.discharge(np.array([HILL]), time)[0] for time in t]))
        full = INTENSITY * LENGTH * (2 * HILL + CHANNEL)
        outlet.append(("equilibrium", None, [0, DURATION / 60], [full, full]))
        figures.curves(figure, [("one hillside", "t (min)", "discharge (m³/s)", hillside),
                                ("outlet of the channel", "t (min)", "discharge (m³/s)", outlet)])
        for axes in figure.axes:
            axes.set_ylim(-0.3, HIGHEST_SHOWN)
        return ("Left: discharge of one hillside. Right: discharge of the channel. Values above "
                f"{HIGHEST_SHOWN:g} m³/s, of LHLLC in the first minutes, lie outside. "
                f"{figures.COLOUR_WORDS}.")


CASES = [VCatchment()]
