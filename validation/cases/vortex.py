"""A vortex that a uniform flow carries along: smooth, over a flat bed, exact for all times."""
import numpy as np

from validation import input_files, meshes, norms
from validation.case import AnalyticCase, Table
from validation.runner import GRAVITY, Setup, constant

g = GRAVITY
LENGTH, WIDTH = 2.0, 1.0  # m
START, MIDDLE = 0.5, 0.5  # place of the centre at first, m
DEPTH, SPEED = 1.0, 1.0  # of the uniform flow: m, m/s
GAMMA, OMEGA = 5.0, 4 * np.pi  # strength, 1/s; wave number, 1/m: the vortex ends at r = pi / OMEGA


def thrust_of_rotation(s):
    """Integral of s (1 + cos s)^2, the balance of the surface with the rotation, s = OMEGA r."""
    return (0.75 * s ** 2 + 2 * np.cos(s) + 2 * s * np.sin(s) + np.cos(2 * s) / 8
            + s * np.sin(2 * s) / 4)


def vortex(x, y, t):
    """Depth and velocities. Round the centre the water turns by GAMMA (1 + cos(OMEGA r)) per s."""
    X, Y = x - START - SPEED * t, y - MIDDLE
    s = np.minimum(OMEGA * np.hypot(X, Y), np.pi)
    turn = GAMMA * (1 + np.cos(s))
    h = DEPTH + (GAMMA / OMEGA) ** 2 / g * (thrust_of_rotation(s) - thrust_of_rotation(np.pi))
    return h, SPEED - turn * Y, turn * X


class Vortex(AnalyticCase):
    name = "vortex"
    title = "Vortex in a uniform flow"
    tests = ("A vortex half a metre wide is carried over 1 m of flat bed by 1 m/s, and turns about "
             "once meanwhile: a smooth unsteady flow in two dimensions, in which nothing should "
             "change but its place. It tests the order of the scheme, and what it loses of a "
             "swirl.")
    source = ("After Ricchiuto and Bollermann (2009), J. Comput. Phys. 228, 1071–1115, with a "
              "depth of 1 m, a velocity of 1 m/s, the strength 5 1/s and the wave number 4 pi 1/m; "
              "the depth follows from the balance of the surface with the rotation. Errors are "
              "relative to the vortex, that is to what differs from the uniform flow.")
    limit = ("The swirl is damped: more than half of its energy is lost on meshes on which the "
             "second-order scheme keeps nearly all, and the mesh is too coarse for any order to "
             "show.")
    reasons = {"LHLLC": "The vortex is nearly gone on all of these meshes: errors are those of a "
               "vortex that is not there, and cannot fall much."}
    kinds = ("structured", "irregular")
    sizes = (50, 100, 200)
    tolerance = None  # the order and the energy are asked for
    times = (1.0,)
    lowest_orders = {"HLL2": 1.5}
    lowest_energy = {"HLL2": 0.95}  # on the finest mesh

    def mesh(self, n, kind):
        return meshes.Rectangle(LENGTH, WIDTH, n, n // 2, kind)

    def setup(self, mesh):
        return Setup(lambda x, y: vortex(x, y, 0)[0], self.times, zero_depth=1e-4,
                     qx=lambda x, y: self.exact(x, y, 0)[1], qy=lambda x, y: self.exact(x, y, 0)[2],
                     # Levels on both sides: what is asked of here is not the inflow.
                     boundaries={"west": (input_files.LEVEL, repr(DEPTH)),
                                 "east": (input_files.LEVEL, repr(DEPTH))})

    def exact(self, x, y, t):
        h, u, v = vortex(x, y, t)
        return h, h * u, h * v

    def errors(self, run, state):
        h, qx, qy = self.exact(run.x, run.y, state.time)
        return (norms.relative_l1(state.h - h, h - DEPTH, run.areas),
                norms.relative_l1(np.hypot(state.qx - qx, state.qy - qy),
                                  np.hypot(qx - DEPTH * SPEED, qy), run.areas))

    def energy_left(self, run):
        """Kinetic energy of what differs from the uniform flow, as a share of the exact one."""
        def energy(h, qx, qy):
            return np.sum(h * ((qx / h - SPEED) ** 2 + (qy / h) ** 2) * run.areas)

        state = run.states[-1]
        return energy(state.h, state.qx, state.qy) / energy(*self.exact(run.x, run.y, state.time))

    def measure(self, simulator, result, quick):
        super().measure(simulator, result, quick)
        rows = []
        for kind, runs in result.runs.items():
            for n, run in runs.items():
                rows.append([kind, str(n), f"{self.energy_left(run):.3f}"])
            errors = list(result.measured[kind].values())
            order = norms.observed_orders([1 / n for n in runs], [q for _, q in errors])[-1]
            result.require_at_least(f"{kind}: order of L1(q) between the two finest meshes", order,
                                    self.lowest_orders.get(simulator.scheme, norms.LOWEST_ORDER))
            if simulator.scheme in self.lowest_energy and not quick:
                result.require_at_least(f"{kind}, n = {n}: energy left", self.energy_left(run),
                                        self.lowest_energy[simulator.scheme])
        result.tables.append(Table(["mesh", "n"], ["energy left"], rows))


CASES = [Vortex()]
