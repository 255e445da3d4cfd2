"""The colours of a map, and which values they stand for."""
import sys

import numpy as np
from matplotlib import colormaps
from matplotlib.colors import BoundaryNorm, ListedColormap, Normalize
from matplotlib.ticker import MaxNLocator

# Colour maps for readers with any colour vision; pale ends would look like dry land.
MAP_COLOURS = {"max_depth": "GnBu", "depth": "GnBu", "velocity": "YlOrRd", "bed": "cividis",
               "bed_change": "PuOr_r", "sediment_thickness": "YlOrBr",
               "infiltrated_depth": "PuBu", "peak_depth": "GnBu", "peak_speed": "YlOrRd",
               "hazard": "YlOrRd", "arrival_time": "viridis_r", "time_under_water": "PuBu"}
PALE = ("GnBu", "YlOrRd", "YlOrBr", "PuBu")
LOGARITHMIC_SPAN = 1000  # of the highest value to the lowest bound, where no range is given


def colours_of(name, count=256):
    """So many colours of the map of a quantity."""
    chosen = MAP_COLOURS.get(name, "viridis")
    return ListedColormap(colormaps[chosen](np.linspace(0.22 if chosen in PALE else 0, 1, count)))


def scale_of(entry, limits):
    """Colours, scale and ticks (none: the usual ones) of a map whose values have these limits."""
    name, given, classes = entry["name"], entry.get("range"), entry.get("classes")
    if classes == "log":
        classes = logarithmic_bounds(given, limits)
    if classes:  # below the first bound, between two, and from the last one on
        colours = colours_of(name, len(classes) + 1)
        return colours, BoundaryNorm(classes, len(classes) + 1, extend="both"), classes
    lowest, highest = given or usual_range(name, *limits)
    return colours_of(name), Normalize(lowest, highest), None


def usual_range(name, lowest, highest):
    is_pale = MAP_COLOURS.get(name) in PALE
    if is_pale:
        lowest = min(lowest, 0)
    if name == "bed_change":  # no change is the middle
        highest = max(abs(lowest), abs(highest))
        lowest = -highest
    if highest <= lowest:
        lowest, highest = lowest - 0.5 * (not is_pale), highest + 0.5
    return lowest, highest


def logarithmic_bounds(given, limits):
    """The numbers 1, 2 and 5 times a power of ten in a range, or else in the limits of the values, of
    which at most the upper three decades count."""
    lowest, highest = given or limits
    if not given:
        lowest = max(lowest, highest / LOGARITHMIC_SPAN)
    if lowest <= 0:  # nothing is shown
        return [0.01, 0.1, 1]
    powers = range(int(np.floor(np.log10(lowest))), int(np.floor(np.log10(highest))) + 1)
    bounds = [float(f"{factor}e{power}") for power in powers for factor in (1, 2, 5)]
    bounds = [bound for bound in bounds if lowest <= bound <= highest]
    if len(bounds) > 1:
        return bounds
    if given:
        sys.exit(f"logarithmic classes: found a range from {lowest:g} to {highest:g}, expected one "
                 "that holds two of the numbers 1, 2 and 5 times a power of ten.")
    return list(MaxNLocator(4).tick_values(lowest, max(highest, lowest * 1.01)))


def over_the_ends(entry, scale, limits):
    """Which ends of the scale of colours values pass: "neither", "min", "max" or "both"."""
    if not entry.get("range") or isinstance(scale, BoundaryNorm):
        return None
    is_below, is_above = limits[0] < scale.vmin, limits[1] > scale.vmax
    return {(False, False): "neither", (True, False): "min",
            (False, True): "max", (True, True): "both"}[is_below, is_above]
