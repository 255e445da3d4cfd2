"""Water that swings in a paraboloid or a parabola: Thacker (1981), J. Fluid Mech. 107, 499-508."""
import numpy as np

from validation import meshes
from validation.case import AnalyticCase
from validation.runner import GRAVITY, Setup

g = GRAVITY
SIDE, A, H0 = 4.0, 1.0, 0.1  # side of the domain, radius of the still shore and depth, m

BED_PER_CELL = "bed per cell"
PARTLY_WET = (
    "With the relief in the nodes, a cell whose highest node is not under water carries no "
    "momentum: this rule keeps lakes around islands at rest, and it holds back a shore that moves. "
    "Over the same mesh with the bed given per cell (rows “bed per cell”: flat nodes, a bed file) "
    "the rule does not act, and the error is smaller.")

PLANAR_ETA = 0.5
PLANAR_OMEGA = np.sqrt(2 * g * H0) / A
R0 = 0.8
RADIAL_A = (A ** 2 - R0 ** 2) / (A ** 2 + R0 ** 2)
RADIAL_OMEGA = np.sqrt(8 * g * H0) / A
LINE_H0 = 0.5
LINE_OMEGA = np.sqrt(2 * g * LINE_H0) / A


def bowl(x, y):
    return -H0 * (1 - ((x - SIDE / 2) ** 2 + (y - SIDE / 2) ** 2) / A ** 2)


def planar(x, y, t):
    """Depth and velocities of a plane surface that turns round the bowl."""
    X, Y, w = x - SIDE / 2, y - SIDE / 2, PLANAR_OMEGA
    level = PLANAR_ETA * H0 / A ** 2 * (2 * X * np.cos(w * t) + 2 * Y * np.sin(w * t) - PLANAR_ETA)
    h = np.maximum(0, level - bowl(x, y))
    return h, -PLANAR_ETA * w * np.sin(w * t), PLANAR_ETA * w * np.cos(w * t)


def radial(x, y, t):
    """Depth and velocities of a surface that rises and falls in the middle of the bowl."""
    X, Y, w, a = x - SIDE / 2, y - SIDE / 2, RADIAL_OMEGA, RADIAL_A
    d = 1 - a * np.cos(w * t)
    r2 = (X ** 2 + Y ** 2) / A ** 2
    level = H0 * (np.sqrt(1 - a ** 2) / d - 1 - r2 * ((1 - a ** 2) / d ** 2 - 1))
    rate = w * a * np.sin(w * t) / (2 * d)
    return np.maximum(0, level - bowl(x, y)), rate * X, rate * Y


def parabola(x, y=None):
    return LINE_H0 * (((x - SIDE / 2) / A) ** 2 - 1)


def line(x, t):
    """Depth and velocity of a plane surface that swings in a parabola."""
    w = LINE_OMEGA
    h = -LINE_H0 * (((x - SIDE / 2) / A + np.cos(w * t) / (2 * A)) ** 2 - 1)
    return np.maximum(0, h), w / 2 * np.sin(w * t)


def bed_source(mesh):
    return "file" if mesh.kind == BED_PER_CELL else "nodes"


def cell_bed(mesh, bed, x, y):
    return bed(x, y) if mesh.kind == BED_PER_CELL else mesh.bed()


class ThackerPlanar(AnalyticCase):
    name = "thacker_planar"
    title = "Lake that turns round a paraboloid (Thacker, planar)"
    tests = ("A plane surface turns round a bowl for one period and should return to where it "
             "began. It tests a shore that moves everywhere, over a bed that is steep everywhere, "
             "with no loss of energy.")
    source = ("Thacker (1981), J. Fluid Mech. 107, 499–508; parameters of Delestre et al. (2013), "
              "section 4.2.2: bowl of radius 1 m and depth 0.1 m on a square of 4 m; one period is "
              "4.4857 s.")
    limit = ("The first-order scheme damps the motion: a swinging lake needs a fine mesh, and more "
             "of it with every period.")
    reasons = {"LHLLC": PARTLY_WET}
    sizes = (50, 100, 200)
    yardstick = {50: 0.408, 100: 0.227, 200: 0.121}
    bounds = {"HLL2": {("irregular", 50): 2.4e-2, ("irregular", 200): 3e-3}}
    tolerance = None
    kinds = ("structured", "irregular", "rotated", BED_PER_CELL)
    times = (round(2 * np.pi / PLANAR_OMEGA, 6),)

    def mesh(self, n, kind):
        return meshes.square(SIDE, n, kind)

    def solution(self, x, y, t):
        return planar(x, y, t)

    def exact(self, x, y, t):
        h, u, v = self.solution(x, y, t)
        return h, h * u, h * v

    def setup(self, mesh):
        return Setup(lambda x, y: self.exact(x, y, 0)[0] + cell_bed(mesh, bowl, x, y), self.times,
                     bed=bowl, bed_by=bed_source(mesh), qx=lambda x, y: self.exact(x, y, 0)[1],
                     qy=lambda x, y: self.exact(x, y, 0)[2])


class ThackerRadial(ThackerPlanar):
    name = "thacker_radial"
    title = "Lake that rises and falls in a paraboloid (Thacker, radial)"
    tests = ("The surface bulges and sinks in the middle of the bowl while the shore moves out and "
             "in. It tests the moving shore and the symmetry of the scheme on triangles.")
    source = ("Thacker (1981); parameters of Delestre et al. (2013), section 4.2.2, with r0 = 0.8 "
              "m; one period is 2.2429 s.")
    yardstick = {50: 0.153, 100: 0.096, 200: 0.053}
    bounds = {"HLL2": {("irregular", 50): 2.2e-2, ("irregular", 200): 2.6e-3}}
    times = (round(2 * np.pi / RADIAL_OMEGA, 6),)
    # At a whole period the water is at rest: an error of the discharge is relative to nothing.
    discharge_matters = False

    def solution(self, x, y, t):
        return radial(x, y, t)


class ThackerLine(AnalyticCase):
    name = "thacker_parabola"
    title = "Lake that swings in a parabola (Thacker, along a channel)"
    tests = ("A plane surface swings to and fro in a parabolic channel for five periods: the "
             "hardest of Thacker's lakes, because the losses of all periods add up.")
    source = ("Thacker (1981); parameters of Delestre et al. (2013), section 4.2.1: channel of 4 "
              "m, depth 0.5 m; five periods are 10.03 s.")
    limit = ThackerPlanar.limit
    reasons = {"LHLLC": PARTLY_WET}
    sizes = (100, 200, 400)
    kinds = ("structured", "irregular", BED_PER_CELL)
    yardstick = {100: 4.2e-1, 200: 1.6e-1, 400: 5.4e-2, 800: 1.7e-2}
    bounds = {"HLL2": {("irregular", 400): 8e-4}}
    tolerance = None
    length = SIDE
    times = (round(5 * 2 * np.pi / LINE_OMEGA, 6),)
    discharge_matters = False  # at rest after whole periods

    def exact(self, x, y, t):
        h, u = line(x, t)
        return h, h * u, np.zeros_like(h)

    def setup(self, mesh):
        return Setup(lambda x, y: line(x, 0)[0] + cell_bed(mesh, parabola, x, y), self.times,
                     bed=parabola, bed_by=bed_source(mesh))


CASES = [ThackerPlanar(), ThackerRadial(), ThackerLine()]
