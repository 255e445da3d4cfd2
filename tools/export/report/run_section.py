"""The run: how it ended, its steps, its books, and what has to be known about it."""
from report.diagrams import draw_course, draw_last_steps, draw_shares
from report.found import find, find_list, find_number, find_numbers, find_objects
from report.html import (count, duration, escape, facts, figure, heading, is_number, number,
                         paragraph, section, table)

STATUS = {"complete": "Complete", "interrupted": "Interrupted", "failed": "Failed"}


def run_section(job):
    report = job["report"]
    run = report.get("run")
    parts = [heading("Course")]
    if run is None:
        why = report["missing"].get("run")
        parts.append(paragraph(
            escape(why) if why else
            "The run kept no books: the simulator writes them where it is called with "
            "<code>--report report.json</code>.", "note"))
    if not report["log"]:
        parts.append(paragraph("There is no log of a run of this case. Has it been run?", "note"))
    if run is not None:
        parts += [course(run), heading("What has to be known"), remarks(run, report),
                  heading("Time steps"), steps(run, job), books(run, "water", "Books of the water"),
                  books(run, "sediment", "Books of the sediment")]
    elif report["missing_snapshots"] or report["earlier_results"]:
        parts += [heading("What has to be known"), remarks({}, report)]
    return section("run", "The run", "".join(parts))


def status_of(run):
    status = find(run, "outcome/status")
    return escape(STATUS.get(status, status)) if isinstance(status, str) else "–"


def course(run):
    rows = [("Outcome", f"{status_of(run)}: {escape(find(run, 'outcome/reason') or '–')}"),
            ("Simulated time", f"{duration(find_number(run, 'time/start_s'))} to "
                               f"{duration(find_number(run, 'time/reached_s'))}"),
            ("Wall time", number(find_number(run, "wall_time/total_s"), "s", 3))]
    if is_number(find(run, "execution/threads")):
        rows.append(("Computed on", f"{count(find(run, 'execution/ranks'))} × "
                                    f"{count(find(run, 'execution/threads'))} threads, "
                                    f"{escape(find(run, 'execution/instruction_set'))}"))
    rows += [("Largest velocity", with_place(run, "velocity/largest", "m_per_s", "m/s")),
             ("Largest Froude number",
              with_place(run, "velocity/largest_froude", "froude_number", ""))]
    return facts(rows)


def with_place(run, path, name, unit):
    value = find_number(run, f"{path}/{name}")
    if value is None:
        return "–"
    return (f"{number(value, unit, 3)}, at {number(find_number(run, path + '/time_s'), 's')} in cell "
            f"{count(find(run, path + '/cell'))} in a depth of "
            f"{number(find_number(run, path + '/depth_m'), 'm', 3)}")


# --- remarks --------------------------------------------------------------------------------------

def remarks(run, report):
    found = list(remarks_of_run(run)) + list(remarks_of_results(report))
    if not found:
        return paragraph("Nothing: the run has no warning to tell.")
    return "<ul>\n" + "".join(f"<li>{remark}</li>\n" for remark in found) + "</ul>\n"


def remarks_of_run(run):
    if find(run, "outcome/status") in ("interrupted", "failed"):
        yield (f"<strong>The run is not complete.</strong> "
               f"{escape(find(run, 'outcome/reason') or '')}")
    lost = find_number(run, "not_a_number/cells_at_end")
    if lost:
        yield f"At the end the state of {count(lost)} cells is not a number."
    below = find_number(run, "below_zero/cells_at_end")
    if below:
        yield (f"At the end the depth of {count(below)} cells is below zero: "
               f"{number(find_number(run, 'below_zero/missing_m3'), 'm³')} are missing there, "
               f"{number(100 * (find_number(run, 'below_zero/share') or 0), '%', 2)} of the water. "
               "The other cells hold too much by as much.")
    given = find_number(run, "given_out_by_soils_m3")
    if given:
        yield f"Soils gave out {number(given, 'm³')} of water or more: depths are too large by it."
    films = find_number(run, "films/most_cells")
    if films:
        limit = number(find_number(run, "films/froude_number_above"))
        yield (f"Up to {count(films)} cells at a time held a film of water beyond a Froude number "
               f"of {limit}.")
    for ignored in find_list(run, "keys/ignored"):
        yield f"The key <code>{escape(ignored.get('key'))}</code> of the data file has no meaning."


def remarks_of_results(report):
    missing = report["missing_snapshots"]
    if missing:
        yield (f"{count(len(missing))} snapshots that the case asks for are not there, the first of "
               f"them <code>{escape(missing[0])}</code>.")
    earlier = report["earlier_results"]
    if earlier:
        yield f"{count(len(earlier))} results are of an earlier run, and left out."


# --- steps ----------------------------------------------------------------------------------------

def steps(run, job):
    rows = [("Steps", count(find_number(run, "steps/computed")))]
    for name, title in (("mean_s", "Mean step"), ("largest_s", "Largest step"),
                        ("smallest/step_s", "Smallest step")):
        value = number(find_number(run, f"steps/{name}"), "s")
        if name.startswith("smallest"):
            value += f", at {number(find_number(run, 'steps/smallest/time_s'), 's')}"
            if isinstance(find(run, "steps/smallest/set_by"), str):
                value += f", set by {escape(find(run, 'steps/smallest/set_by'))}"
        rows.append((title, value))
    rows.append(("Set by dry cells", count(find_number(run, "steps/set_by_dry_cells"))))
    return facts(rows) + course_of_steps(run) + limiting_cells(run, job) + last_steps(run)


def course_of_steps(run):
    """The time step over the run."""
    begins, smallest, largest = (find_numbers(run, f"steps/course/{name}")
                                 for name in ("from_s", "smallest_s", "largest_s"))
    end = find_number(run, "time/reached_s")
    if not begins or end is None or not len(begins) == len(smallest) == len(largest):
        return ""
    begins = [time for time in begins if time < end]  # a step that was not computed begins there
    kept = len(begins)
    if kept == 0 or sorted(set(begins)) != begins or min(smallest[:kept]) <= 0.0:
        return ""
    draw_course(begins, smallest[:kept], largest[:kept], end, "course.svg")
    return figure("course.svg", "The time step over the run: from the smallest to the largest of "
                                "consecutive steps")


def limiting_cells(run, job):
    """Which cells set most of the steps, of those that the mesh has."""
    entries = limiting_entries(run, job)
    total = find_number(run, "steps/set") or find_number(run, "steps/computed")
    if not entries or not total:
        return ""
    draw_shares([f"{rank}: cell {entry['cell']}" for rank, entry in enumerate(entries, 1)],
                [entry["steps"] / total for entry in entries], "limiting_shares.svg")
    return (figure("limiting_shares.svg", "The cells that set most of the time steps") +
            figure("limiting.png", "Where these cells are, by their rank"))


def limiting_entries(run, job):
    n_cells = job["report"]["case"]["mesh"]["cells"]
    return [entry for entry in find_list(run, "steps/set_most_often_by")
            if isinstance(entry.get("cell"), int) and 0 <= entry["cell"] < n_cells
            and is_number(entry.get("steps")) and entry["steps"] > 0]


def last_steps(run):
    last = [(step.get("time_s"), step.get("step_s")) for step in find_list(run, "failure/last_steps")]
    last = [step for step in last if all(is_number(value) for value in step)]
    if not last:
        return ""
    draw_last_steps(*zip(*last), "last_steps.svg")
    return figure("last_steps.svg", "The last time steps before the run failed")


# --- books ----------------------------------------------------------------------------------------

def books(run, kind, title):
    """What was there, came in and went out."""
    if not isinstance(find(run, kind), dict):
        return ""
    volume = lambda name: number(find_number(run, f"{kind}/{name}"), digits=6)
    since = find_number(run, "books_since_s")  # of a report that began after a restart
    begin = "At the start" if since is None else f"At t = {number(since, 's')}"
    rows = [(begin, volume("initial_m3"), "–")]
    for name, passed in find_objects(run, f"{kind}/boundaries"):
        rows.append((f"Boundaries: {escape(name.replace('_', ' '))}",
                     number(passed.get("in_m3"), digits=6), number(passed.get("out_m3"), digits=6)))
    for name, label, is_in in (("rain_m3", "Rain", True), ("infiltrated_m3", "Infiltration", False),
                               ("created_by_clamps_m3", "Created by limits", True)):
        if find_number(run, f"{kind}/{name}"):
            rows.append((label, volume(name), "–") if is_in else (label, "–", volume(name)))
    rows.append(("At the end", "–", volume("final_m3")))
    error = find_number(run, f"{kind}/relative_error")
    explained = paragraph(f"What no entry explains: "
                          f"{number(find_number(run, f'{kind}/error_m3'), 'm³', 2)}, "
                          f"{number(error, digits=2)} of the largest sum of entries.")
    return heading(title) + table(["", "In (m³)", "Out (m³)"], rows) + explained
