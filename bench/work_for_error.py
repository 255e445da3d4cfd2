"""Work for a given error: the flux schemes on cases whose solution is known, on finer and finer
meshes; the error of the depth over the time that the steps take on one thread."""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.abspath(__file__))))

from validation import case, cases, figures, runner

# Their meshes, of n squares along the length; the schemes get the same.
MESHES = {"stoker": (50, 100, 200, 400, 800), "ritter": (50, 100, 200, 400, 800),
          "circular_dam_break": (25, 50, 100, 200),
          "thacker_planar": (25, 50, 100, 200), "bump_subcritical": (50, 100, 200, 400),
          "macdonald_supercritical": (50, 100, 200, 400)}
KIND = "irregular"
TITLES = ["case", "LHLLC: n", "error", "s", "HLL2: n", "error", "s", "times less work"]


class Curve:
    """Of one scheme in one case: numbers n of the meshes, relative L1 errors of the depth, and the
    times of all steps, the shortest of several runs, s."""

    def __init__(self, sizes, errors, seconds):
        self.sizes, self.errors, self.seconds = sizes, errors, seconds

    def coarsest_within(self, error):
        """Position of the coarsest mesh whose error is no larger; None without one."""
        return next((k for k, own in enumerate(self.errors) if own <= error), None)

    def texts(self, k):
        return [str(self.sizes[k]), f"{self.errors[k]:.1e}", f"{self.seconds[k]:.3f}"]


def curve_of(test, scheme, repeats):
    simulator = runner.Simulator(os.path.join(runner.ROOT, "build", "work_for_error"), scheme)
    sizes, errors, seconds = MESHES[test.name], [], []
    for n in sizes:
        runs = [test.run(simulator, n, KIND) for _ in range(repeats)]
        errors.append(test.errors(runs[0], runs[0].states[-1])[0])
        seconds.append(min(run.report["wall_time"]["steps_s"] for run in runs))
    return Curve(sizes, errors, seconds)


def row_of(title, reference, other):
    """The finest mesh of the reference, and the coarsest of the other that is no worse."""
    k = other.coarsest_within(reference.errors[-1])
    if k is None:
        return [title, *reference.texts(-1), "–", "–", "–", "–"]
    return [title, *reference.texts(-1), *other.texts(k),
            f"{reference.seconds[-1] / other.seconds[k]:.0f}"]


def draw(curves, path):
    from matplotlib.figure import Figure
    import matplotlib.style

    with matplotlib.style.context([figures.STYLE]):
        figure = Figure(figsize=(8, 4.6), layout="constrained")
        all_axes = figure.subplots(2, len(curves) // 2).flat
        for axes, (title, of_case) in zip(all_axes, curves.items()):
            for (scheme, curve), (marker, line) in zip(of_case.items(), figures.STYLES):
                axes.loglog(curve.seconds, curve.errors, color=figures.COLOURS[scheme],
                            marker=marker, linestyle=line, markersize=4, label=scheme)
            axes.set_title(title.split(" (")[0], fontsize=8)
            axes.set(xlabel="time of the steps (s)", ylabel="relative L1 error")
        figure.axes[0].legend()
        figure.savefig(path, metadata={"Date": None, "Creator": None})
    figures.shorten_numbers(path)


def measure(program, picture, repeats):
    """Runs the cases by a program and draws the picture; titles and rows of the table."""
    runner.PROGRAM = program
    os.makedirs(os.path.dirname(picture), exist_ok=True)
    tests = [test for test in cases.CASES if test.name in MESHES]
    curves = {test.title: {scheme: curve_of(test, scheme, repeats) for scheme in case.SCHEMES}
              for test in tests}
    draw(curves, picture)
    return TITLES, [row_of(title, *of_case.values()) for title, of_case in curves.items()]
