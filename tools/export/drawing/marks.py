"""Lines and points that a map shows over its values, each kind with a label."""
import matplotlib.pyplot as plt
from matplotlib.collections import LineCollection

from drawing.curves import CURVE_COLOURS
from drawing.pictures import plain_text
from drawing.places import draw_labels


def draw_marks(axes, terrain, entry):
    draw_lines(axes, entry.get("marked_lines", []))
    draw_points(axes, terrain, entry.get("marked_points", []))


def draw_lines(axes, kinds):
    """Lines of several kinds, of which the legend tells the labels."""
    samples = []
    for k, kind in enumerate(kinds):
        colour = CURVE_COLOURS[(k + 1) % len(CURVE_COLOURS)]
        axes.add_collection(LineCollection(kind["lines"], colors=colour, linewidths=3.5,
                                           capstyle="round", zorder=3))
        samples.append(plt.Line2D([], [], color=colour, linewidth=3.5))
    if not kinds:
        return
    legend = axes.legend(samples, [" "] * len(samples), loc="best", fontsize=8, framealpha=0.9)
    for text, kind in zip(legend.get_texts(), kinds):  # afterwards: a legend refuses labels like "_sea"
        text.set_text(plain_text(kind["label"]).replace("$", r"\$"))


def draw_points(axes, terrain, points):
    """Points whose areas are as their shares of a whole."""
    points = [point for point in points if terrain.shows(*point["place"])]
    if not points:
        return
    x, y = zip(*(point["place"] for point in points))
    axes.scatter(x, y, s=[20 + 400 * point["share"] for point in points], color="#D55E00",
                 alpha=0.75, edgecolor="white", linewidth=0.8, zorder=3)
    draw_labels(axes, list(zip(x, y)), [point["label"] for point in points])
