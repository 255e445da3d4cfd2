"""Arrows of the flow on a map, thinned to a grid that can be read."""
import numpy as np

ALONG_A_MAP = 34  # arrows along its longer side
LEAST_WATER = 0.15  # of a square of the grid that has an arrow


def draw_arrows(axes, terrain, velocity):
    """The mean velocity (m/s) in every square of the grid that water covers enough of."""
    places, means, side = means_of_squares(terrain, velocity)
    if not len(means):
        return
    speeds = np.hypot(*means.T)
    longest = np.quantile(speeds, 0.98)  # one fast place does not shorten all others
    if longest <= 0:
        return
    shown = means * np.minimum(1, longest / np.maximum(speeds, 1e-300))[:, None]
    axes.quiver(*places.T, *shown.T, angles="xy", scale_units="xy", scale=longest / (1.5 * side),
                pivot="mid", color="0.1", edgecolor="white", linewidth=0.3, width=0.013,
                units="inches", headwidth=4.2, headlength=4.6, headaxislength=4, minlength=0.6)
    text = f"arrows: velocity, the longest {longest:.2g} m/s"
    if speeds.max() > longest:
        text += " or more"
    axes.annotate(text, (0, 1), xycoords="axes fraction", xytext=(0, 7),
                  textcoords="offset points", fontsize=9, color="0.25")


def means_of_squares(terrain, velocity):
    """Middles of the water in the squares (m), mean velocities (m/s), and a square's side (m)."""
    grid = terrain.grid
    rows, columns, size = grid["rows"], grid["columns"], grid["resolution"]
    side = max(1, max(rows, columns) // ALONG_A_MAP)  # pixels
    row, column = np.nonzero(terrain.inside)
    flow = velocity[terrain.cells]
    wet = ~np.isnan(flow[:, 0])
    row, column, flow = row[wet], column[wet], flow[wet]
    square = row // side * (columns // side + 1) + column // side
    count = np.bincount(square)
    taken = count >= max(1, LEAST_WATER * side * side)

    def mean(values):
        return np.bincount(square, values)[taken] / count[taken]

    places = np.column_stack((grid["west"] + (mean(column) + 0.5) * size,
                              grid["north"] - (mean(row) + 0.5) * size))
    return places, np.column_stack((mean(flow[:, 0]), mean(flow[:, 1]))), side * size
