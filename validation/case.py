"""What a validation case is, and how a case with an exact solution is measured."""
import numpy as np

from validation import figures, meshes, norms


SCHEMES = ("LHLLC", "HLL2")
POSITIVE = ("HLL2",)  # that promise no depth below zero


class Table:
    """Titles of the columns that name a row (`keys`) and of those that tell what a scheme gave
    (`measures`), and rows of texts, the keys before the measures."""

    def __init__(self, keys, measures, rows):
        self.keys, self.measures, self.rows = keys, measures, rows


class Result:
    """What a case found by one scheme: tables, remarks made of measured numbers, the criteria it
    was held against as (text, measured, bound, met), and, for the figure, its runs and errors."""

    def __init__(self):
        self.tables, self.remarks, self.criteria = [], [], []
        self.runs, self.measured = {}, {}

    def require_at_most(self, text, measured, allowed):
        self.criteria.append((text, measured, allowed, measured <= allowed))

    def require_at_least(self, text, measured, allowed):
        self.criteria.append((text, measured, allowed, measured >= allowed))

    def missed(self):
        return [criterion for criterion in self.criteria if not criterion[3]]


class Case:
    """One case. Subclasses say what it tests (`tests`), where it comes from (`source`), what the
    first-order scheme cannot do there (`limit`), what is to be known of the second-order one
    (`second_order`), and why a scheme misses a criterion if it does (`reasons`, by scheme);
    `measure` runs it, `draw` fills the figure."""

    name = title = tests = source = limit = second_order = ""
    reasons = {}
    schemes = SCHEMES

    def evaluate(self, simulator, quick=False):
        """Runs the case by the scheme of the simulator; returns a Result. With `quick` it runs the
        coarse meshes only, for the tests."""
        result = Result()
        self.measure(simulator, result, quick)
        if simulator.scheme in POSITIVE:
            result.require_at_most("runs with a depth below zero in any cell at any look",
                                   simulator.below_zero, 0)
        return result

    def measure(self, simulator, result, quick):
        """Runs the case and puts what it found into the result."""
        raise NotImplementedError

    def draw(self, figure, results):
        """Draws the results, by scheme; returns the figure's description."""
        raise NotImplementedError


class AnalyticCase(Case):
    """A case whose exact depth and unit discharge are known in every cell.

    yardstick   {number of cells: norm of the depth} of a plain first-order scheme on squares
    tolerance   relative error of the depth that the finest mesh must not exceed: 5 %, what
                Synolakis et al. (2007) allow against analytical solutions, where not said otherwise
    bounds      {scheme: {(kind, n): relative error of the depth}} that a scheme must keep besides
    """

    sizes = (100, 200, 400)
    quick_sizes = 2
    kinds = ("structured", "irregular", "rotated")
    quick_kind = "irregular"
    yardstick = {}
    bounds = {}
    tolerance = 0.05
    times = ()
    judged_state = -1  # which of the states at these times is held against the exact one
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

    def run(self, simulator, n, kind):
        mesh = self.mesh(n, kind)
        return simulator.simulate(f"{kind}_{n}", f"{self.title}, {n}", mesh, self.setup(mesh))

    def errors(self, run, state):
        at = self.compared(run.x, run.y)
        h, qx, qy = self.exact(run.x, run.y, state.time)
        areas = run.areas[at]
        depth = norms.relative_l1((state.h - h)[at], h[at], areas)
        difference = np.hypot(state.qx - qx, state.qy - qy)
        discharge = norms.relative_l1(difference[at], np.hypot(qx, qy)[at], areas)
        return depth, discharge

    def measure(self, simulator, result, quick):
        rows = []
        for kind in [self.quick_kind] if quick else self.kinds:
            sizes = self.sizes_of(kind, quick)
            runs = [self.run(simulator, n, kind) for n in sizes]
            errors = [self.errors(run, run.states[self.judged_state]) for run in runs]
            result.runs[kind] = dict(zip(sizes, runs))
            result.measured[kind] = dict(zip(sizes, errors))
            rows += self.rows_of(kind, sizes, runs, errors)
            self.judge(result, kind, sizes, errors)
            self.judge_bounds(result, kind, self.bounds.get(simulator.scheme, {}))
        keys = ["mesh", "n", "triangles", "side (m)"]
        measures = ["L1(h)", "order"] + (["L1(q)", "order of q"] if self.discharge_matters else [])
        if self.yardstick:
            keys.append("L1(h), plain scheme")
            measures += ["ratio", "ratio, equal area"]
        result.tables.append(Table(keys, measures, rows))

    def sizes_of(self, kind, quick):
        """A rotated mesh only has to give the errors of the structured one: its coarse sizes do."""
        return self.sizes[:self.quick_sizes] if quick or kind == "rotated" else self.sizes

    def rows_of(self, kind, sizes, runs, errors):
        sides = [run.mesh.size for run in runs]
        orders = [norms.observed_orders(sides, [e[k] for e in errors]) for k in (0, 1)]
        rows = []
        for k, (n, run, (h, q)) in enumerate(zip(sizes, runs, errors)):
            keys = [kind, str(n), str(len(run.areas)), f"{run.mesh.size:.4g}"]
            measures = [f"{h:.2e}", order_text(orders[0][k])]
            if self.discharge_matters:
                measures += [f"{q:.2e}", order_text(orders[1][k])]
            if self.yardstick:
                # Two triangles share a square: at equal area the squares would be smaller.
                same, equal_area = (norms.yardstick_at(self.yardstick, n * factor)
                                    for factor in (1, 2 ** 0.5))
                keys.append(f"{same:.2e}")
                measures += [f"{h / same:.2g}", f"{h / equal_area:.2g}"]
            rows.append(keys + measures)
        return rows

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
        ends = [1 / sizes[0], 1 / sizes[-1]], [errors[0][0], errors[-1][0]]
        order = norms.observed_orders(*ends)[-1]
        if len(sizes) > 2 and order is not None:  # two meshes tell no order
            result.require_at_least(f"{kind}: order of L1(h) from the coarsest to the finest mesh",
                                    order, norms.LOWEST_ORDER)

    def judge_bounds(self, result, kind, bounds):
        for (bounded_kind, n), bound in bounds.items():
            if bounded_kind == kind and n in result.measured[kind]:
                depth, _ = result.measured[kind][n]
                result.require_at_most(f"{kind}, n = {n}: L1(h)", depth, bound)

    def draw(self, figure, results):
        return figures.profile_and_errors(figure, self, results)


def order_text(order):
    return "" if order is None else f"{order:.2f}"
