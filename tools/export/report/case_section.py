"""The case in numbers, its boundaries and what is imposed on them."""
from report.diagrams import draw_imposed, draw_rain
from report.html import (count, duration, escape, facts, figure, heading, number, paragraph, section,
                         table)

MODELS = {"Quillmere": "water", "Bramsett": "water and sediment"}


def case_section(job):
    case = job["report"]["case"]
    return section("case", "The case", "".join((
        heading("Mesh"), mesh_facts(case["mesh"], job["mesh"]["crs"]),
        figure("bed.png", "Bed at the start of the run, and the boundaries that are no wall"),
        heading("Model"), model_facts(case["model"]),
        heading("Boundaries"), boundary_table(case), boundary_curves(case),
        rain(case["model"]))))


def mesh_facts(mesh, crs):
    smallest = mesh["smallest_cell"]
    return facts([
        ("Cells", count(mesh["cells"])), ("Nodes", count(mesh["nodes"])),
        ("Edges", count(mesh["edges"])),
        ("Area", area(mesh["area"])),
        ("Extent", f"{span(mesh['x'])} by {span(mesh['y'])}"),
        ("Coordinates", escape(crs) if crs else "not told"),
        ("Bed", f"{number(mesh['bed'][0], digits=6)} to {number(mesh['bed'][1], 'm', 6)}"),
        ("Mean area of a cell", number(mesh["area"] / mesh["cells"], "m²")),
        ("Smallest cell", f"{number(smallest['area'], 'm²')}, number {smallest['cell']}, at "
                          f"({number(smallest['x'], digits=9)}, {number(smallest['y'], 'm', 9)})")])


def area(square_metres):
    if square_metres < 1e5:
        return number(square_metres, "m²")
    return f"{number(square_metres / 1e6, 'km²')} ({number(square_metres / 1e4, 'ha')})"


def span(ends):
    return number(ends[1] - ends[0], "m", 5)


def model_facts(model):
    name = MODELS.get(model["model"])
    rows = [("Model", escape(model["model"]) + (f" ({name})" if name else "")),
            ("Flux scheme", escape(model["scheme"])),
            ("Start", duration(model["t_start"])), ("End", duration(model["t_end"])),
            ("Courant number", number(model["cfl"])),
            ("Dry up to a depth of", number(model["dry_depth"], "m"))]
    if "epoch" in model:
        rows.append(("Time 0 s", f"{escape(model['epoch'])} UTC"))
    if "friction" in model:
        lowest, highest = model["friction"]
        values = number(lowest) if lowest == highest else f"{number(lowest)} to {number(highest)}"
        rows.append(("Manning coefficient", f"{values}&nbsp;s/m<sup>1/3</sup>"))
    else:
        rows.append(("Friction", "none"))
    rows.append(("Infiltration", "yes" if model["has_infiltration"] else "none"))
    rows.append(("Rain", "yes" if model.get("rain") else "none"))
    if model["has_sediment"]:
        rows += [("Mean grain diameter", number(model["grain"] * 1000, "mm")),
                 ("Porosity of the bed", number(model["porosity"]))]
    if "arrival_depth" in model:
        rows.append(("Under water from a depth of", number(model["arrival_depth"], "m")))
    return facts(rows)


def label_of(boundary):
    """"inflow (hydrograph)", or "hydrograph boundary_inflow.txt" without a name."""
    if boundary["name"]:
        return f"{boundary['name']} ({boundary['kind']})"
    series = {part["imposed"] for part in boundary["parts"] if isinstance(part["imposed"], str)}
    return " ".join([boundary["kind"], *sorted(series)[:1]])


def boundary_table(case):
    rows = [(escape(label_of(boundary)), escape(boundary["meaning"]), imposed(boundary),
             count(boundary["edges"]), number(boundary["length"]))
            for boundary in case["boundaries"]]
    if not rows:
        return paragraph("The mesh has no boundary.", "note")
    return table(["Boundary", "Condition", "Imposed", "Edges", "Length (m)"], rows, texts=3)


def imposed(boundary):
    """The value of a condition, a total in m³/s for discharges, positive into the mesh."""
    values = [part["imposed"] for part in boundary["parts"]]
    if not boundary["imposes"] or not values:
        return "–"
    if any(isinstance(value, str) for value in values):
        return "series, drawn below"
    if boundary["imposes"] == "level":
        same = min(values) == max(values)
        return (number(values[0], "m", 6) if same else
                f"{number(min(values), digits=6)} to {number(max(values), 'm', 6)}")
    total = -sum(part["imposed"] * part["length"] for part in boundary["parts"])
    return f"{number(abs(total), 'm³/s')} {'in' if total >= 0 else 'out'}"


def boundary_curves(case):
    curves = []
    for k, boundary in enumerate(case["boundaries"]):
        if any(isinstance(part["imposed"], str) for part in boundary["parts"]):
            picture = f"boundary_{k}.svg"
            draw_imposed(boundary, case["series"], case["model"], picture)
            curves.append(figure(picture, f"{what_is_imposed(boundary)}: {label_of(boundary)}"))
    return "".join(curves)


def what_is_imposed(boundary):
    return ("Discharge into the mesh" if boundary["imposes"] == "discharge" else "Water level")


def rain(model):
    if not model.get("rain"):
        return ""
    draw_rain(model["rain"], model, "rain.svg")
    return heading("Rain") + figure("rain.svg", "Intensity of the rain")
