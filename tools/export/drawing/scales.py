"""The colours of a map, and which values they stand for."""
import numpy as np
from matplotlib import colormaps
from matplotlib.colors import BoundaryNorm, ListedColormap, Normalize

# Colour maps for readers with any colour vision; pale ends would look like dry land.
MAP_COLOURS = {"max_depth": "GnBu", "depth": "GnBu", "velocity": "YlOrRd", "bed": "cividis",
               "bed_change": "PuOr_r", "sediment_thickness": "YlOrBr",
               "infiltrated_depth": "PuBu", "peak_depth": "GnBu", "peak_speed": "YlOrRd",
               "hazard": "YlOrRd", "arrival_time": "viridis_r", "time_under_water": "PuBu"}
PALE = ("GnBu", "YlOrRd", "YlOrBr", "PuBu")


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
