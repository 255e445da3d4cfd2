#!/usr/bin/python3
"""Draws the maps and curves that "quillmere-export plot" asks for in the file job.json of the working
folder, where the pictures go too.

Beside the job lie arrays of the machine's own numbers: values of the cells, the triangles of the mesh,
and the triangle in which every pixel of the map lies.
"""
import csv
import io
import json
import sys
import textwrap

import numpy as np

try:
    import matplotlib
    matplotlib.use("Agg")
    import matplotlib.pyplot as plt
    from matplotlib import colormaps, patheffects
    from matplotlib.cm import ScalarMappable
    from matplotlib.collections import LineCollection
    from matplotlib.colors import BoundaryNorm, ListedColormap, Normalize
    from matplotlib.offsetbox import AnchoredOffsetbox, AuxTransformBox, TextArea, VPacker
    from matplotlib.patches import Rectangle
    from matplotlib.ticker import MaxNLocator
    from mpl_toolkits.axes_grid1 import make_axes_locatable
except ImportError as error:
    sys.exit(f"matplotlib was not found ({error}): install it (Debian: python3-matplotlib).")

# Colours of Okabe and Ito, which readers with any colour vision tell apart.
CURVE_COLOURS = ("#0072B2", "#D55E00", "#009E73", "#CC79A7", "#E69F00", "#56B4E9", "#000000")
LINE_STYLES = ("-", "--", "-.", ":")
# Colour maps for readers with any colour vision; pale ends would look like dry land.
MAP_COLOURS = {"max_depth": "GnBu", "depth": "GnBu", "velocity": "YlOrRd", "bed": "cividis",
               "bed_change": "PuOr_r", "sediment_thickness": "YlOrBr",
               "infiltrated_depth": "PuBu", "peak_depth": "GnBu", "peak_speed": "YlOrRd",
               "hazard": "YlOrRd", "arrival_time": "viridis_r", "time_under_water": "PuBu"}
PALE = ("GnBu", "YlOrRd", "YlOrBr", "PuBu")
LINES = ("arrival_time",)  # drawn as lines of equal value, too
UNITS = {"s": "s", "m": "m", "m s-1": "m/s", "m2 s-1": "m²/s"}


class Terrain:
    """What all maps of a case share: pixels, the shaded ground, outline, gauges and sections."""

    def __init__(self, mesh):
        def load(name, kind):
            return np.fromfile(name, kind)

        grid = mesh["grid"]
        rows, columns, size = grid["rows"], grid["columns"], grid["resolution"]
        self.bounds = (grid["west"], grid["west"] + columns * size,
                       grid["north"] - rows * size, grid["north"])
        self.extent = mesh["extent"]
        self.outline, self.sections = mesh["outline"], mesh["sections"]
        self.gauges = mesh["gauges"]

        pixels = load("pixels", np.int32).reshape(rows, columns)
        self.inside = pixels >= 0
        triangle = pixels[self.inside]
        self.cells = load("triangle_cells", np.int32)[triangle]
        x, y, z = load("x", float), load("y", float), load("terrain", float)
        triangles = load("triangles", np.int32).reshape(-1, 3)
        self.ground = self.draw_ground(x, y, z, triangles, triangle, grid)

    def on_pixels(self, values, nothing=np.nan):
        image = np.full(self.inside.shape, nothing)
        image[self.inside] = values
        return image

    def draw_ground(self, x, y, z, triangles, triangle, grid):
        """Elevation and lightness of every pixel, linear in the triangles."""
        row, column = np.nonzero(self.inside)
        px = grid["west"] + (column + 0.5) * grid["resolution"]
        py = grid["north"] - (row + 0.5) * grid["resolution"]
        a, b, c = triangles[triangle].T
        area = (x[b] - x[a]) * (y[c] - y[a]) - (x[c] - x[a]) * (y[b] - y[a])
        of_b = ((px - x[a]) * (y[c] - y[a]) - (x[c] - x[a]) * (py - y[a])) / area
        of_c = ((x[b] - x[a]) * (py - y[a]) - (px - x[a]) * (y[b] - y[a])) / area
        of_a = 1 - of_b - of_c
        light = hillshade(x, y, z, triangles)
        self.elevation = self.on_pixels(of_a * z[a] + of_b * z[b] + of_c * z[c])
        self.has_contours = has_relief(z)
        return self.on_pixels(of_a * light[a] + of_b * light[b] + of_c * light[c], 1.0)


def has_relief(z):
    """Whether elevations differ by more than rounding."""
    return np.ptp(z) > 1e-9 * np.abs(z).max()


def hillshade(x, y, z, triangles):
    """Lightness of the nodes (0 black, 1 white), lit from the north-west; slopes are scaled by the
    terrain's own, so that flat and steep terrain both show."""
    a, b, c = triangles.T
    normal = np.cross(np.column_stack((x[b] - x[a], y[b] - y[a], z[b] - z[a])),
                      np.column_stack((x[c] - x[a], y[c] - y[a], z[c] - z[a])))
    if not has_relief(z):
        return np.full(len(x), 0.83)
    slope = -normal[:, :2] / np.where(normal[:, 2:] > 0, normal[:, 2:], np.inf)
    usual = np.quantile(np.hypot(*slope.T), 0.75)
    light = np.tanh(slope @ (np.array([1, -1]) / np.sqrt(2)) / (usual if usual > 0 else 1))
    corners = triangles.ravel()
    total = np.bincount(corners, np.repeat(light, 3), len(x))
    return 0.83 + 0.1 * total / np.maximum(np.bincount(corners, minlength=len(x)), 1)


# --- titles ---------------------------------------------------------------------------------------

def title_of(job, shown):
    """The user's title, or what is shown of the case, letter by letter: without the signs that no
    font has, a dollar sign begins no formula, and a long text takes several lines."""
    text = job["title"] or f"{job['case']}: {shown}"
    text = "".join(c if c.isprintable() or c == "\n" else " " for c in text)
    lines = [part for line in text.split("\n") for part in textwrap.wrap(line, 110) or [""]]
    if len(lines) > 6:
        lines[5:] = [lines[5] + " …"]
    return "\n".join(lines).replace("$", r"\$")


# --- maps -----------------------------------------------------------------------------------------

def colour_scale(name, lowest, highest):
    """Colour map and range for values from `lowest` to `highest`."""
    chosen = MAP_COLOURS.get(name, "viridis")
    colours = colormaps[chosen]
    if chosen in PALE:
        colours = ListedColormap(colours(np.linspace(0.22, 1, 256)))
        lowest = min(lowest, 0)
    if name == "bed_change":  # no change is the middle
        highest = max(abs(lowest), abs(highest))
        lowest = -highest
    if highest <= lowest:
        lowest, highest = lowest - 0.5 * (chosen not in PALE), highest + 0.5
    return colours, Normalize(lowest, highest)


def class_scale(name, bounds):
    """One colour for each class: below the first bound, between two, and from the last one on."""
    colours = colormaps[MAP_COLOURS.get(name, "viridis")]
    places = np.linspace(0.22 if MAP_COLOURS.get(name) in PALE else 0, 1, len(bounds) + 1)
    return (ListedColormap(colours(places)),
            BoundaryNorm(bounds, len(bounds) + 1, extend="both"))


def draw_lines(axes, terrain, values):
    """Lines of equal value, with their values."""
    shown = values[~np.isnan(values)]
    if not len(shown) or np.ptp(shown) == 0:
        return
    levels = MaxNLocator(8).tick_values(shown.min(), shown.max())
    lines = axes.contour(terrain.on_pixels(values[terrain.cells]), levels=levels, colors="black",
                         linewidths=0.6, extent=terrain.bounds, origin="upper")
    axes.clabel(lines, fmt="%g", fontsize=8)


def format_time(time):
    text = f"t = {time:g} s"
    if time < 3600:
        return text
    minutes = round(time / 60)
    return f"{text} ({minutes // 60} h {minutes % 60:02d} min)"


def draw_picture(axes, terrain, values, colours, scale):
    """The shaded ground, and the values over it where there are any."""
    image = np.repeat(terrain.ground[:, :, None], 4, axis=2)
    image[:, :, 3] = terrain.inside
    on_cells = values[terrain.cells]
    shown = ~np.isnan(on_cells)
    painted = image[terrain.inside]
    painted[shown] = colours(scale(on_cells[shown]))
    image[terrain.inside] = painted
    axes.imshow(image, extent=terrain.bounds, origin="upper")
    if terrain.has_contours:
        axes.contour(terrain.elevation, levels=12, colors="0.55", linewidths=0.35,
                     extent=terrain.bounds, origin="upper")
    axes.add_collection(LineCollection(terrain.outline, colors="0.35", linewidths=0.7))


def draw_places(axes, terrain):
    """Where the gauges and the sections are."""
    halo = [patheffects.withStroke(linewidth=2.2, foreground="white")]
    for section in terrain.sections:
        axes.add_collection(LineCollection(section, colors="black", linewidths=0.9))
    for x, y in terrain.gauges:
        axes.plot(x, y, "o", markersize=4.5, color="#D55E00", markeredgecolor="white",
                  markeredgewidth=0.7)
    # Places count from the middle of the picture, whose size in points is known before it is drawn.
    figure = axes.get_figure()
    figure.draw_without_rendering()
    to_points = 72 / figure.dpi
    points = axes.transData.transform(np.reshape(terrain.gauges, (-1, 2))) * to_points
    offsets = label_offsets(points)
    for place, offset in zip(terrain.gauges, offsets):
        if np.hypot(*offset) > 15:
            axes.annotate("", place, xytext=offset, textcoords="offset points",
                          arrowprops={"arrowstyle": "-", "linewidth": 0.6, "shrinkA": 0,
                                      "shrinkB": 2, "path_effects": halo})
    for number, (place, offset) in enumerate(zip(terrain.gauges, offsets), 1):
        axes.annotate(str(number), place, xytext=offset, textcoords="offset points", fontsize=9,
                      fontweight="bold", path_effects=halo, ha="center", va="center_baseline")


def label_offsets(points):
    """Where the number of every gauge stands beside its point (both in points of print): at the
    nearest of rings of places around it that no other gauge or number takes."""
    half_height = 5.0
    taken = [(x - 3, x + 3, y - 3, y + 3) for x, y in points]

    def box_at(x, y, number):
        half_width = 3.2 * len(str(number)) + 0.5
        return x - half_width, x + half_width, y - half_height, y + half_height

    def is_free(box):
        return all(box[1] <= other[0] or other[1] <= box[0] or box[3] <= other[2] or
                   other[3] <= box[2] for other in taken)

    offsets = []
    for number, (x, y) in enumerate(points, 1):
        candidates = [(radius * np.cos(angle), radius * np.sin(angle))
                      for radius in np.arange(10.0, 120.0, 6.0)
                      for angle in np.pi / 4 + np.arange(16) * np.pi / 8]
        offset = next((c for c in candidates if is_free(box_at(x + c[0], y + c[1], number))),
                      candidates[0])
        taken.append(box_at(x + offset[0], y + offset[1], number))
        offsets.append(offset)
    return offsets


def draw_scale(axes, width):
    """A bar of a round length, about a sixth of the map, above its right end."""
    power = 10.0 ** np.floor(np.log10(width / 6))
    length = max(factor * power for factor in (1, 2, 5) if factor * power <= width / 6)
    bar = AuxTransformBox(axes.transData)
    bar.add_artist(Rectangle((0, 0), length, 0, edgecolor="black", linewidth=2))
    text = f"{length / 1000:g} km" if length >= 1000 else f"{length:g} m"
    packed = VPacker(children=[bar, TextArea(text, textprops={"fontsize": 9})], align="center",
                     pad=0, sep=3)
    axes.add_artist(AnchoredOffsetbox("lower right", child=packed, frameon=False, borderpad=0.2,
                                      bbox_to_anchor=(1, 1), bbox_transform=axes.transAxes))


def draw_map(job, terrain, entry, values, limits):
    west, east, south, north = terrain.extent
    ratio = max(north - south, 1e-9) / max(east - west, 1e-9)
    size = (9.6, max(9.6 * ratio + 1.2, 2.6)) if ratio < 1 else (7.2 / ratio + 2.2, 7.2)
    figure, axes = plt.subplots(figsize=size, layout="constrained")
    classes = entry.get("classes")
    colours, scale = (class_scale(entry["name"], classes) if classes
                      else colour_scale(entry["name"], *limits))
    draw_picture(axes, terrain, values, colours, scale)
    if entry["name"] in LINES:
        draw_lines(axes, terrain, values)
    axes.set_aspect("equal")
    margin = 0.01 * max(east - west, north - south)
    axes.set(xlim=(west - margin, east + margin), ylim=(south - margin, north + margin),
             xlabel="x (m)", ylabel="y (m)")
    shown = entry["long_name"]
    if "time" in entry:
        shown += ", " + format_time(entry["time"])
    axes.set_title(title_of(job, shown), loc="left", pad=24)  # above the bar of the scale
    axes.ticklabel_format(useOffset=False, style="plain")
    axes.xaxis.set_major_locator(MaxNLocator(6, integer=east - west > 10))
    axes.yaxis.set_major_locator(MaxNLocator(2 if ratio < 0.2 else 5, integer=east - west > 10))
    axes.spines[["top", "right"]].set_visible(False)
    label = f"{entry['long_name']} ({UNITS[entry['unit']]})"
    paint = ScalarMappable(scale, colours)
    if ratio > 0.4:  # as high as the map, and beside it
        beside = make_axes_locatable(axes).append_axes("right", size=0.16, pad=0.15)
        figure.colorbar(paint, cax=beside, label=label, ticks=classes)
    else:
        figure.colorbar(paint, ax=axes, label=label, location="bottom", shrink=0.5, aspect=30,
                        ticks=classes or MaxNLocator(6))
    draw_scale(axes, east - west)
    draw_places(axes, terrain)
    return figure


def limits_of(fields):
    """Least and largest value of each quantity, so that its maps share one scale."""
    limits = {}
    for entry, values in fields:
        shown = values[~np.isnan(values)]
        if len(shown):
            low, high = limits.get(entry["name"], (np.inf, -np.inf))
            limits[entry["name"]] = (min(low, shown.min()), max(high, shown.max()))
    return limits


def draw_maps(job):
    if not job["maps"]:
        return
    terrain = Terrain(job["mesh"])
    fields = [(entry, np.memmap(entry["values"], np.float32, "r")) for entry in job["maps"]]
    limits = limits_of(fields)
    for entry, values in fields:
        save(draw_map(job, terrain, entry, values, limits.get(entry["name"], (0, 0))),
             entry["picture"])


# --- curves ---------------------------------------------------------------------------------------

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


def draw_gauges(table, titles, title):
    """Depth and unit discharge; the table has time, then depth, qx and qy of every gauge."""
    times, label = time_axis(table[:, 0])
    figure, (upper, lower) = plt.subplots(2, 1, figsize=(8.4, 5.6), sharex=True,
                                          layout="constrained")
    labels = [name.removesuffix(" depth (m)") for name in titles[1::3]]
    draw_curves(upper, times, table[:, 1::3], labels)
    draw_curves(lower, times, np.hypot(table[:, 2::3], table[:, 3::3]), labels)
    upper.set(ylabel="depth (m)", title=title, ylim=(0, None))
    lower.set(ylabel="unit discharge (m²/s)", xlabel=label, ylim=(0, None))
    draw_legend(upper, figure)
    return figure


def draw_sections(table, titles, title):
    """Discharge through every section."""
    times, label = time_axis(table[:, 0])
    figure, axes = plt.subplots(figsize=(8.4, 4), layout="constrained")
    labels = [name.removesuffix(" discharge (m3/s)") for name in titles[1:]]
    draw_curves(axes, times, table[:, 1:], labels)
    axes.set(ylabel="discharge (m³/s)", xlabel=label, title=title)
    draw_legend(axes, figure)
    return figure


def draw_all_curves(job):
    for entry in job["curves"]:
        with open(entry["table"], encoding="utf-8", newline="") as rows:
            titles = [title.replace("$", r"\$") for title in next(csv.reader(rows))]
            table = np.genfromtxt(rows, delimiter=",", ndmin=2)
        kind = entry["kind"]
        if table.size == 0 or table.shape[1] < 2:
            sys.exit(f"the case's {kind} hold nothing to draw.")
        draw = draw_gauges if kind == "gauges" else draw_sections
        save(draw(table, titles, title_of(job, kind)), entry["picture"])


# --- pictures -------------------------------------------------------------------------------------

def save(figure, output):
    """PNG pictures get a palette of 256 colours, which makes them several times smaller."""
    try:
        if output.endswith(".svg"):
            figure.savefig(output, format="svg", bbox_inches="tight", pad_inches=0.1,
                           metadata={"Date": None})
        elif output.endswith(".pdf"):
            figure.savefig(output, format="pdf", bbox_inches="tight", pad_inches=0.1,
                           metadata={"CreationDate": None})
        else:
            save_png(figure, output)
    except OSError as error:
        sys.exit(f"{output} couldn't be written: {error}.")
    plt.close(figure)


def save_png(figure, output):
    from PIL import Image  # matplotlib itself needs it

    picture = io.BytesIO()
    figure.savefig(picture, format="png", dpi=120, bbox_inches="tight", pad_inches=0.1)
    with Image.open(picture) as image:
        palette = image.convert("RGB").quantize(256, method=Image.Quantize.MAXCOVERAGE,
                                                dither=Image.Dither.NONE)
        palette.save(output, format="PNG", optimize=True)


def main():
    with open("job.json", encoding="utf-8") as file:
        job = json.load(file)
    plt.rcParams["svg.fonttype"] = "none"  # texts stay texts
    plt.rcParams["svg.hashsalt"] = "quillmere"  # the same picture has the same bytes
    draw_maps(job)
    draw_all_curves(job)


if __name__ == "__main__":
    main()
