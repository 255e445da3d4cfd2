"""A column of water collapses: against a fine solution in the radius alone."""
import functools

import numpy as np

from validation import meshes, norms
from validation.case import AnalyticCase
from validation.runner import GRAVITY, Setup

g = GRAVITY
SIDE, RADIUS, INSIDE, OUTSIDE, END = 20.0, 2.5, 2.5, 0.5, 1.4
RADIAL_CELLS = 2000


def minmod(a, b):
    return np.where(a * b > 0, np.where(np.abs(a) < np.abs(b), a, b), 0)


def hll(left, right):
    """Flux between states (h, q) of the one-dimensional equations: Harten, Lax, van Leer (1983)."""
    (hl, ql), (hr, qr) = left, right
    ul, ur, cl, cr = ql / hl, qr / hr, np.sqrt(g * hl), np.sqrt(g * hr)
    sl = np.minimum(np.minimum(ul - cl, ur - cr), 0)
    sr = np.maximum(np.maximum(ul + cl, ur + cr), 0)
    fl = np.array([ql, ql * ul + 0.5 * g * hl * hl])
    fr = np.array([qr, qr * ur + 0.5 * g * hr * hr])
    return (sr * fl - sl * fr + sl * sr * (right - left)) / (sr - sl)


def radial_rates(state, dr, r):
    """Time derivatives of (h, q) at the radii r: second order in space, divergence in the radius as
    a source, -q / r and -q^2 / (h r)."""
    padded = np.concatenate((state[:, 1::-1] * [[1], [-1]], state, state[:, -1:], state[:, -1:]), 1)
    slope = minmod(padded[:, 1:-1] - padded[:, :-2], padded[:, 2:] - padded[:, 1:-1])
    flux = hll((padded[:, 1:-1] + 0.5 * slope)[:, :-1], (padded[:, 1:-1] - 0.5 * slope)[:, 1:])
    h, q = state
    return -(flux[:, 1:] - flux[:, :-1]) / dr - np.array([q / r, q * q / (h * r)])


@functools.lru_cache(maxsize=8)
def radial_solution(end, cells=RADIAL_CELLS, reach=SIDE / 2):
    """Radii, depths and radial unit discharges at the time `end`: Heun's method on a fine grid."""
    dr = reach / cells
    r = (np.arange(cells) + 0.5) * dr
    state = np.array([np.where(r < RADIUS, INSIDE, OUTSIDE), np.zeros(cells)])
    t = 0.0
    while t < end:
        fastest = np.max(np.abs(state[1] / state[0]) + np.sqrt(g * state[0]))
        dt = min(0.4 * dr / fastest, end - t)
        first = state + dt * radial_rates(state, dr, r)
        state = 0.5 * (state + first + dt * radial_rates(first, dr, r))
        t += dt
    return r, state[0], state[1]


class CircularDamBreak(AnalyticCase):
    name = "circular_dam_break"
    title = "Circular dam break"
    tests = ("A column of water, 2.5 m high and wide, collapses into 0.5 m of water. There is no "
             "formula; the reference is a second-order solution in the radius on 2000 cells. It "
             "tests a shock that runs across triangles in all directions.")
    source = ("Set-up of Toro (2001), Shock-Capturing Methods for Free-Surface Shallow Flows "
              "(radius 2.5 m, 2.5 m against 0.5 m); t = 1.4 s; reference computed "
              "here.")
    limit = ("The ring of the shock is wider and lower than it should be, and the dip in the "
             "middle is shallower.")
    kinds = ("structured", "irregular", "rotated")
    sizes = (50, 100, 200)
    bounds = {"HLL2": {("irregular", 50): 2.6e-2, ("irregular", 200): 7e-3}}
    times = (END,)

    def mesh(self, n, kind):
        return meshes.square(SIDE, n, kind)

    def setup(self, mesh):
        def level(x, y):
            r = np.hypot(x - SIDE / 2, y - SIDE / 2)
            return np.where(r < RADIUS, INSIDE, OUTSIDE)
        return Setup(level, self.times)

    def exact(self, x, y, t):
        X, Y = x - SIDE / 2, y - SIDE / 2
        distance = np.hypot(X, Y)
        r, h, q = radial_solution(round(t, 6))
        q = np.interp(distance, r, q)
        divisor = np.where(distance > 0, distance, 1)
        return np.interp(distance, r, h), q * X / divisor, q * Y / divisor

    def measure(self, simulator, result, quick):
        super().measure(simulator, result, quick)
        _, fine, _ = radial_solution(END)
        _, coarse, _ = radial_solution(END, RADIAL_CELLS // 2)
        halved = 0.5 * (fine[::2] + fine[1::2])
        areas = np.arange(len(coarse)) + 0.5  # of rings, up to a factor
        result.remarks.append("The reference differs from that on half as many cells by "
                              f"{norms.relative_l1(coarse - halved, halved, areas):.1e} (relative "
                              "L1).")


CASES = [CircularDamBreak()]
