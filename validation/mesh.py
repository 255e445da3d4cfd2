"""Triangles and their edges, numbered and oriented as the input files want them."""
import sys

import numpy as np

DECIMALS = 15  # of the coordinates in the files


class Mesh:
    """Triangles, all counter-clockwise, and their edges, all oriented as the edges file wants them.

    `along` gives every point its distance in the direction of the flow. Cells are numbered by it,
    so that neighbours in space are neighbours in the files. The left cell of an interior edge is
    the one that comes first, until `order_cells_of_edges` turns it.
    """

    def __init__(self, points, triangles, along):
        points = np.round(np.asarray(points, float), DECIMALS)
        triangles = counter_clockwise(points, np.asarray(triangles))
        along_cells = np.asarray(along)[triangles].mean(axis=1)
        triangles = triangles[np.argsort(along_cells, kind="stable")]
        used, first_use = np.unique(triangles, return_index=True)
        used = used[np.argsort(first_use)]
        number = np.full(len(points), -1)
        number[used] = np.arange(len(used))
        self.xy = points[used]
        self.z = np.zeros(len(used))
        self.cells = number[triangles]
        self.left, self.right, self.node1, self.node2 = make_edges(self.cells)

    def centres(self):
        return self.xy[self.cells].mean(axis=1)

    def bed(self):
        """Bed level of the cells: the mean of their nodes."""
        return self.z[self.cells].mean(axis=1)

    def edge_midpoints(self):
        return 0.5 * (self.xy[self.node1] + self.xy[self.node2])

    def is_boundary(self):
        return self.right < 0

    def order_cells_of_edges(self, first):
        """Makes the "lower" or the "higher" of its two cells the left one of every interior edge,
        or leaves them as they are, in "any" order.

        With LHLLC the flux between a wet cell and a higher dry one is balanced, and water at rest
        on a shore stays at rest, only if the wet cell is the left one.
        """
        if first == "any":
            return
        sign = {"lower": 1, "higher": -1}[first]
        rise = sign * (self.bed()[self.right] - self.bed()[self.left])
        turn = ~self.is_boundary() & (rise < 0)
        self.left[turn], self.right[turn] = self.right[turn], self.left[turn]
        self.node1[turn], self.node2[turn] = self.node2[turn], self.node1[turn]


def cross(a, b):
    return a[:, 0] * b[:, 1] - a[:, 1] * b[:, 0]


def counter_clockwise(points, triangles):
    a, b, c = (points[triangles[:, k]] for k in range(3))
    turned = cross(b - a, c - a) < 0
    triangles = triangles.copy()
    triangles[turned] = triangles[turned][:, ::-1]
    return triangles


def make_edges(cells):
    """Left cell, right cell (-1 outside) and the two nodes of every edge.

    Walking round a counter-clockwise cell, its outside is on the right hand; the normal is the
    direction of the walk turned clockwise, so it leaves the cell whose walk runs node 1 to node 2.
    """
    owner = {}
    for cell, (a, b, c) in enumerate(cells.tolist()):
        for edge in ((a, b), (b, c), (c, a)):
            if edge in owner:
                sys.exit(f"Cells {owner[edge]} and {cell} overlap.")
            owner[edge] = cell
    edges = []
    for (a, b), cell in owner.items():
        other = owner.get((b, a), -1)
        if other < 0 or cell < other:
            edges.append((cell, other, a, b))
    return np.array(sorted(edges)).T
