"""Simulations of free-surface flow over terrain as values: set up, stepped, looked at and acted upon.

    river = quillmere.Simulation.open("data.json")
    river.run_until(3600.0)
    depth = river.read("depth")

Lengths are in m, times in s, discharges in m2/s per metre of width; cells, nodes and edges are
numbered from 0, in the order of the files or arrays of the case. `quillmere.bmi` has the same behind
the Basic Model Interface."""
from quillmere._quillmere import (Case, Edge, EdgeKind, Error, Mesh, Scheme, Series, Simulation,
                                  edges_between, fields)

__all__ = ["Case", "Edge", "EdgeKind", "Error", "Mesh", "Scheme", "Series", "Simulation",
           "edges_between", "fields"]
