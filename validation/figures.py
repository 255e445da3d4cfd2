"""The figures: a profile beside the errors, maps and curves. A scheme has its colour everywhere, of
those of Okabe and Ito; exact solutions are black."""
import re

import numpy as np

BLACK, ORANGE, BLUE, GREEN = "#000000", "#E69F00", "#0072B2", "#009E73"
COLOURS = {"LHLLC": ORANGE, "HLL2": BLUE}
COLOUR_WORDS = "LHLLC is orange, HLL2 blue"
STYLES = (("o", "-"), ("s", "--"), ("^", ":"), ("D", "-."))
MOST_POINTS = 80  # of a curve of results
SHOWN_DEPTH = 1e-3  # m, from which on a velocity is shown
LEAST_ERROR = 1e-7  # that is shown: less than the six digits of the snapshots tell

STYLE = {
    "svg.hashsalt": "validation", "svg.fonttype": "none", "font.family": "sans-serif",
    "font.size": 9, "axes.spines.top": False, "axes.spines.right": False, "axes.grid": True,
    "grid.alpha": 0.3, "grid.linewidth": 0.5, "legend.frameon": False, "lines.linewidth": 1.2}


def save(case, results, path):
    """Draws the figure of a case's results, by scheme; returns what it shows, for the caption."""
    # Here and not above, so that cases can be run without matplotlib.
    import matplotlib.style
    from matplotlib.figure import Figure

    with matplotlib.style.context([STYLE]):
        figure = Figure(figsize=(8, 3), layout="constrained")
        caption = case.draw(figure, results)
        figure.savefig(path, metadata={"Date": None, "Creator": None})
    shorten_numbers(path)
    return caption


def shorten_numbers(path):
    """Hundredths of a point are enough for coordinates, and make the file smaller."""
    with open(path) as file:
        text = file.read()
    text = re.sub(r'(?<= )(d|x|y)="[^"]*"',
                  lambda found: re.sub(r"(\.\d\d)\d+", r"\1", found.group()), text)
    with open(path, "w") as file:
        file.write(text)


def profile_and_errors(figure, case, results):
    left, right = figure.subplots(1, 2, width_ratios=(1.6, 1))
    profile(left, case, results)
    errors(right, case, results)
    return ("Left: depth along the middle on the coarsest mesh, and exact. Right: error of the "
            f"depth against the number of cells. {COLOUR_WORDS}.")


def profile(axes, case, results):
    for (scheme, result), marker in zip(results.items(), ("o", ".")):
        runs = result.runs[list(result.runs)[0]]
        n = min(runs)
        run = runs[n]
        cells = thinned(middle_cells(run))
        state = run.states[case.judged_state]
        axes.plot(run.x[cells], state.h[cells], marker, color=COLOURS[scheme], markersize=3.5,
                  label=f"{scheme}, n = {n}")
    x = np.linspace(0, run.mesh.length, 501)[1:-1]
    h = case.exact(x, np.full_like(x, run.mesh.width / 2), state.time)[0]
    at = case.compared(x, np.full_like(x, run.mesh.width / 2))
    axes.plot(x[at], h[at], color=BLACK, linewidth=1, label="exact")
    axes.set(xlabel="x (m)", ylabel="depth (m)", title=f"t = {state.time:.4g} s")
    axes.legend()


def middle_cells(run):
    """The cells along the middle, by x."""
    if run.mesh.width < 0.5 * run.mesh.length:
        cells = np.arange(len(run.x))
    else:
        cells = np.flatnonzero(np.abs(run.y - run.mesh.width / 2) < 0.5 * run.mesh.size)
    return cells[np.argsort(run.x[cells], kind="stable")]


def thinned(cells):
    return cells[::max(1, len(cells) // MOST_POINTS)]


def errors(axes, case, results):
    """The errors of the depth: colours tell schemes, markers kinds of meshes."""
    for scheme, result in results.items():
        for (kind, measured), (marker, line) in zip(result.measured.items(), STYLES):
            # An error of nothing is shown at the lower end.
            axes.loglog(list(measured), [max(h, LEAST_ERROR) for h, _ in measured.values()],
                        color=COLOURS[scheme], marker=marker, linestyle=line, markersize=4)
    for kind, (marker, line) in zip(result.measured, STYLES):
        axes.plot([], [], color="0.4", marker=marker, linestyle=line, markersize=4, label=kind)
    if case.yardstick:
        axes.loglog(list(case.yardstick), list(case.yardstick.values()), color=BLACK, marker="x",
                    linewidth=0.8, label="plain scheme")
    sizes = list(result.measured[list(result.measured)[0]])
    axes.set(xlabel="n", ylabel="relative L1 error of depth")
    axes.set_xticks(sizes, [str(n) for n in sizes])
    axes.minorticks_off()
    low, high = np.log10(axes.get_ylim())
    axes.set_ylim(10 ** np.floor(low), 10 ** np.ceil(high))  # so that two decades have their labels
    axes.legend(fontsize=7)


def map_of_speed(figure, run, runs):
    """The depth of a run, and the speed of the runs {scheme: run} by distance from the middle."""
    left, right = figure.subplots(1, 2)
    colours = left.tripcolor(*run.mesh.xy.T, run.mesh.cells, run.states[-1].h, cmap="GnBu",
                             rasterized=True)
    figure.colorbar(colours, ax=left, label="depth (m)")
    left.grid(False)
    left.set(aspect="equal", xlabel="x (m)", ylabel="y (m)")
    for scheme, run in runs.items():
        state = run.states[-1]
        wet = state.h > SHOWN_DEPTH
        speed = np.hypot(state.qx[wet], state.qy[wet]) / state.h[wet]
        distance = np.hypot(run.x - run.x.mean(), run.y - run.y.mean())[wet]
        right.semilogy(distance, np.maximum(speed, 1e-20), ".", color=COLOURS[scheme], markersize=2,
                       rasterized=True, label=scheme)
    right.set(xlabel="distance from the middle (m)", ylabel="speed (m/s)")
    right.legend(markerscale=4)
    return ("Left: depth on the finest mesh. Right: speed in its wet cells after the run (1e-20 "
            f"stands for 0). {COLOUR_WORDS}.")


def curves(figure, panels):
    """One panel per (title, x label, y label, curves), a curve being (label, scheme, x, y); the
    scheme of an exact one is None."""
    all_axes = figure.subplots(1, len(panels), squeeze=False)[0]
    for axes, (title, x_label, y_label, lines) in zip(all_axes, panels):
        styles = {scheme: iter(STYLES) for scheme in COLOURS}
        for label, scheme, x, y in lines:
            if scheme is None:
                axes.plot(x, y, color=BLACK, linewidth=1, label=label)
            else:
                marker, _ = next(styles[scheme])
                at = thinned(np.arange(len(x)))
                axes.plot(np.asarray(x)[at], np.asarray(y)[at], marker, color=COLOURS[scheme],
                          markersize=3, label=f"{scheme}, {label}" if label else scheme)
        axes.set(title=title, xlabel=x_label, ylabel=y_label)
        axes.legend(fontsize=7)


def marks(figure, names, observed, series):
    """Levels against observed levels, and their differences by place; `series` holds (label,
    colour, levels)."""
    left, right = figure.subplots(1, 2)
    span = [observed.min() - 0.5, observed.max() + 0.5]
    left.plot(span, span, color=BLACK, linewidth=0.8)
    width = 0.8 / len(series)
    for k, ((label, colour, levels), (marker, _)) in enumerate(zip(series, STYLES)):
        left.plot(observed, levels, marker, color=colour, markersize=4, label=label)
        right.bar(np.arange(len(names)) + (k - (len(series) - 1) / 2) * width, levels - observed,
                  width, color=colour, label=label)
    left.set(xlabel="observed level (m)", ylabel="level (m)")
    right.set(xlabel="point", ylabel="less observed (m)")
    right.set_xticks(range(len(names)), [f"{name:.0f}" for name in names])
    right.axhline(0, color=BLACK, linewidth=0.8)
    left.legend()
    return "Left: levels against flood marks. Right: differences at the five points."
