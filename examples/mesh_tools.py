"""What the scripts that make the example cases share: from points and triangles to input files.

Needs numpy and, for `mesh_with_gmsh`, the gmsh command (4.8 or later).
"""
import json
import os
import subprocess
import sys
import tempfile

import numpy as np

TRANSMISSIVE = -2
DISCHARGE = -3
LEVEL = -4
WALL = -5
HYDROGRAPH = -33
LIMNIGRAPH = -44


class Plan:
    """The .geo text of plane surfaces given by their outlines; surfaces that touch share lines."""

    def __init__(self):
        self.points, self.lines, self.text = {}, {}, []
        self.surfaces = 0

    def point(self, x, y, size):
        """Number of the point; `size` is the length of the edges wanted there."""
        key = (round(x, 6), round(y, 6))
        if key not in self.points:
            self.points[key] = len(self.points) + 1
            self.text.append(f"Point({self.points[key]}) = {{{key[0]}, {key[1]}, 0, {size:g}}};")
        return self.points[key]

    def line(self, a, b):
        """Number of the line between two points, negative if it runs from b to a."""
        if (b, a) in self.lines:
            return -self.lines[b, a]
        if (a, b) not in self.lines:
            self.lines[a, b] = len(self.lines) + 1
            self.text.append(f"Line({self.lines[a, b]}) = {{{a}, {b}}};")
        return self.lines[a, b]

    def surface(self, outline):
        """The surface inside a closed outline of (x, y, size)."""
        corners = [self.point(*corner) for corner in outline]
        lines = [self.line(a, b) for a, b in zip(corners, corners[1:] + corners[:1]) if a != b]
        self.surfaces += 1
        self.text.append(f"Curve Loop({self.surfaces}) = {{{', '.join(map(str, lines))}}};")
        self.text.append(f"Plane Surface({self.surfaces}) = {{{self.surfaces}}};")

    def geo(self):
        return "\n".join([*self.text, "Mesh.Algorithm = 5;  // Delaunay", ""])


def mesh_with_gmsh(geo):
    """Points (n, 2) and triangles (m, 3) of the plane mesh that Gmsh makes of the .geo text."""
    with tempfile.TemporaryDirectory() as folder:
        geo_file, msh_file = os.path.join(folder, "case.geo"), os.path.join(folder, "case.msh")
        with open(geo_file, "w") as file:
            file.write(geo)
        command = ["gmsh", "-2", "-format", "msh22", "-o", msh_file, geo_file]
        try:
            done = subprocess.run(command, capture_output=True, text=True)
        except FileNotFoundError:
            sys.exit("gmsh was not found: install it (Debian: apt-get install gmsh).")
        if done.returncode != 0 or not os.path.exists(msh_file):
            sys.exit("gmsh could not mesh the case:\n" + done.stderr)
        return read_msh(msh_file)


def read_msh(path):
    """Points and triangles of an ASCII file in Gmsh's format 2.2; other elements are skipped."""
    with open(path) as file:
        lines = file.read().splitlines()
    start = lines.index("$Nodes") + 1
    points, position = [], {}
    for line in lines[start + 1:start + 1 + int(lines[start])]:
        tag, x, y, _ = line.split()
        position[int(tag)] = len(points)
        points.append((float(x), float(y)))
    start = lines.index("$Elements") + 1
    triangles = []
    for line in lines[start + 1:start + 1 + int(lines[start])]:
        fields = [int(field) for field in line.split()]
        if fields[1] == 2:  # Gmsh's code of the three-node triangle
            triangles.append([position[tag] for tag in fields[-3:]])
    return np.array(points), np.array(triangles)


class Mesh:
    """Triangles, all counter-clockwise, and their edges, all oriented as the edges file wants them.

    `along` gives every point its distance in the direction of the flow. Cells are numbered by it,
    so that neighbours in space are neighbours in the files. Normals point downstream at first:
    the left cell of an interior edge is the one that comes first.
    """

    def __init__(self, points, triangles, along, decimals):
        points = np.round(np.asarray(points, float), decimals)
        triangles = counter_clockwise(points, np.asarray(triangles))
        along_cells = np.asarray(along)[triangles].mean(axis=1)
        triangles = triangles[np.argsort(along_cells, kind="stable")]
        used, first_use = np.unique(triangles, return_index=True)
        used = used[np.argsort(first_use)]  # nodes that no triangle has are dropped
        number = np.full(len(points), -1)
        number[used] = np.arange(len(used))
        self.point_of_node = used
        self.xy = points[used]
        self.along_cells = np.sort(along_cells)
        self.z = np.zeros(len(used))
        self.decimals = decimals
        self.cells = number[triangles]
        self.left, self.right, self.node1, self.node2 = make_edges(self.cells)

    def centres(self):
        return self.xy[self.cells].mean(axis=1)

    def bed(self):
        """Bed level of the cells: the mean of their nodes."""
        return self.z[self.cells].mean(axis=1)

    def set_elevation(self, z, decimals):
        self.z = np.round(z, decimals)

    def edge_midpoints(self):
        return 0.5 * (self.xy[self.node1] + self.xy[self.node2])

    def is_boundary(self):
        return self.right < 0

    def section_at(self, along):
        """The edges between the cells upstream of a distance and the others. All of them point
        downstream (so that the discharge is positive) until `point_edges_uphill` turns them."""
        upstream = self.along_cells < along
        return np.flatnonzero(~self.is_boundary() & upstream[self.left] & ~upstream[self.right])

    def point_edges_uphill(self, keep=()):
        """Makes the lower of its two cells the left one of every interior edge but those in `keep`.

        The flux between a wet cell and a higher dry one is balanced, and water at rest on a shore
        stays at rest, only if the wet cell is the left one.
        """
        bed = self.bed()
        turn = ~self.is_boundary() & (bed[self.left] > bed[self.right])
        turn[np.asarray(keep, int)] = False
        self.left[turn], self.right[turn] = self.right[turn], self.left[turn]
        self.node1[turn], self.node2[turn] = self.node2[turn], self.node1[turn]

    def point_in_cell_near(self, x, y):
        """A point strictly inside the cell whose centre is nearest, and not the centre itself."""
        cell = np.argmin(np.hypot(*(self.centres() - (x, y)).T))
        return np.array([0.4, 0.33, 0.27]) @ self.xy[self.cells[cell]]


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


def write_mesh(folder, mesh, codes, values=None, z_decimals=3):
    """The three mesh files. `codes` holds one boundary code per edge (ignored inside the domain),
    `values` the further value of the codes that have one."""
    values = values or {}
    form = f"%.{mesh.decimals}f %.{mesh.decimals}f %.{z_decimals}f"
    nodes = [form % (*xy, z) for xy, z in zip(mesh.xy, mesh.z)]
    cells = ["3 %d %d %d" % tuple(cell) for cell in mesh.cells]
    write_lines(folder, "nodes.txt", nodes, count=True)
    write_lines(folder, "cells.txt", cells, count=True)
    lines = []
    for left, right, a, b, code in zip(mesh.left, mesh.right, mesh.node1, mesh.node2, codes):
        line = f"{left} {right} {a} {b} {-1 if right >= 0 else code}"
        lines.append(f"{line} {values[code]}" if right < 0 and code in values else line)
    write_lines(folder, "edges.txt", lines, count=True)


def write_lines(folder, name, lines, count=False):
    with open(os.path.join(folder, name), "w") as file:
        if count:
            file.write(f"{len(lines)}\n")
        file.writelines(f"{line}\n" for line in lines)


def write_gauges(folder, points, interval, decimals):
    lines = [f"{len(points)} gauges.txt {interval:g}"]
    lines += [f"{x:.{decimals}f} {y:.{decimals}f} 0" for x, y in points]
    write_lines(folder, "gauges.txt", lines)


def write_sections(folder, sections, interval):
    """The results' name counts from the case folder, not from the output folder."""
    lines = [f"{len(sections)} {interval:g} out/sections.txt"]
    lines += [" ".join(str(n) for n in (len(edges), *edges)) for edges in sections]
    write_lines(folder, "sections.txt", lines)


def write_initial_state(folder, level, decimals):
    """Water at rest up to `level`, one value per cell; a level below the bed makes a dry cell."""
    write_lines(folder, "initial.txt", [f"{z:.{decimals}f} 0 0" for z in level])


def write_data_file(folder, name, t_end, courant, conditions, sources, output, zero_depth=None,
                    sediment=None):
    """`sediment` holds the parameters of the sediments, in a case that has a mobile bed."""
    model = {"name": "Bramsett" if sediment else "Quillmere", "flux scheme": "LHLLC"}
    if zero_depth is not None:
        model["zero depth value"] = zero_depth
    model["conditions"] = {"initial conditions": "initial.txt", **conditions}
    model["sources"] = sources
    if sediment:
        model["parameters"] = sediment
    data = {
        "name": name, "t0": 0, "tend": t_end, "CFL": courant,
        "mesh": {"nodes": "nodes.txt", "cells": "cells.txt", "edges": "edges.txt"},
        "model": model,
        "output": {"folder": "out/", **output},
    }
    with open(os.path.join(folder, "data.json"), "w") as file:
        json.dump(data, file, indent=2)
        file.write("\n")
