#!/usr/bin/python3
"""Writes the input files of this case: a lake with an emerged island, at rest."""
import os
import sys

import numpy as np

FOLDER = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.dirname(FOLDER))
import mesh_tools as tools  # noqa: E402

LEVEL = 2.0  # m
SHORE = 72  # points of the outline


def outline():
    """A bay-like closed curve, about 1000 m by 700 m."""
    angle = 2 * np.pi * np.arange(SHORE) / SHORE
    radius = (1 + 0.10 * np.sin(2 * angle + 0.4) + 0.07 * np.cos(3 * angle)
              + 0.04 * np.sin(5 * angle))
    return 480 * radius * np.cos(angle) + 560, 330 * radius * np.sin(angle) + 400


def geometry():
    plan = tools.Plan()
    plan.surface([(x, y, 38) for x, y in zip(*outline())])
    island = plan.point(640, 430, 20)  # a finer mesh round it
    plan.text.append(f"Point{{{island}}} In Surface{{1}};")
    return plan.geo()


def elevation(x, y):
    """A bowl with ripples, and an island 1.5 m above the lake off its middle."""
    bowl = 3.2 * (((x - 560) / 480) ** 2 + ((y - 400) / 330) ** 2) - 2.0
    ripples = 0.35 * np.sin(x / 47) * np.cos(y / 61) + 0.25 * np.sin((x + 2 * y) / 90)
    island = 5.2 * np.exp(-((x - 640) / 95) ** 2 - ((y - 430) / 70) ** 2)
    return bowl + ripples + island


def main():
    points, triangles = tools.mesh_with_gmsh(geometry())
    mesh = tools.Mesh(points, triangles, along=points[:, 0], decimals=3)
    mesh.set_elevation(elevation(mesh.xy[:, 0], mesh.xy[:, 1]), decimals=3)
    mesh.point_edges_uphill()
    tools.write_mesh(FOLDER, mesh, np.full(len(mesh.left), tools.WALL))
    tools.write_initial_state(FOLDER, np.full(len(mesh.cells), LEVEL), decimals=1)
    tools.write_lines(FOLDER, "friction.txt", ["0.03"] * len(mesh.cells))
    tools.write_lines(FOLDER, "snapshots.txt", [2, 0, 3590])
    tools.write_data_file(
        FOLDER, "Lake at rest round an island", t_end=3600, courant=0.9,
        conditions={"friction": "friction.txt"}, sources={},
        output={"time step enveloppe of results": 600, "snapshots of flow": "snapshots.txt"})
    wet = mesh.bed() < LEVEL
    print(f"{len(mesh.cells)} triangles, {wet.sum()} of them wet")


if __name__ == "__main__":
    main()
