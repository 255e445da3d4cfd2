"""Where the gauges and the sections of a case are."""
import numpy as np
from matplotlib import patheffects
from matplotlib.collections import LineCollection


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
