"""The cases that are attacked: rectangles of triangles with every kind of input and result."""
import json
from pathlib import Path

WHOLE = "whole"  # a result that has its name only when it is complete
LINES = "lines"  # a result that grows line by line
RECORDS = "records"  # a NetCDF file that grows record by record
LOG = "log"
REPORT = "report"
REPORT_FILE = "report.json"


def lines(*parts):
    return "\n".join(str(part) for part in parts) + "\n"


class Case:
    """A rectangle of `columns` x `rows` squares of 1 m, cut into two triangles each."""

    def __init__(self, model="Quillmere", columns=6, rows=3, end=1.0, gauges=3, sections=2,
                 interval=0.3, snapshots=(0, 0.5, 0.9)):
        self.model, self.columns, self.rows = model, columns, rows
        self.cells = 2 * columns * rows
        self.inputs = {}  # name: text
        self.write_mesh(sediments=model == "Bramsett")
        data = self.write_fields(end)
        self.write_requests(data["output"], gauges, sections, interval, snapshots)
        self.inputs["data.json"] = json.dumps(data, indent=2)

    def node(self, i, j):
        return j * (self.columns + 1) + i

    def code(self, a, b, sediments):
        """Boundary code and value of the edge from node a to node b."""
        width = self.columns + 1
        (i, j), (k, l) = (a % width, a // width), (b % width, b // width)
        if i == k == 0:
            return "-3 -0.2" if j % 2 or sediments else "-33 inflow.txt"
        if i == k == self.columns:
            return ("-4 0.97", "-2", "-4 0.97" if sediments else "-44 level.txt")[min(j, l) % 3]
        return "-5"

    def write_mesh(self, sediments):
        nodes = [(i, j) for j in range(self.rows + 1) for i in range(self.columns + 1)]
        cells = []
        for j in range(self.rows):
            for i in range(self.columns):
                a, b = self.node(i, j), self.node(i + 1, j)
                c, d = self.node(i + 1, j + 1), self.node(i, j + 1)
                cells += [(a, b, c), (a, c, d)]
        sides = {}  # from first to second node: the cell on its left
        for number, (a, b, c) in enumerate(cells):
            sides.update({(a, b): number, (b, c): number, (c, a): number})
        edges = []
        for (a, b), left in sides.items():
            right = sides.get((b, a), -1)
            if right < 0:
                edges.append(f"{left} -1 {a} {b} {self.code(a, b, sediments)}")
            elif left < right:
                edges.append(f"{left} {right} {a} {b} -1")
        self.inputs["nodes.txt"] = lines(len(nodes), *(f"{x} {y} {0.01 * x}" for x, y in nodes))
        self.inputs["cells.txt"] = lines(len(cells), *(f"3 {a} {b} {c}" for a, b, c in cells))
        self.inputs["edges.txt"] = lines(len(edges), *edges)

    def write_fields(self, end):
        """Answers the data file, less its requests."""
        def of_cells(name, value):
            self.inputs[name] = lines(*[value] * self.cells)
            return name

        conditions = {"initial conditions": of_cells("initial.txt", "1 0.1 0"),
                      "fixed bed level": of_cells("bed.txt", "0.05"),
                      "friction": of_cells("friction.txt", "0.03")}
        model = {"name": self.model, "flux scheme": "LHLLC", "zero depth value": 0.001,
                 "conditions": conditions, "sources": {"rainfall": "rain.txt", "hyetocells":
                                                       of_cells("hyetocells.txt", "7")}}
        self.inputs["rain.txt"] = lines(1, "7 2 1", "0 0.001", "1 0.002")
        if self.model == "Bramsett":
            conditions["initial sediments level"] = of_cells("layer.txt", "0.2")
            model["parameters"] = {"sediments mean grain diameter": 0.001,
                                   "sediments density": 2.65,
                                   "sediments friction coefficient": 0.03,
                                   "sediments porosity": 0.4}
        else:
            model["sources"].update({"infiltration": "soils.txt",
                                     "infiltracells": of_cells("infiltracells.txt", "2"),
                                     "initial infiltration": of_cells("infiltrated.txt", "0.01")})
            self.inputs["soils.txt"] = lines(2, "1 GreenAmpt 0.00001 0.1 0.2 0.4 1 0",
                                             "2 Horton 0.0001 0.00001 1 0.5 0")
            self.inputs["inflow.txt"] = lines(3, "0 -0.1", "1 -0.2", "20 -0.1")
            self.inputs["level.txt"] = lines(2, "0 0.98", "10 0.97")
        return {"name": "Attack", "t0": 0, "tend": end, "CFL": 0.5,
                "mesh": {"nodes": "nodes.txt", "cells": "cells.txt", "edges": "edges.txt"},
                "model": model, "output": {"folder": "out/"}}

    def write_requests(self, output, gauges, sections, interval, snapshots):
        output["time step enveloppe of results"] = interval
        output["final state"] = "final.txt"
        output["maxima of flow"] = {"file": "maxima.txt"}
        output["results"] = "results.nc"
        output["snapshots of flow"] = "snapshots_in.txt"
        output["gauges"] = "gauges_in.txt"
        output["discharges"] = "sections_in.txt"
        self.inputs["snapshots_in.txt"] = lines(len(snapshots), *snapshots)
        places = (f"{0.31 + i % self.columns} {0.17 + i // self.columns % self.rows} 0"
                  for i in range(gauges))
        self.inputs["gauges_in.txt"] = lines(f"{gauges} gauges.txt", interval, *places)
        edges = (f"1 {i % self.cells}" for i in range(sections))
        self.inputs["sections_in.txt"] = lines(f"{sections} {interval} sections.txt", *edges)

    def data(self):
        return json.loads(self.inputs["data.json"])

    def with_data(self, change):
        """Lets `change` work on the data file."""
        data = self.data()
        change(data)
        self.inputs["data.json"] = json.dumps(data, indent=2)
        return self

    def results(self):
        """Name and kind of every result, snapshots apart."""
        return {"out/enveloppe.txt": WHOLE, "out/final.txt": WHOLE, "out/maxima.txt": WHOLE,
                "out/results.nc": RECORDS, "out/gauges.txt": LINES, "sections.txt": LINES,
                "log.txt": LOG, REPORT_FILE: REPORT}

    def write(self, folder):
        for name, text in self.inputs.items():
            (Path(folder) / name).write_text(text)
        (Path(folder) / "out").mkdir(exist_ok=True)
