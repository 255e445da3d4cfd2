"""Maps of the cells over the shaded ground."""
import matplotlib.pyplot as plt
import numpy as np
from matplotlib.cm import ScalarMappable
from matplotlib.collections import LineCollection
from matplotlib.ticker import MaxNLocator
from mpl_toolkits.axes_grid1 import make_axes_locatable

from drawing.arrows import draw_arrows
from drawing.marks import draw_marks
from drawing.pictures import save, title_of
from drawing.places import draw_places
from drawing.scales import over_the_ends, scale_of
from drawing.surroundings import draw_scale_and_north
from drawing.terrain import Terrain

LINES = ("arrival_time",)  # drawn as lines of equal value, too
UNITS = {"s": "s", "m": "m", "m s-1": "m/s", "m2 s-1": "m²/s"}


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


def draw_map(job, terrain, entry, values, limits):
    west, east, south, north = terrain.extent
    ratio = max(north - south, 1e-9) / max(east - west, 1e-9)
    size = (9.6, max(9.6 * ratio + 1.2, 2.6)) if ratio < 1 else (7.2 / ratio + 2.2, 7.2)
    figure, axes = plt.subplots(figsize=size, layout="constrained")
    colours, scale, ticks = scale_of(entry, limits)
    draw_picture(axes, terrain, values, colours, scale)
    if entry["name"] in LINES:
        draw_lines(axes, terrain, values)
    if "velocity" in entry:
        draw_arrows(axes, terrain, np.fromfile(entry["velocity"], np.float32).reshape(-1, 2))
    draw_frame(axes, terrain, ratio)
    shown = entry["long_name"]
    if "time" in entry:
        shown += ", " + format_time(entry["time"])
    axes.set_title(title_of(job, shown), loc="left", pad=24)  # above the bar of the scale
    label = f"{entry['long_name']} ({UNITS[entry['unit']]})"
    extend = over_the_ends(entry, scale, limits)
    paint = ScalarMappable(scale, colours)
    if ratio > 0.4:  # as high as the map, and beside it
        beside = make_axes_locatable(axes).append_axes("right", size=0.16, pad=0.15)
        bar = figure.colorbar(paint, cax=beside, label=label, ticks=ticks, extend=extend)
    else:
        bar = figure.colorbar(paint, ax=axes, label=label, location="bottom", shrink=0.5, aspect=30,
                              ticks=ticks or MaxNLocator(6), extend=extend)
    if ticks:
        bar.set_ticks(ticks, labels=[f"{tick:g}" for tick in ticks])
    draw_scale_and_north(axes, east - west, has_north=bool(terrain.crs))
    if entry.get("has_places", job["has_places"]):
        draw_places(axes, terrain)
    draw_marks(axes, terrain, entry)
    return figure


def draw_frame(axes, terrain, ratio):
    """The coordinates along the map, `ratio` times as high as wide, and their reference system."""
    west, east, south, north = terrain.extent
    margin = 0 if terrain.is_cropped else 0.01 * max(east - west, north - south)
    axes.set_aspect("equal")
    axes.set(xlim=(west - margin, east + margin), ylim=(south - margin, north + margin),
             xlabel=f"x (m) · {terrain.crs}" if terrain.crs else "x (m)", ylabel="y (m)")
    axes.ticklabel_format(useOffset=False, style="plain")
    axes.xaxis.set_major_locator(MaxNLocator(6, integer=east - west > 10))
    axes.yaxis.set_major_locator(MaxNLocator(2 if ratio < 0.2 else 5, integer=east - west > 10))
    axes.spines[["top", "right"]].set_visible(terrain.is_cropped)


def limits_of(fields, terrain):
    """Least and largest value of each quantity, so that its maps share one scale."""
    limits = {}
    for entry, values in fields:
        shown = values[terrain.cells] if terrain.is_cropped else values
        shown = shown[~np.isnan(shown)]
        if len(shown):
            low, high = limits.get(entry["name"], (np.inf, -np.inf))
            limits[entry["name"]] = (min(low, shown.min()), max(high, shown.max()))
    return limits


def draw_maps(job):
    if not job["maps"]:
        return
    terrain = Terrain(job["mesh"])
    fields = [(entry, np.memmap(entry["values"], np.float32, "r")) for entry in job["maps"]]
    limits = limits_of(fields, terrain)
    for entry, values in fields:
        save(draw_map(job, terrain, entry, values, limits.get(entry["name"], (0, 0))),
             entry["picture"], job["dpi"])
