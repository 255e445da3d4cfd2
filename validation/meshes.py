"""The meshes of the validation cases: structured, irregular and rotated rectangles of triangles.

A mesh of size n has n squares along its length, each cut into two triangles. Solutions are written
in local coordinates, in which x runs along the rectangle from 0; only the files are rotated.
"""
import copy

import numpy as np

from validation.mesh import Mesh, cross

ANGLE = np.radians(37.0)
DISPLACEMENT = 0.25  # of interior nodes of an irregular mesh, in sides of a square
ROWS_OF_IRREGULAR_STRIP = 4
SIDES = ("west", "east", "south", "north")


class Rectangle(Mesh):
    """A rectangle [0, length] x [0, width] of nx by ny squares, in local coordinates. `rows` gives
    the rows of nodes other y than those of squares. Nodes of an irregular mesh stay where they are
    along x = `kept`."""

    def __init__(self, length, width, nx, ny, kind="structured", seed=1, rows=None, kept=None):
        irregular = kind == "irregular"
        random = np.random.default_rng(seed)
        rows = np.linspace(0, width, ny + 1) if rows is None else rows
        points = grid_points(np.linspace(0, length, nx + 1), rows)
        if irregular:
            move_nodes(points, length, width, length / nx, random, kept)
        triangles = cut_squares(nx, ny, random if irregular else None)
        super().__init__(points, triangles, along=points[:, 0])
        self.kind, self.length, self.width = kind, length, width
        self.size = length / nx
        self.angle = ANGLE if kind == "rotated" else 0.0
        self.areas = triangle_areas(self.xy, self.cells)

    def shortest_length(self):
        """The smallest 2 area / perimeter, which bounds the time step, in m."""
        corners = self.xy[self.cells]
        sides = np.linalg.norm(corners - np.roll(corners, 1, axis=1), axis=2)
        return (2 * self.areas / sides.sum(axis=1)).min()

    def side_of_edges(self):
        """For every edge the index in SIDES of the side it lies on, -1 inside."""
        x, y = self.edge_midpoints().T
        tolerance = 1e-9 * self.length
        on = [x < tolerance, x > self.length - tolerance, y < tolerance, y > self.width - tolerance]
        return np.where(self.is_boundary(), np.argmax(on, axis=0), -1)

    def edges_on(self, side):
        return np.flatnonzero(self.side_of_edges() == SIDES.index(side))

    def turned(self):
        """The mesh with its nodes at their places in the files."""
        mesh = copy.copy(self)
        mesh.xy = np.column_stack(rotate(*self.xy.T, self.angle))
        return mesh


def strip(length, n, kind="structured", kept=None):
    """A channel: one row of squares, or some where the nodes are moved."""
    rows = ROWS_OF_IRREGULAR_STRIP if kind == "irregular" else 1
    return Rectangle(length, rows * length / n, n, rows, kind, kept=kept)


def square(length, n, kind="structured"):
    return Rectangle(length, length, n, n, kind)


def grid_points(columns, rows):
    x, y = np.meshgrid(columns, rows)
    return np.column_stack((x.ravel(), y.ravel()))


def move_nodes(points, length, width, side, random, kept):
    """Moves every node at random, those of the border and of x = `kept` not at all."""
    x, y = points.T
    inside = (x > 0) & (x < length) & (y > 0) & (y < width)
    moves = random.uniform(-DISPLACEMENT, DISPLACEMENT, points.shape) * side
    if kept is not None:
        inside &= np.abs(x - kept) > 0.01 * side
    points[inside] += moves[inside]


def cut_squares(nx, ny, random=None):
    """Two triangles per square; the diagonals alternate, or are drawn at random."""
    i, j = (index.ravel() for index in np.meshgrid(np.arange(nx), np.arange(ny)))
    sw = j * (nx + 1) + i
    se, nw, ne = sw + 1, sw + nx + 1, sw + nx + 2
    rising = (i + j) % 2 == 0 if random is None else random.random(len(i)) < 0.5
    first = np.where(rising, [sw, se, ne], [sw, se, nw]).T
    second = np.where(rising, [sw, ne, nw], [se, ne, nw]).T
    return np.stack((first, second), axis=1).reshape(-1, 3)


def triangle_areas(xy, cells):
    a, b, c = (xy[cells[:, k]] for k in range(3))
    return 0.5 * np.abs(cross(b - a, c - a))


def rotate(x, y, angle):
    """Components of vectors turned counter-clockwise by `angle` (radians)."""
    return np.cos(angle) * x - np.sin(angle) * y, np.sin(angle) * x + np.cos(angle) * y
