"""What a validation case is, and how a case with an exact solution is measured."""
import os

import numpy as np

from validation import figures, meshes, norms, runner


class Table:
    """Column titles and rows of texts."""

    def __init__(self, titles, rows):
        self.titles, self.rows = titles, rows


class Result:
    """What a case found: tables, remarks made of measured numbers, and the criteria it was held
    against as (text, measured, bound, met)."""

    def __init__(self):
        self.tables, self.remarks, self.criteria = [], [], []

    def require_at_most(self, text, measured, allowed):
        self.criteria.append((text, measured, allowed, measured <= allowed))

    def require_at_least(self, text, measured, allowed):
        self.criteria.append((text, measured, allowed, measured >= allowed))

    def missed(self):
        return [criterion for criterion in self.criteria if not criterion[3]]


class Case:
    """One case. Subclasses say what it tests (`tests`), where it comes from (`source`), what the
    first-order scheme cannot do there (`limit`), and why a criterion is missed if it is
    (`reason`); `evaluate` runs it, `draw` fills the figure. `evaluate` with `quick` runs the
    coarse meshes only, for the tests."""

    name = title = tests = source = limit = reason = ""

    def evaluate(self, folder, quick=False):
        """Runs the case in sub-folders of `folder`; returns a Result."""
        raise NotImplementedError

    def draw(self, figure):
        """Draws what `evaluate` kept; returns the figure's description."""
        raise NotImplementedError


class AnalyticCase(Case):
    """A case whose exact depth and unit discharge are known in every cell.

    yardstick   {number of cells: norm of the depth} of a plain first-order scheme on squares
    tolerance   relative error of the depth that the finest mesh must not exceed: 5 %, what
                Synolakis et al. (2007) allow against analytical solutions, where not said otherwise
    """

    sizes = (100, 200, 400)
    quick_sizes = 2
    kinds = ("structured", "irregular", "rotated")
    yardstick = {}
    tolerance = 0.05
    times = ()
    discharge_matters = True

    def mesh(self, n, kind):
        return meshes.strip(self.length, n, kind)

    def setup(self, mesh):
        raise NotImplementedError

    def exact(self, x, y, t):
        """Depth (m) and unit discharges (m2/s) at the places x, y."""
        raise NotImplementedError

    def compared(self, x, y):
        """Which cells are compared."""
        return slice(None)

    def run(self, folder, n, kind):
        mesh = self.mesh(n, kind)
        return runner.simulate(os.path.join(folder, f"{kind}_{n}"), f"{self.title}, {n}", mesh,
                               self.setup(mesh))

    def errors(self, run, state):
        at = self.compared(run.x, run.y)
        h, qx, qy = self.exact(run.x, run.y, state.time)
        areas = run.areas[at]
        depth = norms.relative_l1((state.h - h)[at], h[at], areas)
        difference = np.hypot(state.qx - qx, state.qy - qy)
        discharge = norms.relative_l1(difference[at], np.hypot(qx, qy)[at], areas)
        return depth, discharge

    def evaluate(self, folder, quick=False):
        kinds = self.kinds[:1] if quick else self.kinds
        self.runs, self.measured = {}, {}
        result, rows = Result(), []
        for kind in kinds:
            sizes = self.sizes_of(kind, quick)
            runs = [self.run(folder, n, kind) for n in sizes]
            errors = [self.errors(run, run.states[-1]) for run in runs]
            self.runs[kind] = dict(zip(sizes, runs))
            self.measured[kind] = dict(zip(sizes, errors))
            rows += self.rows_of(kind, sizes, runs, errors)
            self.judge(result, kind, sizes, errors)
        result.tables.append(Table(self.titles(), rows))
        return result

    def sizes_of(self, kind, quick):
        """A rotated mesh only has to give the errors of the structured one: its coarse sizes do."""
        return self.sizes[:self.quick_sizes] if quick or kind == "rotated" else self.sizes

    def titles(self):
        titles = ["mesh", "n", "triangles", "side (m)", "L1(h)", "order", "L1(q)", "order"]
        return titles + (["plain scheme", "ratio", "ratio, equal area"] if self.yardstick else [])

    def rows_of(self, kind, sizes, runs, errors):
        sides = [run.mesh.size for run in runs]
        orders = [norms.observed_orders(sides, [e[k] for e in errors]) for k in (0, 1)]
        rows = []
        for k, (n, run, (h, q)) in enumerate(zip(sizes, runs, errors)):
            row = [kind, str(n), str(len(run.areas)), f"{run.mesh.size:.4g}", f"{h:.2e}",
                   order_text(orders[0][k]), f"{q:.2e}" if self.discharge_matters else "–",
                   order_text(orders[1][k]) if self.discharge_matters else "–"]
            rows.append(row + self.yardstick_columns(n, h))
        return rows

    def yardstick_columns(self, n, h):
        if not self.yardstick:
            return []
        # Two triangles share a square: at equal area of the cells the squares would be smaller.
        equal_area = norms.yardstick_at(self.yardstick, n * 2 ** 0.5)
        same = norms.yardstick_at(self.yardstick, n)
        return [f"{same:.2e}", f"{h / same:.2f}", f"{h / equal_area:.2f}"]

    def judge(self, result, kind, sizes, errors):
        for n, (h, _) in zip(sizes, errors):
            if n in self.yardstick:
                result.require_at_most(f"{kind}, n = {n}: L1(h) against the plain scheme", h,
                                       norms.FACTOR * self.yardstick[n])
        if kind == "rotated":
            return
        if self.tolerance:
            result.require_at_most(f"{kind}, n = {sizes[-1]}: L1(h), published tolerance",
                                   errors[-1][0], self.tolerance)
        if len(sizes) > 1:
            ends = [1 / sizes[0], 1 / sizes[-1]], [errors[0][0], errors[-1][0]]
            result.require_at_least(f"{kind}: order of L1(h) from the coarsest to the finest mesh",
                                    norms.observed_orders(*ends)[-1], norms.LOWEST_ORDER)

    def draw(self, figure):
        return figures.profile_and_errors(figure, self)


def order_text(order):
    return "" if order is None else f"{order:.2f}"
