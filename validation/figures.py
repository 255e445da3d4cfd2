"""The figures: a profile beside the errors, maps and curves. Colours are those of Okabe and Ito."""
import re

import numpy as np

BLACK, ORANGE, BLUE, GREEN, RED, PINK = ("#000000", "#E69F00", "#0072B2", "#009E73", "#D55E00",
                                         "#CC79A7")
KIND_STYLES = ((BLUE, "o", "-"), (RED, "s", "--"), (GREEN, "^", ":"), (PINK, "D", "-."))
MOST_POINTS = 80  # of a curve of results
SHOWN_DEPTH = 1e-3  # m, from which on a velocity is shown

STYLE = {
    "svg.hashsalt": "validation", "svg.fonttype": "none", "font.family": "sans-serif",
    "font.size": 9, "axes.spines.top": False, "axes.spines.right": False, "axes.grid": True,
    "grid.alpha": 0.3, "grid.linewidth": 0.5, "legend.frameon": False, "lines.linewidth": 1.2}


def save(case, path):
    """Draws the figure of a case; returns what it shows, for the caption."""
    # Here and not above, so that cases can be run without matplotlib.
    import matplotlib.style
    from matplotlib.figure import Figure

    with matplotlib.style.context([STYLE]):
        figure = Figure(figsize=(8, 3), layout="constrained")
        caption = case.draw(figure)
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


def profile_and_errors(figure, case):
    left, right = figure.subplots(1, 2, width_ratios=(1.6, 1))
    profile(left, case)
    errors(right, case)
    return ("Left: depth along the middle, computed on the coarsest and the finest mesh, and "
            "exact. Right: error of the depth against the number of cells.")


def profile(axes, case):
    kind = list(case.runs)[0]
    runs = case.runs[kind]
    for n, colour, marker in ((min(runs), ORANGE, "o"), (max(runs), BLUE, ".")):
        run = runs[n]
        cells = thinned(middle_cells(run))
        axes.plot(run.x[cells], run.states[-1].h[cells], marker, color=colour, markersize=3.5,
                  label=f"n = {n}")
    x = np.linspace(0, run.mesh.length, 501)[1:-1]
    h = case.exact(x, np.full_like(x, run.mesh.width / 2), run.states[-1].time)[0]
    at = case.compared(x, np.full_like(x, run.mesh.width / 2))
    axes.plot(x[at], h[at], color=BLACK, linewidth=1, label="exact")
    axes.set(xlabel="x (m)", ylabel="depth (m)", title=f"t = {run.states[-1].time:.4g} s")
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


def errors(axes, case):
    for (kind, measured), (colour, marker, line) in zip(case.measured.items(), KIND_STYLES):
        axes.loglog(list(measured), [h for h, _ in measured.values()], color=colour, marker=marker,
                    linestyle=line, markersize=4, label=kind)
    if case.yardstick:
        axes.loglog(list(case.yardstick), list(case.yardstick.values()), color=BLACK, marker="x",
                    linewidth=0.8, label="plain scheme")
    sizes = list(case.measured[list(case.measured)[0]])
    axes.set(xlabel="n", ylabel="relative L1 error of depth")
    axes.set_xticks(sizes, [str(n) for n in sizes])
    axes.minorticks_off()
    low, high = np.log10(axes.get_ylim())
    axes.set_ylim(10 ** np.floor(low), 10 ** np.ceil(high))  # so that two decades have their labels
    axes.legend()


def map_of_speed(figure, run, level):
    """Depth and arrows of the velocity, and the speed along the middle."""
    left, right = figure.subplots(1, 2)
    state, xy = run.states[-1], run.mesh.xy
    colours = left.tripcolor(*xy.T, run.mesh.cells, state.h, cmap="GnBu", rasterized=True)
    figure.colorbar(colours, ax=left, label="depth (m)")
    wet = state.h > SHOWN_DEPTH
    u, v = state.qx[wet] / state.h[wet], state.qy[wet] / state.h[wet]
    speed = np.hypot(u, v)
    left.grid(False)
    left.set(aspect="equal", xlabel="x (m)", ylabel="y (m)")
    distance = np.hypot(run.x - run.x.mean(), run.y - run.y.mean())[wet]
    right.semilogy(distance, np.maximum(speed, 1e-20), ".", color=BLUE, markersize=2,
                   rasterized=True)
    right.set(xlabel="distance from the middle (m)", ylabel="speed (m/s)")
    return ("Left: depth on the finest mesh. Right: speed in its wet cells after the run (1e-20 "
            "stands for 0).")


def curves(figure, panels):
    """One panel per (title, x label, y label, curves), a curve being (label, x, y, is exact)."""
    all_axes = figure.subplots(1, len(panels), squeeze=False)[0]
    for axes, (title, x_label, y_label, lines) in zip(all_axes, panels):
        styles = iter(KIND_STYLES)
        for label, x, y, exact in lines:
            if exact:
                axes.plot(x, y, color=BLACK, linewidth=1, label=label)
            else:
                colour, marker, _ = next(styles)
                at = thinned(np.arange(len(x)))
                axes.plot(np.asarray(x)[at], np.asarray(y)[at], marker, color=colour, markersize=3,
                          label=label)
        axes.set(title=title, xlabel=x_label, ylabel=y_label)
        axes.legend()


def marks(figure, names, observed, series):
    """Levels against observed levels, and their differences by place."""
    left, right = figure.subplots(1, 2)
    span = [observed.min() - 0.5, observed.max() + 0.5]
    left.plot(span, span, color=BLACK, linewidth=0.8)
    width = 0.8 / len(series)
    for k, ((label, levels), (colour, marker, _)) in enumerate(zip(series, KIND_STYLES)):
        left.plot(observed, levels, marker, color=colour, markersize=4, label=label)
        right.bar(np.arange(len(names)) + (k - 0.5) * width, levels - observed, width, color=colour,
                  label=label)
    left.set(xlabel="observed level (m)", ylabel="level (m)")
    right.set(xlabel="point", ylabel="less observed (m)")
    right.set_xticks(range(len(names)), [f"{name:.0f}" for name in names])
    right.axhline(0, color=BLACK, linewidth=0.8)
    left.legend()
    return "Left: levels against flood marks. Right: differences at the five points."
