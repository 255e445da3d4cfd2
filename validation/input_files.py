"""Writes the input files of a case."""
import json
import os

from validation.mesh import DECIMALS

TRANSMISSIVE = -2
DISCHARGE = -3
LEVEL = -4
WALL = -5
HYDROGRAPH = -33
LIMNIGRAPH = -44


def write_mesh(folder, mesh, codes, values):
    """The three mesh files. `codes` holds one boundary code per edge (ignored inside the domain),
    `values` the further value of the codes that have one."""
    form = " ".join([f"%.{DECIMALS}f"] * 3)
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


def rain(n_cells, *intervals):
    """The files of one rain on all cells, of intervals (start in s, intensity in m/s), and the keys
    of the data file that name them."""
    lines = ["1", f"1 {len(intervals)} 0"] + [f"{start} {value!r}" for start, value in intervals]
    return ({"rain.txt": lines, "hyetocells.txt": ["1"] * n_cells},
            {"rainfall": "rain.txt", "hyetocells": "hyetocells.txt"})


def soil(n_cells, parameters):
    """The same of one soil in all cells, of a type and its parameters."""
    return ({"soils.txt": ["1", f"1 {parameters}"], "soilcells.txt": ["1"] * n_cells},
            {"infiltration": "soils.txt", "infiltracells": "soilcells.txt"})


def write_sections(folder, sections, interval):
    """The results' name counts from the case folder, not from the output folder."""
    lines = [f"{len(sections)} {interval:g} out/sections.txt"]
    lines += [" ".join(str(n) for n in (len(edges), *edges)) for edges in sections]
    write_lines(folder, "sections.txt", lines)


def write_data_file(folder, name, t_end, courant, scheme, conditions, sources, output, zero_depth,
                    sediment):
    """`sediment` holds the parameters of the sediments, in a case that has a mobile bed."""
    model = {"name": "Bramsett" if sediment else "Quillmere", "flux scheme": scheme,
             "zero depth value": zero_depth,
             "conditions": {"initial conditions": "initial.txt", **conditions},
             "sources": sources}
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
