"""The report of a case in one HTML file that needs nothing else."""
import re
from pathlib import Path

import numpy as np

from report.case_section import case_section, label_of
from report.found import find_number
from report.html import count, escape, number, section
from report.results_sections import gauges_section, maps_section, sections_section
from report.run_section import limiting_entries, run_section, status_of


def prepare(job):
    """Adds what only a report shows to the maps that are to be drawn."""
    case, run = job["report"]["case"], job["report"].get("run")
    bed = next(entry for entry in job["maps"] if entry["name"] == "bed")
    entries = limiting_entries(run, job)
    if entries:
        total = sum(entry["steps"] for entry in entries)
        centres = np.stack([np.fromfile("center_x", float), np.fromfile("center_y", float)], axis=1)
        job["maps"].append(bed | {
            "picture": "limiting.png", "has_places": False,
            "marked_points": [{"place": centres[entry["cell"]].tolist(), "label": str(rank),
                               "share": entry["steps"] / total}
                              for rank, entry in enumerate(entries, 1)]})
    bed["marked_lines"] = [{"label": label_of(boundary), "lines": boundary["lines"]}
                           for boundary in case["boundaries"] if boundary["kind"] != "wall"]


def areas(x, y, nodes):
    a, b, c = nodes.T
    return 0.5 * np.abs((x[b] - x[a]) * (y[c] - y[a]) - (x[c] - x[a]) * (y[b] - y[a]))


def area_under_water(job):
    """Of the cells that were ever deeper than what counts as dry, m²; none without that map."""
    entry = next((entry for entry in job["maps"] if entry["name"] == "max_depth"), None)
    if entry is None:
        return None
    depths = np.fromfile(entry["values"], np.float32)
    triangles = np.fromfile("triangles", np.int32).reshape(-1, 3)
    wet = ~np.isnan(depths[np.fromfile("triangle_cells", np.int32)])
    return float(areas(np.fromfile("x", float), np.fromfile("y", float), triangles[wet]).sum())


def largest_depth(job):
    entry = next((entry for entry in job["maps"] if entry["name"] == "max_depth"), None)
    depths = np.fromfile(entry["values"], np.float32) if entry else np.array([np.nan])
    return None if np.isnan(depths).all() else float(np.nanmax(depths))


def summary(job):
    """The few numbers that are asked for first."""
    run, model = job["report"].get("run"), job["report"]["case"]["model"]
    shown = [("Run", status_of(run) if run else ("Run, without books" if job["report"]["log"]
                                                 else "Not run")),
             ("Simulated", simulated(run, model)),
             ("Cells", count(job["report"]["case"]["mesh"]["cells"])),
             ("Largest depth", number(largest_depth(job), "m", 3)),
             ("Largest velocity", number(find_number(run, "velocity/largest/m_per_s"), "m/s", 3)),
             (f"Deeper than {job['report']['dry_depth']:g} m", wet_area(job))]
    tiles = "".join(f"<div><dt>{escape(name)}</dt><dd>{value}</dd></div>\n" for name, value in shown)
    return f'<dl class="summary">\n{tiles}</dl>\n'


def wet_area(job):
    square_metres = area_under_water(job)
    if square_metres is None:
        return "–"
    return (number(square_metres, "m²") if square_metres < 1e4 else
            number(square_metres / 1e4, "ha"))


def simulated(run, model):
    """How far the run came, or without its books how far the case is to be run."""
    reached = find_number(run, "time/reached_s")
    seconds = (model["t_end"] if reached is None else reached) - model["t_start"]
    return number(seconds / 3600, "h", 3) if seconds >= 7200 else number(seconds, "s")


def log_section(job):
    lines = job["report"]["log"].splitlines()
    if not lines:
        return ""
    if len(lines) > 300:
        lines[150:-150] = [f"… ({len(lines) - 300} lines left out)"]
    return section("log", "Log", f"<pre>{escape(chr(10).join(lines))}</pre>\n")


def number_figures(content):
    """Figure 1, Figure 2, ... in the order of the page."""
    numbers = iter(range(1, content.count("<figcaption>") + 1))
    return re.sub("<figcaption>", lambda _: f"<figcaption><b>Figure {next(numbers)}.</b> ", content)


def table_of_contents(content):
    entries = re.findall(r'<section id="([a-z]+)">\n<h2>([^<]*)</h2>', content)
    links = "".join(f'<li><a href="#{name}">{title}</a></li>\n' for name, title in entries)
    return f'<nav aria-label="Contents">\n<ol>\n{links}</ol>\n</nav>\n'


def write_page(job):
    report = job["report"]
    content = number_figures("".join((
        case_section(job), run_section(job), maps_section(job), gauges_section(job),
        sections_section(job), log_section(job))))
    title = escape(report["case"]["name"])
    style = (Path(__file__).parent / "report.css").read_text(encoding="utf-8")
    Path(report["page"]).write_text(
        f'<!DOCTYPE html>\n<html lang="en">\n<head>\n<meta charset="utf-8">\n'
        f'<meta name="viewport" content="width=device-width, initial-scale=1">\n'
        f"<title>{title}</title>\n<style>\n{style}</style>\n</head>\n<body>\n<main>\n"
        f'<header>\n<p class="kind">Report of a simulation</p>\n<h1>{title}</h1>\n'
        f"{summary(job)}</header>\n{table_of_contents(content)}{content}"
        f"<footer>Made of {escape(report['case']['data_file'])} and its results by Quillmere "
        f"{escape(report['version'])}. SI units; discharges of boundaries are positive into the "
        f"mesh.</footer>\n</main>\n</body>\n</html>\n", encoding="utf-8")
