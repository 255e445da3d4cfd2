"""Writes a case folder, runs the simulator in it and reads the results back."""
import json
import os
import shutil
import subprocess

import numpy as np

from validation import input_files
from validation.meshes import SIDES, rotate

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
PROGRAM = os.environ.get("QUILLMERE_PROGRAM", os.path.join(ROOT, "build/release/bin/quillmere"))
GRAVITY = 9.81
COURANT = 0.9


class RunError(Exception):
    """A run that ended with an error, or without a result that it should have written."""


class Setup:
    """What a run needs beside its mesh. Fields are functions of the local x and y.

    bed             bed level, m
    bed_by          "nodes": elevations of the nodes; "file": one value per cell over flat nodes
    level, qx, qy   initial free surface (m) and unit discharges (m2/s)
    boundaries      {side: (code, further value or None)}; a side that is not named is a wall
    manning         Manning coefficient
    sources         the data file's section of that name
    sediment        thickness of the erodible layer (a function), parameters (a dictionary)
    files           {name: lines} of further input files
    sections        lists of edge numbers
    first           which cell an edge names first: the "lower" one, as the manual asks for at
                    shores, the "higher" one, or "any"
    """

    def __init__(self, level, times, bed=None, bed_by="nodes", qx=None, qy=None, boundaries=None,
                 manning=None, zero_depth=1e-6, sources=None, sediment=None, files=None,
                 sections=None, interval=None, first="lower"):
        self.level, self.times = level, list(times)
        self.bed, self.bed_by = bed or constant(0), bed_by
        self.qx, self.qy = qx or constant(0), qy or constant(0)
        self.boundaries = boundaries or {}
        self.manning, self.zero_depth = manning, zero_depth
        self.sources, self.sediment = sources or {}, sediment
        self.files, self.sections = files or {}, sections or []
        self.interval = interval or self.times[0]
        self.first = first


class State:
    """The cells at one time: depth h, unit discharges qx, qy along the local axes, bed zb; `more`
    holds the further columns of a snapshot."""

    def __init__(self, time, table, angle):
        self.time = time
        self.zb, self.h = table[:, 2], table[:, 3]
        self.qx, self.qy = rotate(table[:, 4], table[:, 5], -angle)
        self.more = table[:, 6:]


class Run:
    """Results: the states, the series of the sections (column 0 is the clock), and the report."""

    def __init__(self, mesh, states, sections, report):
        self.mesh, self.states, self.sections = mesh, states, sections
        self.report = report
        self.x, self.y = mesh.centres().T
        self.areas = mesh.areas

    def volume(self, state=-1):
        return float(np.sum(self.states[state].h * self.areas))

    def volume_out(self):
        """What has left through all boundaries by the end of the run, m3, after its books."""
        boundaries = self.report["water"]["boundaries"].values()
        return sum(passed["out_m3"] - passed["in_m3"] for passed in boundaries)


def constant(value):
    return lambda x, y: np.full(np.shape(x), float(value))


def snapshot_name(time):
    """The program's name of the snapshot at a time: two decimals, cut off."""
    whole, decimals = f"{time:.6f}".split(".")
    return f"pic_{whole}_{decimals[:2]}.txt"


def write_case(folder, name, mesh, setup, scheme):
    """Every input file of the case."""
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(os.path.join(folder, "out"))
    x, y = mesh.centres().T
    bed = place_bed(mesh, setup, x, y)
    mesh.order_cells_of_edges(setup.first)
    codes, values = boundary_codes(mesh, setup)
    input_files.write_mesh(folder, mesh.turned(), codes, values)

    level, (qx, qy) = setup.level(x, y), rotate(setup.qx(x, y), setup.qy(x, y), mesh.angle)
    write_columns(folder, "initial.txt", level, qx, qy)
    conditions = {}
    if setup.bed_by == "file":
        write_columns(folder, "bed.txt", bed)
        conditions["fixed bed level"] = "bed.txt"
    if setup.manning is not None:
        write_columns(folder, "friction.txt", setup.manning(x, y))
        conditions["friction"] = "friction.txt"
    if setup.sediment is not None:
        write_columns(folder, "sand.txt", setup.sediment[0](x, y))
        conditions["initial sediments level"] = "sand.txt"
    for file_name, lines in setup.files.items():
        input_files.write_lines(folder, file_name, lines)
    input_files.write_lines(folder, "times.txt", [len(setup.times), *map(repr, setup.times)])
    input_files.write_sections(folder, setup.sections or [[0]], setup.interval)
    write_data_file(folder, name, mesh, setup, scheme, conditions, level - bed)


def place_bed(mesh, setup, x, y):
    """Gives the nodes their elevations; returns the bed of the cells."""
    if setup.bed_by == "nodes":
        mesh.z = setup.bed(*mesh.xy.T)
        return mesh.bed()
    bed = setup.bed(x, y)
    mesh.z = np.full(len(mesh.xy), bed.min())
    # The sides that an edge file names first are chosen from the bed that the run will see.
    mesh.bed = lambda: bed
    return bed


def boundary_codes(mesh, setup):
    codes, values = np.full(len(mesh.left), input_files.WALL), {}
    sides = mesh.side_of_edges()
    for side, (code, value) in setup.boundaries.items():
        codes[sides == SIDES.index(side)] = code
        if value is not None:
            values[code] = value
    return codes, values


def write_columns(folder, name, *columns):
    np.savetxt(os.path.join(folder, name), np.column_stack(columns), fmt="%.17g")


def write_data_file(folder, name, mesh, setup, scheme, conditions, depth):
    # No step is shortened to meet a time: the run must last some steps longer than its last output.
    # Where water gets thin, steps get long.
    last = setup.times[-1]
    step = mesh.shortest_length() / np.sqrt(GRAVITY * max(depth.max(), 0.01))
    output = {"time step enveloppe of results": 1e9, "snapshots of flow": "times.txt",
              "discharges": "sections.txt"}
    input_files.write_data_file(folder, name, last + max(4 * step, 0.05 * last), COURANT, scheme,
                               conditions, setup.sources, output, setup.zero_depth,
                               setup.sediment and setup.sediment[1])


def ask_for_scheme(folder, scheme):
    """Puts a flux scheme into a data file that is there already."""
    name = os.path.join(folder, "data.json")
    with open(name) as file:
        data = json.load(file)
    data["model"]["flux scheme"] = scheme
    with open(name, "w") as file:
        json.dump(data, file, indent=2)


def execute(folder, threads):
    """Runs the program in a case folder; returns its report. The results are the same on any number
    of threads; most of the meshes are too small for a second one to gain much."""
    environment = dict(os.environ, OMP_NUM_THREADS=str(threads))
    command = [PROGRAM, "-f", "data.json", "-nodisplay", "--report", "report.json"]
    done = subprocess.run(command, cwd=folder, env=environment, stdout=subprocess.DEVNULL,
                          stderr=subprocess.PIPE, text=True)
    if done.returncode != 0:
        raise RunError(f"The run in {folder} ended with {done.returncode}:\n{done.stderr}")
    with open(os.path.join(folder, "report.json")) as file:
        return json.load(file)


def read_results(folder, mesh, times, report):
    sections = np.loadtxt(os.path.join(folder, "out/sections.txt"), ndmin=2)
    states = []
    for time in times:
        name = snapshot_name(time)
        try:
            table = np.loadtxt(os.path.join(folder, "out", name), skiprows=1, ndmin=2)
        except OSError:
            raise RunError(f"The run in {folder} wrote no {name}.")
        # The sections file tells the clock of the step that wrote the snapshot.
        reached = sections[:, 0] >= time * (1 - 1e-5)
        states.append(State(sections[np.argmax(reached), 0], table, mesh.angle))
    return Run(mesh, states, sections, report)


class Simulator:
    """Runs cases by one flux scheme, in sub-folders of `folder`, and counts the runs in which a
    depth was below zero: at one of the looks that the report tells of, or in a snapshot."""

    def __init__(self, folder, scheme):
        self.folder, self.scheme = folder, scheme
        self.below_zero = 0

    def simulate(self, name, title, mesh, setup, threads=1):
        """Writes a case into the sub-folder of that name, runs it and returns its Run."""
        folder = os.path.join(self.folder, name)
        write_case(folder, title, mesh, setup, self.scheme)
        run = read_results(folder, mesh, setup.times, execute(folder, threads))
        self.count_below_zero(run.report, min(state.h.min() for state in run.states))
        return run

    def simulate_files(self, source, names, snapshot, threads=2):
        """Copies the files of a case that is there already, runs it and returns a snapshot."""
        folder = os.path.join(self.folder, "run")
        shutil.rmtree(folder, ignore_errors=True)
        os.makedirs(os.path.join(folder, "out"))
        for name in names:
            shutil.copy(os.path.join(source, name), folder)
        ask_for_scheme(folder, self.scheme)
        report = execute(folder, threads)
        table = np.loadtxt(os.path.join(folder, "out", snapshot), skiprows=1)
        self.count_below_zero(report, table[:, 3].min())
        return table

    def count_below_zero(self, report, lowest):
        self.below_zero += report["below_zero"]["first_seen"] is not None or lowest < 0
