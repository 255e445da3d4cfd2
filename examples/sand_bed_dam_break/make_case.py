#!/usr/bin/python3
"""Writes the input files of this case: a dam break over a flat bed of sand in a flume."""
import os
import sys

import numpy as np

FOLDER = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.dirname(FOLDER))
import mesh_tools as tools  # noqa: E402

HALF_LENGTH, WIDTH, SIZE = 3.0, 0.25, 0.025  # m; the gate stands at x = 0
DEPTH, LAYER = 0.35, 0.10  # water behind the gate and sand on the rigid floor, m
GRAIN, DENSITY, POROSITY = 0.00182, 2.683, 0.47
MANNING = GRAIN ** (1 / 6) / 21.1  # Strickler


def structured_triangles():
    """Squares, cut by diagonals that alternate."""
    nx, ny = round(2 * HALF_LENGTH / SIZE), round(WIDTH / SIZE)
    x, y = np.meshgrid(np.linspace(-HALF_LENGTH, HALF_LENGTH, nx + 1), np.linspace(0, WIDTH, ny + 1))
    node = np.arange((nx + 1) * (ny + 1)).reshape(ny + 1, nx + 1)
    triangles = []
    for j in range(ny):
        for i in range(nx):
            a, b, c, d = node[j, i], node[j, i + 1], node[j + 1, i + 1], node[j + 1, i]
            triangles += [(a, b, c), (a, c, d)] if (i + j) % 2 else [(a, b, d), (b, c, d)]
    return np.column_stack([x.ravel(), y.ravel()]), np.array(triangles)


def main():
    points, triangles = structured_triangles()
    mesh = tools.Mesh(points, triangles, along=points[:, 0], decimals=4)
    outlet = mesh.edge_midpoints()[:, 0] > HALF_LENGTH - 1e-6
    tools.write_mesh(FOLDER, mesh, np.where(outlet, tools.TRANSMISSIVE, tools.WALL))
    cells = len(mesh.cells)
    behind_gate = mesh.centres()[:, 0] < 0
    tools.write_initial_state(FOLDER, np.where(behind_gate, LAYER + DEPTH, 0.0), decimals=2)
    tools.write_lines(FOLDER, "sand.txt", [f"{LAYER:g}"] * cells)
    tools.write_lines(FOLDER, "friction.txt", [f"{MANNING:.4f}"] * cells)
    tools.write_lines(FOLDER, "snapshots.txt", [5, 0, 0.25, 0.5, 1, 1.5])
    tools.write_data_file(
        FOLDER, "Dam break over a bed of sand", t_end=1.51, courant=0.9,
        conditions={"friction": "friction.txt", "initial sediments level": "sand.txt"}, sources={},
        output={"time step enveloppe of results": 0.5, "snapshots of flow": "snapshots.txt"},
        sediment={"sediments mean grain diameter": GRAIN, "sediments density": DENSITY,
                  "sediments friction coefficient": round(MANNING, 4),
                  "sediments porosity": POROSITY})
    print(f"{cells} triangles, Manning {MANNING:.4f}")


if __name__ == "__main__":
    main()
