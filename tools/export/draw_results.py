#!/usr/bin/python3
"""Draws the maps and curves that "quillmere-export plot" and "report" ask for in the file job.json of
the working folder, where the pictures go too, and writes the page of a report.

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
    from report import page
except ImportError as error:
    sys.exit(f"matplotlib was not found ({error}): install it (Debian: python3-matplotlib).")


def main():
    with open("job.json", encoding="utf-8") as file:
        job = json.load(file)
    is_report = "report" in job
    # Texts stay texts; within a report they are drawn, since its readers may lack the font.
    matplotlib.rcParams["svg.fonttype"] = "path" if is_report else "none"
    matplotlib.rcParams["svg.hashsalt"] = "quillmere"  # the same picture has the same bytes
    if is_report:
        page.prepare(job)
    maps.draw_maps(job)
    curves.draw_all_curves(job)
    if is_report:
        page.write_page(job)


if __name__ == "__main__":
    main()
