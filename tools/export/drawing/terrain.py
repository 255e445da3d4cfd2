"""The shaded ground of a mesh on the pixels of a map."""
import numpy as np


class Terrain:
    """What all maps of a case share: pixels, the shaded ground, outline, gauges and sections."""

    def __init__(self, mesh):
        def load(name, kind):
            return np.fromfile(name, kind)

        grid = mesh["grid"]
        rows, columns, size = grid["rows"], grid["columns"], grid["resolution"]
        self.bounds = (grid["west"], grid["west"] + columns * size,
                       grid["north"] - rows * size, grid["north"])
        self.grid, self.extent = grid, mesh["extent"]
        self.is_cropped, self.crs = mesh["is_cropped"], mesh["crs"]
        self.outline, self.sections = mesh["outline"], mesh["sections"]
        self.gauges = mesh["gauges"]

        pixels = load("pixels", np.int32).reshape(rows, columns)
        self.inside = pixels >= 0
        triangle = pixels[self.inside]
        self.cells = load("triangle_cells", np.int32)[triangle]
        x, y, z = load("x", float), load("y", float), load("terrain", float)
        triangles = load("triangles", np.int32).reshape(-1, 3)
        self.ground = self.draw_ground(x, y, z, triangles, triangle, grid)

    def shows(self, x, y):
        """Whether a place is on the map."""
        west, east, south, north = self.extent
        return not self.is_cropped or (west <= x <= east and south <= y <= north)

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
