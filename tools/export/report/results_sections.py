"""Maps, gauges and sections."""
import numpy as np

from drawing.curves import levels_of, read_table
from drawing.maps import format_time
from report.html import (count, duration, escape, figure, heading, number, paragraph, section, table)


def maps_section(job):
    missing = job["report"]["missing"]
    maps = {entry["name"]: entry for entry in job["maps"]}
    of_run = [figure(maps[name]["picture"], maps[name]["long_name"].capitalize())
              for name in ("max_depth", "peak_speed", "hazard", "arrival_time") if name in maps]
    last = [figure(maps[name]["picture"],
                   f"{maps[name]['long_name'].capitalize()} at {format_time(maps[name]['time'])}")
            for name in ("depth", "velocity", "bed_change") if name in maps]
    parts = [heading("Of the whole run"), *of_run]
    parts += [note(missing[name]) for name in ("max_depth", "maxima") if name in missing]
    if "arrival_time" not in maps and "maxima" not in missing:
        parts.append(note("The case asks for no maxima of the flow: there is no map of the time of "
                          "arrival, of speed or of hazard."))
    parts.append(heading("Last snapshot"))
    parts += last or [note(missing.get("snapshot", "The case asks for no snapshots of flow."))]
    return section("maps", "Maps", "".join(parts))


def note(text):
    return paragraph(escape(text), "note")


def curve_of(job, kind):
    """Titles, numbers and picture of the gauges or sections; or a note of why there are none."""
    entry = next((entry for entry in job["curves"] if entry["kind"] == kind), None)
    missing = job["report"]["missing"]
    if entry is None:
        return None, note(missing.get(kind, f"The case asks for no {kind}."))
    titles, values = read_table(entry)
    if values.size == 0 or values.shape[1] < 2:
        return None, note(f"The run has recorded nothing at the {kind}.")
    return (entry, values), figure(entry["picture"], f"The {kind} over time")


def names_of(job, kind, total):
    """Numbers, and names where the case has one for each."""
    names = job["report"]["case"][f"{kind}_names"]
    if len(names) != total:
        names = [""] * total
    return [f"{k} {escape(name)}".strip() for k, name in enumerate(names, 1)]


def gauges_section(job):
    found, content = curve_of(job, "gauges")
    if found:
        content += gauge_table(job, *found)
    return section("gauges", "Gauges", content)


def gauge_table(job, entry, values):
    times, depths = values[:, 0], values[:, 1::3]
    flows = np.hypot(values[:, 2::3], values[:, 3::3])
    levels = levels_of(depths, entry["beds"], entry["dry_depth"])
    rows = []
    for k, name in enumerate(names_of(job, "gauge", depths.shape[1])):
        x, y = job["mesh"]["gauges"][k]
        rows.append((name, number(x, digits=9), number(y, digits=9), number(entry["beds"][k], digits=6),
                     highest(depths[:, k]), time_of_highest(times, depths[:, k]),
                     highest(levels[:, k], 6), highest(flows[:, k])))
    return table(["Gauge", "x (m)", "y (m)", "Bed (m)", "Largest depth (m)", "at (s)",
                  "Highest level (m)", "Largest unit discharge (m²/s)"], rows)


def highest(values, digits=3):
    known = values[~np.isnan(values)]
    return number(float(known.max()), digits=digits) if len(known) else "–"


def time_of_highest(times, values):
    is_known = not np.isnan(values).all() and np.nanmax(values) > 0
    return number(float(times[np.nanargmax(values)]), digits=6) if is_known else "–"


def sections_section(job):
    found, content = curve_of(job, "sections")
    if found:
        content += section_table(job, found[1])
    return section("sections", "Sections", content)


def section_table(job, values):
    times = values[:, 0]
    rows = []
    for name, flow in zip(names_of(job, "section", values.shape[1] - 1), values[:, 1:].T):
        largest = int(np.argmax(np.abs(flow)))
        volume = float(np.sum(np.diff(times) * (flow[1:] + flow[:-1]) / 2))
        rows.append((name, number(float(flow[largest])), number(float(times[largest]), digits=6),
                     number(volume, digits=5)))
    return table(["Section", "Largest discharge (m³/s)", "at (s)", "Volume (m³)"], rows)
