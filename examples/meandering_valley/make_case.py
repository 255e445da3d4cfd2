#!/usr/bin/python3
"""Writes the input files of this case: a flood wave down a dry meandering valley, with rain."""
import os
import sys

import numpy as np

FOLDER = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.dirname(FOLDER))
import mesh_tools as tools  # noqa: E402

# The valley is drawn in valley coordinates, in metres: s along its axis, n to the left of it.
LENGTH, HALF_WIDTH = 6000.0, 450.0
SLOPE, CHANNEL_DEPTH = 0.0018, 3.0
HALF_BED, HALF_CHANNEL = 20.0, 36.0  # half widths at the channel's bed and between its bank tops
CHANNEL_MESH, HILL_MESH = 20.0, 56.0
ORIGIN, HEADING = (612400.0, 5234800.0), np.radians(28)  # the upstream end, projected

# Channel discharge (s, m3/s); the wave is over well before the end of the run.
HYDROGRAPH = [(0, 40), (600, 60), (2400, 800), (2700, 800), (5400, 120), (7200, 50), (9000, 50)]
T_END = 8400
MM_PER_HOUR = 1e-3 / 3600
UPPER_RAIN = [(0, 0), (600, 12), (1800, 30), (3000, 18), (4200, 0)]  # (s, mm/h)
LOWER_RAIN = [(0, 0), (1500, 8), (2700, 24), (4500, 10), (5400, 0)]
RAIN_STEP = 5  # s
SANDY_LOAM = "1 GreenAmpt 3.0e-06 0.11 0.20 0.41 1.0 0"  # Ks, psi, theta_i, theta_s, L, kr


def channel_axis(s):
    """Offset n of the channel: meanders that fade out at both ends."""
    fade = np.clip(np.minimum(s, LENGTH - s) / 700, 0, 1)
    fade = fade * fade * (3 - 2 * fade)
    width = 150 + 40 * np.sin(s / 1100)
    return fade * width * np.sin(2 * np.pi * s / 1450 + 0.5 * np.sin(s / 520))


AXIS_S = np.linspace(0, LENGTH, 1201)
AXIS_N = channel_axis(AXIS_S)


def bank_lines(distance, count):
    """Points on the parallel to the channel's axis at a distance to its left, evenly spaced."""
    slope = np.gradient(AXIS_N, AXIS_S)
    norm = np.hypot(1, slope)
    s, n = AXIS_S - distance * slope / norm, AXIS_N + distance / norm
    s[0], s[-1] = 0.0, LENGTH
    way = np.append(0, np.cumsum(np.hypot(np.diff(s), np.diff(n))))
    at = np.linspace(0, way[-1], count)
    return list(zip(np.interp(at, way, s), np.interp(at, way, n)))


def distance_to_channel(s, n):
    """Distance to the channel's axis, point by point."""
    return np.array([np.hypot(AXIS_S - a, AXIS_N - b).min() for a, b in zip(s, n)])


def geometry():
    """Strips of bed and banks, and the two sides of the valley."""
    way = np.hypot(np.diff(AXIS_S), np.diff(AXIS_N)).sum()
    count = int(way / CHANNEL_MESH) + 1
    offsets = (-HALF_CHANNEL, -HALF_BED, HALF_BED, HALF_CHANNEL)
    lines = [[(s, n, CHANNEL_MESH) for s, n in bank_lines(offset, count)] for offset in offsets]
    plan = tools.Plan()
    for right, left in zip(lines, lines[1:]):
        plan.surface(right + left[::-1])
    for side, bank in ((-1, lines[0]), (1, lines[-1])):
        plan.surface(bank + [(s, side * HALF_WIDTH, HILL_MESH) for s in (LENGTH, 0.0)])
    return plan.geo()


def project(s, n):
    """Projected coordinates: the valley's axis is a gentle bend."""
    way = np.linspace(-500, LENGTH + 500, 2001)
    heading = HEADING + 0.45 * np.sin(2 * np.pi * (way - 600) / 7000)
    step = way[1] - way[0]
    x = np.append(0, np.cumsum(np.cos(0.5 * (heading[1:] + heading[:-1])) * step))
    y = np.append(0, np.cumsum(np.sin(0.5 * (heading[1:] + heading[:-1])) * step))
    heading = np.interp(s, way, heading)
    return np.column_stack((ORIGIN[0] + np.interp(s, way, x) - n * np.sin(heading),
                            ORIGIN[1] + np.interp(s, way, y) + n * np.cos(heading)))


def elevation(s, n, distance):
    """An inclined plane with the channel cut into it, uneven floodplains and rising sides."""
    plain = 140.0 - SLOPE * s
    from_bank = np.maximum(distance - HALF_CHANNEL, 0)
    channel = -CHANNEL_DEPTH * np.clip((HALF_CHANNEL - distance) / (HALF_CHANNEL - HALF_BED), 0, 1)
    fall = 0.004 * np.minimum(from_bank, 250)
    sides = 0.03 * np.maximum(np.abs(n) - 310, 0)
    uneven = np.clip(from_bank / 80, 0, 1) * (
        0.30 * np.sin(s / 117) * np.cos(n / 83 + 0.5) + 0.22 * np.sin((s - 1.7 * n) / 203))
    return plain + channel + fall + sides + uneven


def main():
    points, triangles = tools.mesh_with_gmsh(geometry())
    mesh = tools.Mesh(project(*points.T), triangles, along=points[:, 0], decimals=2)
    s, n = points[mesh.point_of_node].T
    distance = distance_to_channel(s, n)
    mesh.set_elevation(elevation(s, n, distance), decimals=3)

    across = distance[mesh.cells].mean(axis=1)
    in_bed, in_channel = across < HALF_BED - 1, across < HALF_CHANNEL - 1
    edge_s = 0.5 * (s[mesh.node1] + s[mesh.node2])
    codes = np.full(len(mesh.left), tools.WALL)
    inflow = mesh.is_boundary() & (edge_s < 1e-3) & in_channel[mesh.left]
    codes[inflow] = tools.HYDROGRAPH
    codes[mesh.is_boundary() & (edge_s > LENGTH - 1e-3)] = tools.TRANSMISSIVE
    width = np.linalg.norm(mesh.xy[mesh.node1[inflow]] - mesh.xy[mesh.node2[inflow]], axis=1).sum()

    sections = [mesh.section_at(at) for at in (600, 3000, 5400)]
    mesh.point_edges_uphill(keep=np.concatenate(sections))
    tools.write_mesh(FOLDER, mesh, codes, values={tools.HYDROGRAPH: "hydrograph.txt"})

    # Unit discharges along the outward normal: what flows in is negative.
    tools.write_lines(FOLDER, "hydrograph.txt",
                      [f"{t} {-q / width:.5f}" for t, q in HYDROGRAPH], count=True)
    tools.write_initial_state(FOLDER, mesh.bed() - 0.01, decimals=2)
    tools.write_lines(FOLDER, "friction.txt", np.where(in_channel, "0.035", "0.07"))
    tools.write_lines(FOLDER, "infiltration.txt", ["1", SANDY_LOAM])
    tools.write_lines(FOLDER, "infiltracells.txt", np.where(in_bed, -1, 1))
    rain = ["2"]
    for number, series in ((1, UPPER_RAIN), (2, LOWER_RAIN)):
        rain.append(f"{number} {len(series)} {RAIN_STEP}")
        rain += [f"{t} {intensity * MM_PER_HOUR:.4g}" for t, intensity in series]
    tools.write_lines(FOLDER, "rain.txt", rain)
    tools.write_lines(FOLDER, "hyetocells.txt", np.where(mesh.along_cells < LENGTH / 2, 1, 2))

    gauge_s = np.array([300, 1500, 2900, 4300, 5700])
    gauges = [mesh.point_in_cell_near(*project(at, channel_axis(at))[0]) for at in gauge_s]
    tools.write_gauges(FOLDER, gauges, interval=30, decimals=2)
    tools.write_sections(FOLDER, sections, interval=30)
    times = [1800, 2700, 3600, 4500, 6300, 8100]
    tools.write_lines(FOLDER, "snapshots.txt", times, count=True)
    tools.write_data_file(
        FOLDER, "Flood wave in a meandering valley", t_end=T_END, courant=0.9, zero_depth=0.001,
        conditions={"friction": "friction.txt"},
        sources={"rainfall": "rain.txt", "hyetocells": "hyetocells.txt",
                 "infiltration": "infiltration.txt", "infiltracells": "infiltracells.txt"},
        output={"time step enveloppe of results": 600, "snapshots of flow": "snapshots.txt",
                "gauges": "gauges.txt", "discharges": "sections.txt"})
    print(f"{len(mesh.cells)} triangles, {in_channel.sum()} of them in the channel; "
          f"inflow over {width:.1f} m")


if __name__ == "__main__":
    main()
