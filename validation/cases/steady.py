"""Steady flow in a channel: over a bump, over MacDonald's beds, and uniform."""
import numpy as np

from validation import input_files, meshes
from validation.case import AnalyticCase, Table
from validation.runner import GRAVITY, Setup, constant

g = GRAVITY
CREST = 10.0  # abscissa of the top of the bump, m


def bump(x, y=None):
    return np.where(np.abs(x - CREST) < 2, 0.2 - 0.05 * (x - CREST) ** 2, 0.0)


def depth_of_head(z, q, head, subcritical):
    """The sub- or supercritical positive root h of h + z + q^2 / (2 g h^2) = head."""
    roots = np.empty_like(z)
    for k, zk in enumerate(z):
        real = np.roots([1, zk - head, 0, q * q / (2 * g)])
        real = np.sort(real.real[real.real > 0])  # at the critical point both roots meet
        roots[k] = real[-1] if subcritical else real[-2]
    return roots


def critical_depth(q):
    return np.cbrt(q * q / g)


def bump_subcritical(x, q=4.42, outlet=2.0):
    head = outlet + q * q / (2 * g * outlet ** 2)
    return depth_of_head(bump(x), q, head, True)


def bump_transcritical(x, q=1.53):
    head = 0.2 + 1.5 * critical_depth(q)
    z = bump(x)
    return np.where(x < CREST, depth_of_head(z, q, head, True), depth_of_head(z, q, head, False))


def bump_with_shock(x, q=0.18, outlet=0.33):
    """Depth, and the place of the jump, where both branches have the same thrust."""
    head = outlet + q * q / (2 * g * outlet ** 2)

    def excess(place):
        z = bump(np.array([place]))
        shooting, calm = (depth_of_head(z, q, head_, calm_) for head_, calm_ in
                          ((0.2 + 1.5 * critical_depth(q), False), (head, True)))
        return (thrust(shooting, q) - thrust(calm, q))[0]

    # From the place where the tail water's head is just enough for the discharge.
    low = CREST + np.sqrt((0.2 - (head - 1.5 * critical_depth(q))) / 0.05) + 1e-9
    high = CREST + 2
    for _ in range(60):
        middle = 0.5 * (low + high)
        low, high = (middle, high) if excess(middle) > 0 else (low, middle)
    h = bump_transcritical(x, q)
    after = x >= low
    h[after] = depth_of_head(bump(x[after]), q, head, True)
    return h, low


def thrust(h, q):
    return q * q / h + g * h * h / 2


class SteadyCase(AnalyticCase):
    """A channel with the unit discharge `q`, run from `start` (level) until it is steady."""

    sizes = (100, 200, 400)
    kinds = ("structured", "irregular")
    outlet_level = None  # free outflow where there is none
    zero_depth = 1e-4

    def bed(self, x, y=None):
        raise NotImplementedError

    def depth(self, x):
        raise NotImplementedError

    def start(self, x, bed):
        """Initial level, m."""
        return self.depth(x) + bed

    def start_discharge(self, x, y):
        return np.full(np.shape(x), self.q)

    def manning(self):
        return None

    def setup(self, mesh):
        outlet = (input_files.TRANSMISSIVE, None)
        if self.outlet_level is not None:
            outlet = (input_files.LEVEL, repr(self.outlet_level))
        return Setup(lambda x, y: self.start(x, mesh.bed()), self.times, bed=self.bed,
                     qx=self.start_discharge, zero_depth=self.zero_depth, manning=self.manning(),
                     boundaries={"west": (input_files.DISCHARGE, repr(-self.q)), "east": outlet},
                     first="any")

    def exact(self, x, y, t):
        return self.depth(x), np.full(np.shape(x), self.q), np.zeros(np.shape(x))


class Bump(SteadyCase):
    length = 25.0
    times = (200.0,)
    source = ("Bernoulli's equation; Goutal and Maurel (1997), Proc. 2nd workshop on dam-break "
              "wave simulation; parameters of Delestre et al. (2013), section 3.1: L = 25 m, bump "
              "of 0.2 m.")

    def bed(self, x, y=None):
        return bump(x)

    def start(self, x, bed):
        return np.full(np.shape(x), self.start_level)

    def start_discharge(self, x, y):
        return np.zeros(np.shape(x))


class BumpSubcritical(Bump):
    name = "bump_subcritical"
    title = "Bump, subcritical"
    tests = ("Deep water at 4.42 m²/s passes a bump and its surface dips. It tests the balance of "
             "the bed slope against the flow.")
    limit = ("The discharge in the cells over the bump is not uniform: the first-order mass flux "
             "contains a term of the slope of the surface.")
    yardstick = {100: 1.5e-3, 200: 7.4e-4, 400: 3.7e-4}
    bounds = {"HLL2": {("irregular", 200): 5e-5}}
    q, outlet_level, start_level = 4.42, 2.0, 2.0

    def depth(self, x):
        return bump_subcritical(x)


class BumpTranscritical(Bump):
    name = "bump_transcritical"
    title = "Bump, transcritical"
    tests = ("1.53 m²/s become critical on the crest and leave supercritical through a free "
             "outflow. It tests the passage through the critical point and the free outflow.")
    limit = "The water runs up a little before the crest and the critical point is smeared."
    yardstick = {100: 7.4e-3, 200: 3.8e-3, 400: 1.9e-3}
    kinds = ("structured", "irregular", "rotated")
    q, start_level = 1.53, 0.66

    def depth(self, x):
        return bump_transcritical(x)


class BumpShock(Bump):
    name = "bump_shock"
    title = "Bump, transcritical with a hydraulic jump"
    tests = ("0.18 m²/s become supercritical behind the crest and jump back to the level that is "
             "held at the outlet. It tests the place of a standing jump over a sloping bed.")
    limit = ("The jump takes two or three cells, in which the unit discharge has a spike: it is no "
             "discharge of water but the trace of a shock that does not fit the mesh.")
    second_order = ("The gain is small here: the error sits in the jump. The spikes of the "
                    "discharge are larger than with the first-order scheme.")
    yardstick = {100: 9.0e-3, 200: 4.7e-3, 400: 2.5e-3}
    q, outlet_level, start_level = 0.18, 0.33, 0.33

    def depth(self, x):
        return bump_with_shock(x)[0]


class BedFromDepth:
    """The bed over which a given depth is steady, with Manning friction in a wide channel."""

    points = 100000

    def __init__(self, length, q, n, depth):
        """`q` and `depth` are functions of x; trapezoids from z(length) = 0."""
        self.x = np.linspace(0, length, self.points + 1)
        h, q = depth(self.x), q(self.x)
        dh = derivative(depth, self.x)
        slope = (q ** 2 / (g * h ** 3) - 1) * dh - n ** 2 * q ** 2 / h ** (10 / 3)
        steps = 0.5 * (slope[1:] + slope[:-1]) * np.diff(self.x)
        self.z = np.append(0, np.cumsum(steps))
        self.z -= self.z[-1]

    def __call__(self, x, y=None):
        return np.interp(x, self.x, self.z)


def derivative(function, x, step=1e-3):
    return (function(x + step) - function(x - step)) / (2 * step)


class MacDonald(SteadyCase):
    """A bed made for a given depth."""

    length = 1000.0
    times = (3000.0,)
    source = ("MacDonald, Baines, Nichols and Samuels (1997), J. Hydraul. Eng. 123, 1041–1045; "
              "parameters of Delestre et al. (2013), section 3.2: L = 1000 m.")

    def __init__(self):
        self.bed_of_depth = BedFromDepth(self.length, constant_of(self.q), self.n, self.depth)

    def bed(self, x, y=None):
        return self.bed_of_depth(x)

    def manning(self):
        return constant(self.n)

    def depth(self, x):
        peak, width = self.shape
        return np.cbrt(4 / g) * (1 + peak * np.exp(-width * (x / self.length - 0.5) ** 2))


def constant_of(value):
    return lambda x: np.full(np.shape(x), float(value))


class MacDonaldSubcritical(MacDonald):
    name = "macdonald_subcritical"
    title = "MacDonald's channel, subcritical"
    tests = ("The bed of a channel of 1 km is made for a chosen subcritical depth, so that slope, "
             "friction and inertia all vary. It tests Manning friction against the bed slope.")
    limit = ("The mass flux contains the fall of the level from cell to cell, so that a depth "
             "below the exact one carries the discharge: by a share in proportion to the cell size "
             "times the slope.")
    yardstick = {100: 1.6e-2, 200: 8.4e-3, 400: 4.4e-3}
    q, n, shape = 2.0, 0.033, (0.5, 16.0)

    @property
    def outlet_level(self):
        return float(self.depth(self.length))  # the bed is 0 there


class MacDonaldSupercritical(MacDonald):
    name = "macdonald_supercritical"
    title = "MacDonald's channel, supercritical"
    tests = ("The same with a supercritical depth on a steep bed; the run starts from the exact "
             "state. It tests friction in shooting flow.")
    limit = ("An inflow is given by its discharge alone; for supercritical inflow a depth would be "
             "needed as well, and the first cells are too deep. Further down the depth is too "
             "small, as in the subcritical channel, and more so on the steeper bed.")
    second_order = "What is left is the inflow's."
    bounds = {"HLL2": {("irregular", 100): 1.7e-3, ("irregular", 400): 7e-4}}
    q, n, shape = 2.5, 0.04, (-0.2, 36.0)


class Uniform(SteadyCase):
    name = "uniform_flow"
    title = "Uniform flow"
    tests = ("2 m²/s run down a plane at the normal depth of Manning's law. It tests friction "
             "against slope with nothing else at work.")
    source = ("Manning's law of a wide channel, h = (q n / S^(1/2))^(3/5), with S = 0.005, "
              "n = 0.033.")
    limit = ("Even this is not exact: the mass flux contains the difference of the levels of two "
             "cells, so that the depth stays below the normal depth in proportion to the cell "
             "size.")
    bounds = {"HLL2": {("irregular", 400): 2e-5}}
    length, times = 1000.0, (3000.0,)
    q, n, slope = 2.0, 0.033, 0.005
    normal_depth = (q * n / slope ** 0.5) ** 0.6

    def bed(self, x, y=None):
        return self.slope * (self.length - x)

    def depth(self, x):
        return np.full(np.shape(x), self.normal_depth)

    def manning(self):
        return constant(self.n)

    @property
    def outlet_level(self):
        return self.normal_depth


class Frictionless(SteadyCase):
    name = "frictionless_flow"
    title = "Uniform flow without friction"
    tests = ("1 m²/s run 1 m deep over 2 m of flat bed, in at an imposed discharge and out at an "
             "imposed level, with a hump of 1 mm in it at first, which runs off. It tests that "
             "open boundaries on triangles of any shape leave alone what is uniform.")
    source = "A uniform flow without friction over a flat bed is a steady solution."
    limit = "Nothing: a uniform flow is exact at any order."
    second_order = ("A level that goes on beyond an imposed discharge, as it does beyond other open "
                    "boundaries, would feed itself in single cells of irregular meshes until the "
                    "depth is wrong by a third. It ends there as at a wall.")
    sizes = (50, 100)
    length, times, outlet_level, q = 2.0, (2.0,), 1.0, 1.0
    tolerance = None
    hump = 1e-3  # m

    def mesh(self, n, kind):
        return meshes.Rectangle(self.length, self.length / 2, n, n // 2, kind)

    def bed(self, x, y=None):
        return np.zeros(np.shape(x))

    def depth(self, x):
        return np.full(np.shape(x), self.outlet_level)

    def setup(self, mesh):
        setup = super().setup(mesh)
        setup.level = lambda x, y: 1 + self.hump * np.exp(-100 * ((x - 0.5) ** 2 + (y - 0.5) ** 2))
        return setup

    def measure(self, simulator, result, quick):
        super().measure(simulator, result, quick)
        rows = []
        for kind, runs in result.runs.items():
            for n, run in runs.items():
                largest = np.abs(run.states[-1].h - self.outlet_level).max()
                rows.append([kind, str(n), f"{largest:.1e}"])
                result.require_at_most(f"{kind}, n = {n}: largest error of the depth (m), against "
                                       "the hump's at first", largest, self.hump)
        result.tables.append(Table(["mesh", "n"], ["largest error of the depth (m)"], rows))


CASES = [BumpSubcritical(), BumpTranscritical(), BumpShock(), MacDonaldSubcritical(),
         MacDonaldSupercritical(), Uniform(), Frictionless()]
