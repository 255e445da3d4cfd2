"""Writes docs/validation.md: one section per case, between marks, so that a case that is run alone
replaces its own section."""
import os
import re

from validation import figures, norms
from validation.case import SCHEMES

INTRODUCTION = f"""# Validation

What the simulator computes well, and what it does not, by its flux schemes LHLLC (first order)
and HLL2 (second order). `scripts/validate.sh` makes the meshes, runs the simulator by both,
compares with the exact solutions, draws the figures and writes this page; `validate.sh CASE...`
does so for single cases. Every number below was measured by that command.

**Meshes.** A mesh of size n has n squares along its length, each cut into two triangles:
*structured* with alternating diagonals; *irregular* with diagonals drawn at random and nodes
moved at random by up to a quarter of a side; *rotated* is the structured one turned by 37°. The
Courant number is 0.9.

**Errors** are relative L1 norms over the cells at their centres: the sum of |computed - exact|
times the area of a cell, over the sum of |exact| times the area; L1(h) of the depth, L1(q) of the
vector of unit discharge. *Order* is the observed one between a mesh and the one before; it is left
out where an error falls to that of the six digits of the snapshots, about 1e-6. A
snapshot is written at the first step that has reached its time; it is compared with the solution
at the time of that step, which the sections file tells.

**What the errors are held against.** Where a column *plain scheme* stands, the depth must be
within {norms.FACTOR:g} times the error of a plain first-order scheme on n Cartesian
squares, computed separately. Two triangles share a square; *ratio, equal area* therefore
gives, for information, the ratio to the plain scheme on squares of the triangles' area,
interpolated between its meshes. On the finest mesh the depth must further be within 5 %, the
tolerance of Synolakis, Bernard, Titov, Kânoğlu and González (2007), *Standards, criteria, and
procedures for NOAA evaluation of tsunami numerical models* (NOAA Technical Memorandum OAR
PMEL-135), for analytical solutions; not for the swinging lakes, where no first-order scheme
reaches it on such meshes. The order from the coarsest to the finest
mesh must be at least {norms.LOWEST_ORDER:g}, which
Kuznetsov (1976), *USSR Comput. Math. Math. Phys.* 16, 105–119, proves for monotone first-order
schemes and one scalar law, shocks included. Bounds come from there, not from what the simulator
gives; where a case has another one, it says so. A criterion that is missed is named with its
reason.

Both schemes are held to these. HLL2 is further held to bounds on single meshes, most of which
were set from the errors of a prototype before it was built, and to what it promises everywhere: no
cell of any run may be below zero at any look, that is at every 64th step, at the end, or in a
snapshot.
"""

CLOSING = """## What is not here

- The flume of Bellos, Soulis and Sakkas (1992), J. Hydraul. Res. 30, 47–63, a dam break in a
  converging-diverging channel, is set up in [an example](../examples/flume_dam_break), but its
  measured levels are in figures of the paper that we cannot quote with certainty. No comparison
  is claimed.
- The beds of Hudson and Sweby and of Berthon et al. need Grass's transport law, which the
  simulator does not have.
- HLL2 with sediments: it knows none.
"""


def section(case, results, figure, caption):
    """The text of a case's section."""
    lines = [f"## {case.title}", "", f"{case.tests}", "", f"*Source.* {case.source}", "",
             f"![{case.title}](validation/{figure})", "", caption, ""]
    for tables in zip(*(result.tables for result in results.values()), strict=True):
        lines += [*markdown(*side_by_side(dict(zip(results, tables)))), ""]
    lines += remarks(results)
    lines += [f"*What the first-order scheme cannot do here.* {case.limit}", ""]
    if case.second_order:
        lines += [f"*The second-order scheme.* {case.second_order}", ""]
    for scheme, result in results.items():
        lines += [verdict(case, scheme, result), ""]
    return "\n".join(lines)


def side_by_side(tables):
    """Titles and rows of the tables {scheme: table} as one: a column per measure and scheme. A
    scheme that has no such row has a dash in it."""
    first = next(iter(tables.values()))
    count = len(first.keys)
    by_key = [{tuple(row[:count]): row[count:] for row in table.rows} for table in tables.values()]
    keys = dict.fromkeys(key for rows in by_key for key in rows)
    none = ["–"] * len(first.measures)
    rows = [[*key, *(text for texts in zip(*(rows.get(key, none) for rows in by_key))
                     for text in texts)] for key in keys]
    named = len(tables) > 1
    titles = first.keys + [f"{title}, {scheme}" if named else title
                           for title in first.measures for scheme in tables]
    return titles, rows


def markdown(titles, rows):
    aligned = ["---" if k == 0 else "---:" for k in range(len(titles))]
    return [f"| {' | '.join(row)} |" for row in (titles, aligned, *rows)]


def remarks(results):
    """What all schemes' remarks say alike, then the others by scheme."""
    of_schemes = {scheme: result.remarks for scheme, result in results.items()}
    first = next(iter(of_schemes.values()))
    shared = [text for text in first if all(text in texts for texts in of_schemes.values())]
    lines = [" ".join(shared), ""] if shared else []
    for scheme, texts in of_schemes.items():
        own = [text for text in texts if text not in shared]
        if own:
            lines += [f"*{scheme}.* {' '.join(own)}", ""]
    return lines


def verdict(case, scheme, result):
    """Which criteria a scheme meets, and why it misses the others."""
    start = f"*Criteria, {scheme}.*"
    if not result.criteria:
        return f"{start} None."
    missed = result.missed()
    if not missed:
        return f"{start} All {len(result.criteria)} are met."
    lines = [f"{start} {len(missed)} of {len(result.criteria)} are **missed**:", ""]
    lines += [f"- {text}: {measured:.3g}, bound {bound:.3g}" for text, measured, bound, _ in missed]
    return "\n".join([*lines, "", f"*Reason.* {case.reasons.get(scheme, 'Not known.')}"])


def criteria_met(result):
    met = len(result.criteria) - len(result.missed())
    return f"{met} of {len(result.criteria)}" if result.criteria else "–"


def summary_row(case, results):
    states = [criteria_met(results[scheme]) if scheme in results else "–" for scheme in SCHEMES]
    return f"| [{case.title}](#{anchor(case.title)}) | `{case.name}` | {' | '.join(states)} |"


def anchor(title):
    """The anchor that a heading gets: lower case, no punctuation, hyphens for blanks."""
    return re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-")


class Page:
    """The document: sections by case name, each with its row of the summary."""

    start = "<!-- case {name} -->"
    pattern = re.compile(r"<!-- case (\w+) -->\n<!-- summary ([^\n]*) -->\n(.*?)<!-- end -->", re.S)

    def __init__(self, path):
        self.path, self.sections = path, {}
        if os.path.exists(path):
            with open(path) as file:
                for name, row, text in self.pattern.findall(file.read()):
                    self.sections[name] = row, text

    def put(self, case, results, figure, caption):
        self.sections[case.name] = (summary_row(case, results),
                                    section(case, results, figure, caption))

    def write(self, names):
        """Sections in the order of `names`; those of other names are dropped."""
        known = [name for name in names if name in self.sections]
        titles = ["case", "name", *(f"criteria met, {scheme}" for scheme in SCHEMES)]
        aligned = ["---", "---", *("---:" for _ in SCHEMES)]
        parts = [INTRODUCTION, f"| {' | '.join(titles)} |\n| {' | '.join(aligned)} |"]
        parts[-1] += "".join(f"\n{self.sections[name][0]}" for name in known) + "\n"
        for name in known:
            row, text = self.sections[name]
            start = self.start.format(name=name)
            parts.append(f"{start}\n<!-- summary {row} -->\n{text}<!-- end -->\n")
        with open(self.path, "w") as file:
            file.write("\n".join([*parts, CLOSING]))


def add(page, case, results, folder):
    """Draws the case's figure into `folder` and puts its section into the page."""
    figure = f"{case.name}.svg"
    caption = figures.save(case, results, os.path.join(folder, figure))
    page.put(case, results, figure, caption)
