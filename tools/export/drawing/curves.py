"""The curves of gauges and sections."""
import csv
import sys

import matplotlib.pyplot as plt
import numpy as np

from drawing.pictures import save, title_of

# Colours of Okabe and Ito, which readers with any colour vision tell apart.
CURVE_COLOURS = ("#0072B2", "#D55E00", "#009E73", "#CC79A7", "#E69F00", "#56B4E9", "#000000")
LINE_STYLES = ("-", "--", "-.", ":")


def time_axis(times):
    """Times and their unit, in hours for long runs."""
    return (times / 3600, "time (h)") if times[-1] > 7000 else (times, "time (s)")


def draw_curves(axes, times, columns, labels):
    for k, (column, label) in enumerate(zip(columns.T, labels)):
        axes.plot(times, column, color=CURVE_COLOURS[k % len(CURVE_COLOURS)], linewidth=1.6,
                  linestyle=LINE_STYLES[k // len(CURVE_COLOURS) % len(LINE_STYLES)],
                  label=label)
    axes.grid(color="0.9")
    axes.spines[["top", "right"]].set_visible(False)
    axes.margins(x=0)


def draw_legend(axes, figure):
    """Beside the axes, or below them where there are more names than fit there."""
    names = axes.get_legend_handles_labels()
    if len(names[0]) <= 12:
        axes.legend(loc="center left", bbox_to_anchor=(1, 0.5), frameon=False)
        return
    columns = 7
    rows = -(-len(names[0]) // columns)
    below = 0.18 * rows + 0.15  # inches
    height = figure.get_figheight() + below
    figure.set_figheight(height)
    figure.get_layout_engine().set(rect=(0, below / height, 1, 1 - below / height))
    figure.legend(*names, loc="lower center", ncols=columns, frameon=False, fontsize=8)


def draw_gauges(table, titles, title, beds, dry_depth):
    """Depth, level and unit discharge; the table has time, then depth, qx and qy of every gauge. Where
    the bed (m) of no gauge is known, there are no levels."""
    times, label = time_axis(table[:, 0])
    depths, qx, qy = table[:, 1::3], table[:, 2::3], table[:, 3::3]
    labels = [name.removesuffix(" depth (m)") for name in titles[1::3]]
    curves = [(depths, {"ylabel": "depth (m)", "ylim": (0, None)}),
              (np.hypot(qx, qy), {"ylabel": "unit discharge (m²/s)", "ylim": (0, None)})]
    if any(bed is not None for bed in beds):
        curves.insert(1, (levels_of(depths, beds, dry_depth), {"ylabel": "water level (m)"}))
    figure, panels = plt.subplots(len(curves), 1, figsize=(8.4, 0.8 + 2.4 * len(curves)),
                                  sharex=True, layout="constrained")
    for axes, (columns, texts) in zip(panels, curves):
        draw_curves(axes, times, columns, labels)
        axes.set(**texts)
        axes.ticklabel_format(axis="y", useOffset=False)
    panels[0].set_title(title)
    panels[-1].set_xlabel(label)
    draw_legend(panels[0], figure)
    return figure


def levels_of(depths, beds, dry_depth):
    """Bed and depth together, nothing where a gauge is dry or its bed is not known (m)."""
    beds = np.array([np.nan if bed is None else bed for bed in beds])
    return np.where(depths > dry_depth, beds + depths, np.nan)


def draw_sections(table, titles, title):
    """Discharge through every section."""
    times, label = time_axis(table[:, 0])
    figure, axes = plt.subplots(figsize=(8.4, 4), layout="constrained")
    labels = [name.removesuffix(" discharge (m3/s)") for name in titles[1:]]
    draw_curves(axes, times, table[:, 1:], labels)
    axes.set(ylabel="discharge (m³/s)", xlabel=label, title=title)
    draw_legend(axes, figure)
    return figure


def read_table(entry):
    """Titles and numbers, a row for each time."""
    with open(entry["table"], encoding="utf-8", newline="") as rows:
        titles = next(csv.reader(rows))
        return titles, np.genfromtxt(rows, delimiter=",", ndmin=2)


def draw_all_curves(job):
    for entry in job["curves"]:
        titles, table = read_table(entry)
        titles = [title.replace("$", r"\$") for title in titles]
        kind = entry["kind"]
        if table.size == 0 or table.shape[1] < 2:
            if "report" in job:
                continue  # which says so
            sys.exit(f"the case's {kind} hold nothing to draw.")
        title = title_of(job, kind)
        figure = (draw_gauges(table, titles, title, entry["beds"], entry["dry_depth"])
                  if kind == "gauges" else draw_sections(table, titles, title))
        save(figure, entry["picture"], job["dpi"])
