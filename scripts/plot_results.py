#!/usr/bin/python3
"""Draws the results of a run: a map of one field, or the curves of its gauges or sections."""
import argparse
import io
import json
import os
import re
import sys

import numpy as np

OKABE_ITO = ("#0072B2", "#D55E00", "#009E73", "#CC79A7", "#E69F00", "#56B4E9", "#000000")
LINE_STYLES = ("-", "--", "-.", ":")
FIELDS = {  # label of the colour bar, colour map (all of them safe for colour-blind readers)
    "max_depth": ("largest depth (m)", "GnBu"),
    "depth": ("depth (m)", "GnBu"),
    "velocity": ("velocity (m/s)", "YlOrRd"),
    "level": ("water level (m)", "viridis"),
}


class PlotError(Exception):
    """What the user can mend; its text is all that is shown."""


class Case:
    """A case folder: the names in its data file and the tables behind them."""

    def __init__(self, folder):
        self.folder = folder
        path = self.path("data.json")
        try:
            with open(path) as file:
                self.data = json.load(file)
        except OSError as error:
            raise PlotError(f"{path} couldn't be read: {error.strerror}. Is this a case folder?")
        except json.JSONDecodeError as error:
            raise PlotError(f"{path} is not valid JSON: {error}.")
        self.name = self.setting("name")
        self.zero_depth = self.data.get("model", {}).get("zero depth value", 0.0001)

    def path(self, name):
        return os.path.join(self.folder, name)

    def setting(self, *keys):
        value = self.data
        for key in keys:
            if not isinstance(value, dict) or key not in value:
                raise PlotError(f"{self.path('data.json')} has no \"{' / '.join(keys)}\".")
            value = value[key]
        return value

    def wants(self, output):
        return output in self.data.get("output", {})

    def words(self, *keys):
        """The white-space separated words of the file that the data file names under `keys`."""
        return read_text(self.path(self.setting(*keys))).split()

    def result(self, name):
        """Path of a result in the output folder, which is a prefix as it stands."""
        return self.path(self.setting("output", "folder") + name)

    def mesh(self):
        """Coordinates of the nodes (n, 3) and, cell by cell, the list of its nodes."""
        words = self.words("mesh", "nodes")
        nodes = np.array(words[1:1 + 3 * int(words[0])], float).reshape(-1, 3)
        words = list(map(int, self.words("mesh", "cells")))
        cells, at = [], 1
        for _ in range(words[0]):
            cells.append(words[at + 1:at + 1 + words[at]])
            at += 1 + words[at]
        return nodes, cells

    def gauge_points(self):
        words = self.words("output", "gauges")
        return np.array(words[3:3 + 3 * int(words[0])], float).reshape(-1, 3)[:, :2]

    def section_edges(self):
        """Edge numbers of every section."""
        words = self.words("output", "discharges")
        sections, at = [], 3
        for _ in range(int(words[0])):
            count = int(words[at])
            sections.append(np.array(words[at + 1:at + 1 + count], int))
            at += 1 + count
        return sections

    def edges(self):
        """The two nodes of every edge, and whether it bounds the domain."""
        words = self.words("mesh", "edges")
        edges, at = [], 1
        for _ in range(int(words[0])):
            _, right, node1, node2, code = map(int, words[at:at + 5])
            edges.append((node1, node2, right < 0))
            at += 6 if code in (-3, -4, -33, -44) else 5  # these carry a value or a file name
        edges = np.array(edges)
        return edges[:, :2], edges[:, 2] == 1


def read_text(path):
    try:
        with open(path) as file:
            return file.read()
    except OSError as error:
        raise PlotError(f"{path} couldn't be read: {error.strerror}. Has the case been run?")


def read_table(path, header):
    """A table of numbers; empty columns are dropped."""
    lines = read_text(path).splitlines()[1 if header else 0:]
    rows = [line.split() for line in lines if line.strip()]
    if not rows:
        raise PlotError(f"{path} is empty: the run wrote nothing there yet.")
    rows = [row for row in rows if len(row) == len(rows[0])]  # the last line of a run under way
    try:
        return np.array(rows, float)
    except ValueError:
        raise PlotError(f"{path} is not a table of numbers.")


# --- the field of a map ---------------------------------------------------------------------------

def snapshot_name(time):
    """The program's own name: two decimals, cut off."""
    whole, decimals = f"{float(time):.6f}".split(".")
    return f"pic_{whole}_{decimals[:2]}.txt"


def find_snapshot(case, given):
    """The snapshot asked for (a path, or a name in the output folder), or else the last one."""
    if given:
        paths = [given, case.result(given)]
    else:
        times = case.words("output", "snapshots of flow")[1:]
        paths = [case.result(snapshot_name(time)) for time in reversed(times)]
    for path in paths:
        if os.path.isfile(path):
            return path
    raise PlotError(f"no snapshot was found: looked for {', '.join(paths)}. Has the case been run?")


def snapshot_time(path):
    match = re.search(r"pic_(-?\d+)_(\d\d)\.txt$", path)
    return f"t = {float(match[1] + '.' + match[2]):g} s" if match else os.path.basename(path)


def read_field(case, field, snapshot, cell_count):
    """Depth and the field's values, one per cell, and a few words on what they show."""
    if field == "max_depth":
        path, note = case.result("enveloppe.txt"), "largest depths"
        table = read_table(path, header=False)
        depth = values = table[:, 3]
    else:
        path = find_snapshot(case, snapshot)
        note = snapshot_time(path)
        table = read_table(path, header=True)
        depth = table[:, 3]
        if field == "velocity":
            values = np.hypot(table[:, 4], table[:, 5]) / np.where(depth > 0, depth, np.inf)
        else:
            values = depth if field == "depth" else table[:, 2] + depth
    if len(table) != cell_count:
        raise PlotError(f"{path} has {len(table)} rows for {cell_count} cells: is it this case's?")
    return depth, values, note


# --- maps -----------------------------------------------------------------------------------------

def hillshade(nodes, cells):
    """Lightness of the terrain at the nodes (0 black, 1 white), lit from the north-west; slopes are
    scaled by the terrain's own, so that flat and steep terrain both show."""
    a, b, c = (nodes[[cell[k] for cell in cells]] for k in range(3))
    normal = np.cross(b - a, c - a)
    normal *= np.sign(normal[:, 2:])
    slope = -normal[:, :2] / normal[:, 2:]
    usual = np.quantile(np.hypot(*slope.T), 0.75)
    light = np.tanh(slope @ (np.array([1, -1]) / np.sqrt(2)) / (usual if usual > 0 else 1))
    total, count = np.zeros(len(nodes)), np.zeros(len(nodes))
    for k in range(3):
        corner = [cell[k] for cell in cells]
        np.add.at(total, corner, light)
        np.add.at(count, corner, 1)
    return 0.83 + 0.1 * total / np.maximum(count, 1)


def draw_terrain(axes, nodes, cells, outline):
    from matplotlib.collections import LineCollection

    triangles = [(cell[0], cell[k], cell[k + 1]) for cell in cells for k in range(1, len(cell) - 1)]
    x, y, z = nodes.T
    axes.tripcolor(x, y, triangles, hillshade(nodes, cells), shading="gouraud", cmap="Greys_r",
                   vmin=0, vmax=1, rasterized=True)
    if np.ptp(z) > 0:
        axes.tricontour(x, y, triangles, z, levels=12, colors="0.55", linewidths=0.35)
    axes.add_collection(LineCollection(nodes[outline][:, :, :2], colors="0.35", linewidths=0.7))


def draw_water(figure, axes, nodes, cells, values, wet, field):
    from matplotlib.collections import PolyCollection
    from matplotlib.colors import ListedColormap
    from matplotlib import colormaps
    from mpl_toolkits.axes_grid1 import make_axes_locatable

    label, name = FIELDS[field]
    colours = colormaps[name]
    if field != "level":  # the palest colours would look like dry land
        colours = ListedColormap(colours(np.linspace(0.22, 1, 256)))
    water = PolyCollection([nodes[cell, :2] for cell, is_wet in zip(cells, wet) if is_wet],
                           array=values[wet], cmap=colours, edgecolors="face", linewidths=0.15)
    if wet.any() and field != "level":
        water.set_clim(0, values[wet].max())
    axes.add_collection(water)
    if np.ptp(nodes[:, 1]) > 0.4 * np.ptp(nodes[:, 0]):  # as high as the map, and beside it
        beside = make_axes_locatable(axes).append_axes("right", size=0.16, pad=0.15)
        figure.colorbar(water, cax=beside, label=label)
    else:
        figure.colorbar(water, ax=axes, label=label, location="bottom", shrink=0.5, aspect=30)


def draw_places(axes, case, nodes, ends):
    """Where the gauges and the sections are."""
    from matplotlib.collections import LineCollection
    from matplotlib import patheffects

    halo = [patheffects.withStroke(linewidth=2.2, foreground="white")]
    if case.wants("discharges"):
        for section in case.section_edges():
            axes.add_collection(LineCollection(nodes[ends[section]][:, :, :2], colors="black",
                                               linewidths=0.9))
    if case.wants("gauges"):
        for number, (x, y) in enumerate(case.gauge_points(), 1):
            axes.plot(x, y, "o", markersize=4.5, color="#D55E00", markeredgecolor="white",
                      markeredgewidth=0.7)
            axes.annotate(str(number), (x, y), xytext=(4, 4), textcoords="offset points",
                          fontsize=9, fontweight="bold", path_effects=halo)


def draw_scale(axes, width):
    """A bar of a round length, about a sixth of the map, above its right end."""
    from matplotlib.offsetbox import AnchoredOffsetbox, AuxTransformBox, TextArea, VPacker
    from matplotlib.patches import Rectangle

    power = 10.0 ** np.floor(np.log10(width / 6))
    length = max(factor * power for factor in (1, 2, 5) if factor * power <= width / 6)
    bar = AuxTransformBox(axes.transData)
    bar.add_artist(Rectangle((0, 0), length, 0, edgecolor="black", linewidth=2))
    text = f"{length / 1000:g} km" if length >= 1000 else f"{length:g} m"
    packed = VPacker(children=[bar, TextArea(text, textprops={"fontsize": 9})], align="center",
                     pad=0, sep=3)
    axes.add_artist(AnchoredOffsetbox("lower right", child=packed, frameon=False, borderpad=0.2,
                                      bbox_to_anchor=(1, 1), bbox_transform=axes.transAxes))


def draw_map(plt, case, options):
    from matplotlib.ticker import MaxNLocator

    nodes, cells = case.mesh()
    depth, values, note = read_field(case, options.field, options.snapshot, len(cells))
    threshold = case.zero_depth if options.threshold is None else options.threshold
    wet = depth > threshold

    (west, south), (east, north) = nodes[:, :2].min(axis=0), nodes[:, :2].max(axis=0)
    ratio = (north - south) / (east - west)
    size = (9.6, max(9.6 * ratio + 1.2, 2.6)) if ratio < 1 else (7.2 / ratio + 2.2, 7.2)
    figure, axes = plt.subplots(figsize=size, layout="constrained")
    ends, is_boundary = case.edges()
    draw_terrain(axes, nodes, cells, ends[is_boundary])
    draw_water(figure, axes, nodes, cells, values, wet, options.field)
    draw_places(axes, case, nodes, ends)
    axes.set_aspect("equal")
    margin = 0.01 * max(east - west, north - south)
    axes.set(xlim=(west - margin, east + margin), ylim=(south - margin, north + margin),
             xlabel="x (m)", ylabel="y (m)")
    axes.set_title(options.title or f"{case.name}: {note}", loc="left")
    axes.ticklabel_format(useOffset=False, style="plain")
    axes.xaxis.set_major_locator(MaxNLocator(6, integer=east - west > 10))
    axes.yaxis.set_major_locator(MaxNLocator(2 if ratio < 0.2 else 5, integer=east - west > 10))
    axes.spines[["top", "right"]].set_visible(False)
    draw_scale(axes, east - west)
    return figure


# --- curves ---------------------------------------------------------------------------------------

def time_axis(times):
    """Times and their unit, in hours for long runs."""
    return (times / 3600, "time (h)") if times[-1] > 7000 else (times, "time (s)")


def draw_curves(axes, times, columns, kind):
    for k, column in enumerate(columns.T):
        axes.plot(times, column, color=OKABE_ITO[k % len(OKABE_ITO)], linewidth=1.6,
                  linestyle=LINE_STYLES[k // len(OKABE_ITO) % len(LINE_STYLES)],
                  label=f"{kind} {k + 1}")
    axes.grid(color="0.9")
    axes.spines[["top", "right"]].set_visible(False)
    axes.margins(x=0)


def draw_gauges(plt, case, options):
    """Depth and unit discharge at every gauge; the result has time, then h, qx, qy per gauge."""
    table = read_table(case.result(case.words("output", "gauges")[1]), header=True)
    if table.shape[1] < 4:
        raise PlotError("the gauges file lists no gauge.")
    times, label = time_axis(table[:, 0])
    figure, (upper, lower) = plt.subplots(2, 1, figsize=(8.4, 5.6), sharex=True,
                                          layout="constrained")
    draw_curves(upper, times, table[:, 1::3], "gauge")
    draw_curves(lower, times, np.hypot(table[:, 2::3], table[:, 3::3]), "gauge")
    upper.set(ylabel="depth (m)", title=options.title or f"{case.name}: gauges", ylim=(0, None))
    lower.set(ylabel="unit discharge (m²/s)", xlabel=label, ylim=(0, None))
    upper.legend(loc="center left", bbox_to_anchor=(1, 0.5), frameon=False)
    return figure


def draw_sections(plt, case, options):
    """Discharge through every section; the result's name counts from the case folder."""
    table = read_table(case.path(case.words("output", "discharges")[2]), header=False)
    if table.shape[1] < 2:
        raise PlotError("the sections file lists no section.")
    times, label = time_axis(table[:, 0])
    figure, axes = plt.subplots(figsize=(8.4, 4), layout="constrained")
    draw_curves(axes, times, table[:, 1:], "section")
    axes.set(ylabel="discharge (m³/s)", xlabel=label,
             title=options.title or f"{case.name}: sections")
    axes.legend(loc="center left", bbox_to_anchor=(1, 0.5), frameon=False)
    return figure


# --- command line ---------------------------------------------------------------------------------

def parse(arguments):
    parser = argparse.ArgumentParser(
        description="Draws the results of a run as a picture: a map of one field (the largest "
                    "depths unless another is asked for), or the curves of the gauges or sections.")
    parser.add_argument("case", metavar="CASE_FOLDER", help="folder that holds data.json")
    what = parser.add_mutually_exclusive_group()
    what.add_argument("--field", choices=FIELDS, default="max_depth",
                      help="map of max_depth (default) or of a snapshot's depth, velocity, level")
    what.add_argument("--gauges", action="store_true", help="curves of depth and unit discharge")
    what.add_argument("--sections", action="store_true", help="curves of discharge")
    parser.add_argument("--snapshot", metavar="FILE",
                        help="snapshot to draw: a path or a name in the output folder "
                             "(default: the last one written)")
    parser.add_argument("--threshold", metavar="DEPTH", type=float,
                        help="cells no deeper than this are left dry, in metres (default: the "
                             "data file's zero depth value)")
    parser.add_argument("--output", metavar="FILE.png",
                        help="picture to write (default: NAME.png in the output folder)")
    parser.add_argument("--title", help="title (default: the name of the run and what is shown)")
    options = parser.parse_args(arguments)
    if options.snapshot and (options.gauges or options.sections or options.field == "max_depth"):
        parser.error("--snapshot needs --field depth, velocity or level")
    if options.threshold is not None and (options.gauges or options.sections):
        parser.error("--threshold is for maps")
    return options


def save(figure, output):
    """PNG pictures get a palette of 256 colours, which makes them several times smaller."""
    if not output.lower().endswith(".png"):
        figure.savefig(output, bbox_inches="tight", pad_inches=0.1)
        return
    from PIL import Image  # matplotlib itself needs it

    picture = io.BytesIO()
    figure.savefig(picture, format="png", dpi=120, bbox_inches="tight", pad_inches=0.1)
    with Image.open(picture) as image:
        palette = image.convert("RGB").quantize(256, method=Image.Quantize.MAXCOVERAGE, kmeans=2,
                                                dither=Image.Dither.NONE)
        palette.save(output, optimize=True)


def draw(options):
    case = Case(options.case)
    for output, wanted in (("gauges", options.gauges), ("discharges", options.sections)):
        if wanted and not case.wants(output):
            raise PlotError(f"{case.path('data.json')} asks for no \"{output}\".")
    try:
        import matplotlib
        matplotlib.use("Agg")
        import matplotlib.pyplot as plt
    except ImportError:
        raise PlotError("matplotlib was not found: run scripts/install_dependencies.sh plot.")

    if options.gauges:
        name, figure = "gauges", draw_gauges(plt, case, options)
    elif options.sections:
        name, figure = "sections", draw_sections(plt, case, options)
    else:
        name, figure = options.field, draw_map(plt, case, options)
    output = options.output or case.result(name + ".png")
    try:
        save(figure, output)
    except (OSError, ValueError) as error:
        raise PlotError(f"{output} couldn't be written: {error}.")
    print(output)


def main():
    options = parse(sys.argv[1:])
    try:
        draw(options)
    except PlotError as error:
        sys.exit(f"plot_results.py: {error}")


if __name__ == "__main__":
    main()
