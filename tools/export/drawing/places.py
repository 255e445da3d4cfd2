"""Where the gauges and the sections of a case are."""
import numpy as np
from matplotlib import patheffects
from matplotlib.collections import LineCollection

from drawing.pictures import plain_text

HALO = [patheffects.withStroke(linewidth=2.2, foreground="white")]


def draw_places(axes, terrain):
    for section in terrain.sections:
        axes.add_collection(LineCollection(section["lines"], colors="black", linewidths=0.9))
    gauges = [place for place in terrain.gauges if terrain.shows(*place)]
    for x, y in gauges:
        axes.plot(x, y, "o", markersize=4.5, color="#D55E00", markeredgecolor="white",
                  markeredgewidth=0.7)
    numbers = [str(number) for number, place in enumerate(terrain.gauges, 1)
               if terrain.shows(*place)]
    ends = [end_of(section, terrain) for section in terrain.sections]
    names = [name_of(number, section) for number, section in enumerate(terrain.sections, 1)]
    named_ends = [(end, name) for end, name in zip(ends, names) if end is not None]
    draw_labels(axes, gauges + [end for end, _ in named_ends],
                numbers + [name for _, name in named_ends])


def name_of(number, section):
    name = plain_text(section["name"] or f"section {number}")
    return (name if len(name) <= 30 else name[:29] + "…").replace("$", r"\$")


def end_of(section, terrain):
    """The northernmost point of a section on the map; none where it is not on it."""
    points = [point for line in section["lines"] for point in line if terrain.shows(*point)]
    return max(points, key=lambda point: (point[1], point[0]), default=None)


def draw_labels(axes, places, labels):
    """Labels beside their places, clear of each other."""
    # Places count from the middle of the picture, whose size in points is known before it is drawn.
    figure = axes.get_figure()
    figure.draw_without_rendering()
    to_points = 72 / figure.dpi
    points = axes.transData.transform(np.reshape(places, (-1, 2))) * to_points
    frame = axes.get_window_extent()
    offsets = label_offsets(points, labels, [end * to_points for end in frame.extents])
    for place, offset, label in zip(places, offsets, labels):
        if np.hypot(*offset) > 15 and label.isdigit():
            axes.annotate("", place, xytext=offset, textcoords="offset points",
                          arrowprops={"arrowstyle": "-", "linewidth": 0.6, "shrinkA": 0,
                                      "shrinkB": 2, "path_effects": HALO})
    for place, offset, label in zip(places, offsets, labels):
        axes.annotate(label, place, xytext=offset, textcoords="offset points", fontsize=9,
                      fontweight="bold" if label.isdigit() else "normal", path_effects=HALO,
                      ha="center", va="center_baseline")


def label_offsets(points, labels, frame):
    """Where the label of every place stands beside its point (both in points of print): at the
    nearest of rings of places around it that no other place or label takes, within the frame (its
    left, lower, right and upper end) if there is one."""
    half_height = 5.0
    taken = [(x - 3, x + 3, y - 3, y + 3) for x, y in points]

    def box_at(x, y, label):
        half_width = 3.2 * len(label) + 0.5
        return x - half_width, x + half_width, y - half_height, y + half_height

    def is_free(box):
        return all(box[1] <= other[0] or other[1] <= box[0] or box[3] <= other[2] or
                   other[3] <= box[2] for other in taken)

    def is_inside(box):
        return (frame[0] <= box[0] and box[1] <= frame[2] and frame[1] <= box[2] and
                box[3] <= frame[3])

    offsets = []
    for (x, y), label in zip(points, labels):
        candidates = [(radius * np.cos(angle), radius * np.sin(angle))
                      for radius in np.arange(10.0, 120.0, 6.0)
                      for angle in np.pi / 4 + np.arange(16) * np.pi / 8]
        free = [c for c in candidates if is_free(box_at(x + c[0], y + c[1], label))]
        inside = (c for c in free if is_inside(box_at(x + c[0], y + c[1], label)))
        offset = next(inside, (free or candidates)[0])
        taken.append(box_at(x + offset[0], y + offset[1], label))
        offsets.append(offset)
    return offsets
