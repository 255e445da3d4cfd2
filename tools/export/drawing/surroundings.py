"""What stands around a map: the bar of its scale, and where north is."""
import numpy as np
from matplotlib.offsetbox import (AnchoredOffsetbox, AuxTransformBox, DrawingArea, TextArea,
                                  VPacker)
from matplotlib.patches import Polygon, Rectangle
from matplotlib.transforms import ScaledTranslation


def draw_scale_and_north(axes, width, has_north):
    """Above the right end of the map; `width` is what it shows, m."""
    if has_north:
        place_above(axes, north_arrow(), 0)
    place_above(axes, scale_bar(axes, width), 22 if has_north else 0)


def place_above(axes, box, points_from_right):
    shift = ScaledTranslation(-points_from_right / 72, 0, axes.figure.dpi_scale_trans)
    axes.add_artist(AnchoredOffsetbox("lower right", child=box, frameon=False, borderpad=0.2,
                                      bbox_to_anchor=(1, 1),
                                      bbox_transform=axes.transAxes + shift))


def scale_bar(axes, width):
    """A bar of a round length, about a sixth of the map."""
    power = 10.0 ** np.floor(np.log10(width / 6))
    length = max(factor * power for factor in (1, 2, 5) if factor * power <= width / 6)
    bar = AuxTransformBox(axes.transData)
    bar.add_artist(Rectangle((0, 0), length, 0, edgecolor="black", linewidth=2))
    text = f"{length / 1000:g} km" if length >= 1000 else f"{length:g} m"
    return VPacker(children=[bar, TextArea(text, textprops={"fontsize": 9})], align="center",
                   pad=0, sep=3)


def north_arrow():
    """The axes of projected coordinates point to the east and to the north of their grid."""
    arrow = DrawingArea(9, 12)
    arrow.add_artist(Polygon([(0, 0), (4.5, 12), (9, 0), (4.5, 3)], facecolor="black"))
    return VPacker(children=[TextArea("N", textprops={"fontsize": 8, "fontweight": "bold"}), arrow],
                   align="center", pad=0, sep=1)
