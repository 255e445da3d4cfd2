"""A pool of 6 x 4 squares of 1 m between walls, each cut into two triangles."""
import json
import os

import numpy as np

import quillmere

NX, NY = 6, 4


def case(t_end=1e3):
    pool = quillmere.Case()
    pool.t_end, pool.zero_depth, pool.scheme = t_end, 1e-3, quillmere.Scheme.HLL2
    pool.x = [float(i) for j in range(NY + 1) for i in range(NX + 1)]
    pool.y = [float(j) for j in range(NY + 1) for i in range(NX + 1)]
    pool.z = [0.0] * len(pool.x)
    nodes = []
    for j in range(NY):
        for i in range(NX):
            a = j * (NX + 1) + i
            nodes += [a, a + 1, a + NX + 2, a, a + NX + 2, a + NX + 1]
    pool.cell_nodes = nodes
    pool.level = [1.0] * (len(nodes) // 3)
    pool.edges = quillmere.edges_between(pool)
    return pool


def wave(t_end=1e3):
    pool = case(t_end)
    pool.level = [1.0 + 0.5 * (cell < 8) for cell in range(len(pool.level))]
    return pool


def with_gate():
    """A pool whose western edges impose a discharge, and these edges."""
    pool = case()
    edges = pool.edges
    gate = [e for e, edge in enumerate(edges)
            if pool.x[edge.node1] == 0.0 and pool.x[edge.node2] == 0.0]
    for e in gate:
        edges[e].kind = quillmere.EdgeKind.discharge
    pool.edges = edges
    return pool, gate


def write_files(folder, t_end=1e3, snapshots=()):
    """The wave as the files of a case, whose western edges impose a discharge of 0."""
    pool, gate = with_gate()
    level = wave().level
    nodes = np.reshape(pool.cell_nodes, (-1, 3))

    def write(name, lines):
        with open(os.path.join(folder, name), "w") as file:
            file.write("\n".join(map(str, lines)) + "\n")

    write("nodes.txt", [len(pool.x), *(f"{x} {y} {z}" for x, y, z in zip(pool.x, pool.y, pool.z))])
    write("cells.txt", [len(nodes), *(f"3 {a} {b} {c}" for a, b, c in nodes)])
    write("edges.txt", [len(pool.edges), *(
        f"{e.left} {e.right} {e.node1} {e.node2} {int(e.kind)}"
        + (" 0.0" if k in gate else "") for k, e in enumerate(pool.edges))])
    write("initial.txt", [f"{h} 0 0" for h in level])
    write("times.txt", [len(snapshots), *snapshots])
    os.mkdir(os.path.join(folder, "out"))
    data = {"name": "A wave in a pool", "t0": 0.0, "tend": t_end, "CFL": 0.9,
            "mesh": {"nodes": "nodes.txt", "cells": "cells.txt", "edges": "edges.txt"},
            "model": {"name": "Quillmere", "flux scheme": "HLL2", "zero depth value": 1e-3,
                      "conditions": {"initial conditions": "initial.txt"}, "sources": {}},
            "output": {"folder": "out/", "time step enveloppe of results": 1e9}}
    if snapshots:
        data["output"]["snapshots of flow"] = "times.txt"
    with open(os.path.join(folder, "data.json"), "w") as file:
        json.dump(data, file)


def open_in(folder, opener=quillmere.Simulation.open):
    """Names in a data file are found from the working directory."""
    start = os.getcwd()
    os.chdir(folder)
    try:
        return opener("data.json")
    finally:
        os.chdir(start)
