#!/usr/bin/python3
"""Writes the input files of this case: a dam break in a converging-diverging flume."""
import os
import sys

import numpy as np

FOLDER = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.dirname(FOLDER))
import mesh_tools as tools  # noqa: E402

# The flume, in metres; x = 0 is its closed upstream end. See README.md for what is measured and
# what is approximated.
LENGTH, WIDTH, THROAT_WIDTH = 21.2, 1.40, 0.60
NARROWS_FROM, DAM, WIDE_AGAIN = 5.0, 8.5, 16.5
SLOPE, MANNING, RESERVOIR_DEPTH = 0.002, 0.012, 0.30
MESH_SIZE = 0.1405
GAUGES_FROM_DAM = (-8.4, -4.0, 0.0, 2.5, 5.0, 7.5, 10.0)


def half_width(x):
    """Smooth walls: a cubic down to the throat at the dam and another one up again."""
    into = np.clip((x - NARROWS_FROM) / (DAM - NARROWS_FROM), 0, 1)
    out = np.clip((WIDE_AGAIN - x) / (WIDE_AGAIN - DAM), 0, 1)
    narrowing = np.minimum(into, out)
    narrowing = narrowing * narrowing * (3 - 2 * narrowing)
    return 0.5 * (WIDTH - (WIDTH - THROAT_WIDTH) * narrowing)


def bed(x):
    """Zero at the dam's foot."""
    return SLOPE * (DAM - x)


def geometry():
    """Two surfaces that meet at the dam, so that edges lie along it."""
    reservoir = np.append(0.0, np.linspace(NARROWS_FROM, DAM, 26))
    channel = np.append(np.linspace(DAM, WIDE_AGAIN, 51), LENGTH)
    plan = tools.Plan()
    for xs in (reservoir, channel):
        right_bank = [(x, -half_width(x), MESH_SIZE) for x in xs]
        left_bank = [(x, half_width(x), MESH_SIZE) for x in reversed(xs)]
        plan.surface(right_bank + left_bank)
    return plan.geo()


def main():
    points, triangles = tools.mesh_with_gmsh(geometry())
    mesh = tools.Mesh(points, triangles, along=points[:, 0], decimals=4)
    mesh.set_elevation(bed(mesh.xy[:, 0]), decimals=6)
    at_outlet = mesh.edge_midpoints()[:, 0] > LENGTH - 1e-6
    codes = np.where(at_outlet, tools.TRANSMISSIVE, tools.WALL)
    sections = [mesh.section_at(DAM), mesh.section_at(LENGTH - 1)]
    mesh.point_edges_uphill(keep=np.concatenate(sections))
    tools.write_mesh(FOLDER, mesh, codes, z_decimals=6)

    is_reservoir = mesh.centres()[:, 0] < DAM
    level = np.where(is_reservoir, bed(DAM) + RESERVOIR_DEPTH, mesh.bed() - 0.01)
    tools.write_initial_state(FOLDER, level, decimals=4)
    tools.write_lines(FOLDER, "friction.txt", [f"{MANNING:g}"] * len(mesh.cells))
    gauges = [mesh.point_in_cell_near(DAM + x, 0) for x in GAUGES_FROM_DAM]
    tools.write_gauges(FOLDER, gauges, interval=0.2, decimals=4)
    tools.write_sections(FOLDER, sections, interval=0.2)
    tools.write_lines(FOLDER, "snapshots.txt", [6, 0, 2, 5, 10, 20, 60])
    tools.write_data_file(
        FOLDER, "Dam break in a converging-diverging flume", t_end=70, courant=0.9,
        conditions={"friction": "friction.txt"}, sources={},
        output={"time step enveloppe of results": 10, "snapshots of flow": "snapshots.txt",
                "gauges": "gauges.txt", "discharges": "sections.txt"})
    print(f"{len(mesh.cells)} triangles")


if __name__ == "__main__":
    main()
