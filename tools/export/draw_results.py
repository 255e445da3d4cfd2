#!/usr/bin/python3
"""Draws the maps and curves that "quillmere-export plot" asks for in the file job.json of the working
folder, where the pictures go too.

Beside the job lie arrays of the machine's own numbers: values of the cells, the triangles of the mesh,
and the triangle in which every pixel of the map lies.
"""
import json
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))  # where the parts of this program lie

try:
    import matplotlib
    matplotlib.use("Agg")
    from drawing import curves, maps
except ImportError as error:
    sys.exit(f"matplotlib was not found ({error}): install it (Debian: python3-matplotlib).")


def main():
    with open("job.json", encoding="utf-8") as file:
        job = json.load(file)
    matplotlib.rcParams["svg.fonttype"] = "none"  # texts stay texts
    matplotlib.rcParams["svg.hashsalt"] = "quillmere"  # the same picture has the same bytes
    maps.draw_maps(job)
    curves.draw_all_curves(job)


if __name__ == "__main__":
    main()
