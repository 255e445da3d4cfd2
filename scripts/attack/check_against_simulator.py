#!/usr/bin/env python3
"""Lets `quillmere-mesh check` and the simulator judge damaged cases: they must agree.

    check_against_simulator.py BIN_DIR [N [SEED]]

Makes N cases (200) from two small ones that hold every feature, each damaged at one to three places
by the seed: a token, a line, a key or a file. The simulator runs each case, and check looks at it.
Whenever one accepts what the other refuses, the case is kept, the place is told, and the script
fails. It prints how many cases each of them accepted.
"""

import json
import os
import random
import shutil
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor

COLUMNS, ROWS = 3, 2  # squares, each cut into two triangles
LONGEST_RUN = 4.0  # s; a run that lasts longer has been accepted

NUMBERS = ["0", "-0", "1", "-1", "2", "-2", "3", "7", "1e-9", "-1e-9", "1e-300", "-1e-300", "0.5",
           "1e6", "-1e6", "1e308", "-1e308", "1e400", "nan", "inf", "-inf", "0x10", "1,5", "1e",
           "--1", "+2", "+-2", ".5", "2147483647", "2147483648", "-2147483649", "99999999999999"]
WORDS = ["", "x", "GreenAmpt", "Horton", "greenampt", "nowhere.txt", ".", "edges.txt", "a b",
         "out/", "\xe9", "q" * 300]
CODES = ["-1", "-2", "-3", "-3 -0.1", "-3 0.1", "-4 1", "-5", "-33 series.txt", "-44 series.txt",
         "-33 nowhere.txt", "1", "2", "0", "-6"]
VALUES = [None, True, [], {}, [1, 2], "", "x", "nodes.txt", ".", "out/", "Quillmere", "Bramsett",
          "LHLLC", "Roe", 0, -1, 1, 2, 0.5, 1e-9, -1e-9, 1e6, 1e300, -1e300, 2**63, "0.5"]


def node(i, j):
    return j * (COLUMNS + 1) + i


def mesh_files():
    nodes = [f"{i} {j} {0.01 * (i + j)}" for j in range(ROWS + 1) for i in range(COLUMNS + 1)]
    cells, edges = [], []
    for j in range(ROWS):
        for i in range(COLUMNS):
            low, high = 2 * (j * COLUMNS + i), 2 * (j * COLUMNS + i) + 1
            a, b, c, d = node(i, j), node(i + 1, j), node(i + 1, j + 1), node(i, j + 1)
            cells += [f"3 {a} {b} {c}", f"3 {a} {c} {d}"]
            edges.append(f"{low} {high} {c} {a} -1")
            edges.append(f"{low} {low - 2 * COLUMNS + 1} {a} {b} -1" if j else f"{low} -1 {a} {b} -5")
            edges.append(f"{low} {low + 3} {b} {c} -1" if i < COLUMNS - 1 else f"{low} -1 {b} {c} -2")
            if i == 0:
                edges.append(f"{high} -1 {d} {a} -33 series.txt")
            if j == ROWS - 1:
                edges.append(f"{high} -1 {c} {d} " + ["-4 1", "-3 -0.1", "-44 level.txt"][i % 3])
    return {"nodes.txt": counted(nodes), "cells.txt": counted(cells), "edges.txt": counted(edges)}


def counted(records):
    return "\n".join([str(len(records))] + records) + "\n"


def water_case():
    n = 2 * COLUMNS * ROWS
    files = mesh_files()
    files.update({
        "initial.txt": "1 0.1 0\n" * n, "bed.txt": "0.02\n" * n, "friction.txt": "0.03\n" * n,
        "rain.txt": "2\n7 2 1\n0 0.00001\n0.1 0.00002\n8 1 1\n0 0\n", "hyetocells.txt": "7\n-1\n" * (n // 2),
        "soils.txt": "2\n1 GreenAmpt 0.00001 0.1 0.2 0.4 1 0\n2 Horton 0.0001 0.00001 1 0.5 0\n",
        "soilcells.txt": "2\n1\n" * (n // 2), "wetness.txt": "0.01\n" * n,
        "series.txt": "3\n0 -0.1\n1 -0.2\n20 -0.1\n", "level.txt": "2\n0 1\n10 0.97\n",
        "times.txt": "2\n0\n0.1\n", "points.txt": "2 gauges.txt 0.1\n0.6 0.2 0\n2.2 1.7 0\n",
        "lines.txt": "2 0.1 sections.txt\n1 0\n2 2 3\n"})
    data = {"name": "Water", "t0": 0, "tend": 0.2, "CFL": 0.9,
            "mesh": {"nodes": "nodes.txt", "cells": "cells.txt", "edges": "edges.txt"},
            "model": {"name": "Quillmere", "flux scheme": "LHLLC", "zero depth value": 0.001,
                      "conditions": {"initial conditions": "initial.txt", "fixed bed level": "bed.txt",
                                     "friction": "friction.txt"},
                      "sources": {"rainfall": "rain.txt", "hyetocells": "hyetocells.txt",
                                  "infiltration": "soils.txt", "infiltracells": "soilcells.txt",
                                  "initial infiltration": "wetness.txt"}},
            "output": {"folder": "out/", "time step enveloppe of results": 0.1,
                       "snapshots of flow": "times.txt", "gauges": "points.txt",
                       "discharges": "lines.txt"}}
    return files, data


def sediment_case():
    files, data = water_case()
    data["name"] = "Sediment"
    data["model"]["name"] = "Bramsett"
    data["model"]["conditions"]["initial sediments level"] = "sediment.txt"
    data["model"]["parameters"] = {
        "sediments mean grain diameter": 0.001, "sediments density": 2.65,
        "sediments friction coefficient": 0.03, "sediments porosity": 0.4}
    for key in ("infiltration", "infiltracells", "initial infiltration"):
        del data["model"]["sources"][key]
    for name in ("soils.txt", "soilcells.txt", "wetness.txt"):
        del files[name]
    files["sediment.txt"] = "0.1\n" * (2 * COLUMNS * ROWS)
    files["edges.txt"] = files["edges.txt"].replace("-33 series.txt", "-3 -0.1").replace(
        "-44 level.txt", "-4 0.98")
    return files, data


def damage_text(text, rng):
    """The text with a token, a line or its end changed, and a word on what was done."""
    lines = text.split("\n")
    places = [(i, k) for i, line in enumerate(lines) for k in range(len(line.split()))]
    kind = rng.choice(["token"] * 6 + ["count", "drop", "add", "line", "double", "cut", "code"])
    if kind == "cut":
        return text[:rng.randrange(len(text) + 1)], "cut"
    if kind in ("line", "double"):
        i = rng.randrange(len(lines))
        lines[i:i + 1] = [] if kind == "line" else [lines[i], lines[i]]
        return "\n".join(lines), f"{kind} {i}"
    if not places:
        return text, "nothing"
    i, k = (0, 0) if kind == "count" else rng.choice(places)
    tokens = lines[i].split()
    if not tokens:
        return text, "nothing"
    k = min(k, len(tokens) - 1)
    before = tokens[k]
    if kind == "drop":
        del tokens[k]
    elif kind == "code":
        tokens[-1] = rng.choice(CODES)
    elif kind == "add":
        tokens.insert(k, rng.choice(NUMBERS + WORDS))
    elif kind == "count":
        tokens[0] = str(int(before) + rng.choice([-2, -1, 1, 2, 1000])) if before.isdigit() else "0"
    else:
        tokens[k] = rng.choice(NUMBERS + WORDS) if rng.random() < 0.7 else rng.choice(
            [lines[j].split()[m] for j, m in places])
    lines[i] = " ".join(tokens)
    return "\n".join(lines), f"{kind} in line {i + 1}: {before} -> {lines[i]!r:.60}"


def all_keys(document, path=()):
    for key, value in document.items():
        yield path + (key,)
        if isinstance(value, dict):
            yield from all_keys(value, path + (key,))


def damage_data(data, rng):
    *path, key = rng.choice(list(all_keys(data)))
    section = data
    for name in path:
        section = section[name]
    kind = rng.choice(["value"] * 4 + ["drop", "rename", "move"])
    name = "/".join(path + [key])
    if kind == "value":
        section[key] = rng.choice(VALUES)
        return f"{name} = {section[key]!r}"
    value = section.pop(key)
    if kind == "rename":
        section[key + "s"] = value
    elif kind == "move":
        data[key] = value
    return f"{kind} {name}"


def damaged_case(rng):
    files, data = rng.choice([water_case, sediment_case])()
    notes = []
    for _ in range(rng.choice([1, 1, 1, 2, 3])):
        if rng.random() < 0.3:
            notes.append("data.json: " + damage_data(data, rng))
            continue
        name = rng.choice(sorted(files))
        if rng.random() < 0.03:
            del files[name]
            notes.append(name + ": gone")
            continue
        files[name], note = damage_text(files[name], rng)
        notes.append(f"{name}: {note}")
    files["data.json"] = json.dumps(data, indent=1)
    if rng.random() < 0.05:
        files["data.json"], note = damage_text(files["data.json"], rng)
        notes.append("data.json as text: " + note)
    return files, notes


def write(files, folder):
    os.makedirs(os.path.join(folder, "out"))
    for name, text in files.items():
        with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
            file.write(text)


def run(command, folder, seconds):
    """Exit status, None after `seconds`; and what stood on standard error."""
    try:
        result = subprocess.run(command, cwd=folder, stdin=subprocess.DEVNULL, timeout=seconds,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        return result.returncode, (result.stdout + result.stderr).decode(errors="replace")
    except subprocess.TimeoutExpired:
        return None, ""


class Judges:
    def __init__(self, programs):
        self.simulator = os.path.join(os.path.abspath(programs), "quillmere")
        self.mesh = os.path.join(os.path.abspath(programs), "quillmere-mesh")

    def judge(self, folder):
        """What both say: accepted by the simulator, accepted by check, and their words."""
        asked = os.path.join(folder, "asked")
        shutil.copytree(os.path.join(folder, "case"), asked)
        ran = os.path.join(folder, "ran")
        shutil.copytree(os.path.join(folder, "case"), ran)
        status, words = run([self.simulator, "-f", "data.json", "-nodisplay"], ran, LONGEST_RUN)
        is_run = status in (0, None)
        command = [self.mesh, "check", ".", "--quick"]
        verdict, report = run(command, asked, 60.0)
        if not is_run and verdict == 0:
            # What breaks down while it runs is seen by a trial run alone.
            verdict, report = run(command[:-1], asked, 60.0)
        broken = (status is not None and (status < 0 or status > 255)) or verdict not in (0, 1)
        return is_run, verdict == 0, broken, f"simulator ({status}): {words}\ncheck ({verdict}): {report}"


def examine(judges, number, seed):
    """A line on a case that the two judge otherwise, or that one does not survive; and the verdict."""
    rng = random.Random(f"{seed} {number}")
    files, notes = damaged_case(rng)
    folder = tempfile.mkdtemp(prefix=f"case_{number}_")
    write(files, os.path.join(folder, "case"))
    is_run, is_accepted, broken, words = judges.judge(folder)
    if is_run == is_accepted and not broken:
        shutil.rmtree(folder)
        return None, is_run
    return f"case {number}, kept in {folder}: {'; '.join(notes)}\n{words}", is_run


def main():
    if not 2 <= len(sys.argv) <= 4:
        sys.exit(__doc__)
    judges = Judges(sys.argv[1])
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 200
    seed = int(sys.argv[3]) if len(sys.argv) > 3 else 1
    with ThreadPoolExecutor(os.cpu_count() or 1) as pool:
        results = list(pool.map(lambda number: examine(judges, number, seed), range(count)))
    complaints = [complaint for complaint, _ in results if complaint]
    accepted = sum(1 for _, is_run in results if is_run)
    for complaint in complaints:
        print(complaint, "\n")
    print(f"{count} damaged cases: {accepted} run, {count - accepted} refused; "
          f"check judges {len(complaints)} otherwise (seed {seed})")
    if complaints or not 0 < accepted < count:
        sys.exit(1)


if __name__ == "__main__":
    main()
