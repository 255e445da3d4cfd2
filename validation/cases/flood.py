"""A real flood: Merewether, Newcastle (Australia), 2007. Its data are not in the repository."""
import os

import numpy as np

from validation import figures
from validation.case import Case, Table

FOLDER_VARIABLE = "QUILLMERE_FLOOD_DATA"
CASE_FILES = ("cells.txt", "edges.txt", "nodes.txt", "friction.txt", "gauges.txt", "initial.txt",
              "sections.txt", "times.txt", "data.json")
WET = 0.01  # m
NEAREST = 3  # wet cells whose levels are averaged


class Flood(Case):
    name = "merewether_flood"
    title = "A flood in a town (Merewether, 2007)"
    tests = ("19.7 m³/s run through the streets of a suburb, between houses cut out of the mesh: "
             "48 941 triangles of some 2.5 m. The levels after 990 s, when the flow is steady, are "
             "compared with five flood marks. It tests everything at once, on terrain as it is.")
    source = ("Smith and Wasko (2012), Australian Rainfall and Runoff, Revision Project 15; data "
              "of the Water Research Laboratory, UNSW. The data stay out of this repository; "
              f"`{FOLDER_VARIABLE}=FOLDER scripts/validate.sh {name}` runs the case where they "
              "are.")
    limit = ("Flood marks are uncertain by a decimetre or more, and so are the terrain, the inflow "
             "and the friction: agreement here says that nothing is grossly wrong, not that the "
             "scheme is exact.")

    def folder_of_data(self):
        return os.environ.get(FOLDER_VARIABLE)

    def marks(self):
        """x, y, number, observed level and that of another model, a row for each flood mark."""
        path = os.path.join(self.folder_of_data(), "observations.csv")
        return np.loadtxt(path, delimiter=",", ndmin=2)

    def measure(self, simulator, result, quick):
        table = simulator.simulate_files(os.path.join(self.folder_of_data(), "case"), CASE_FILES,
                                         "pic_990_00.txt")
        x, y, _, observed, published = self.marks().T
        computed = np.array([level_near(table, *place) for place in zip(x, y)])
        result.measured = computed
        rows = [[title, f"{np.abs(d).mean():.3f}", f"{d.mean():+.3f}", f"{np.abs(d).max():.3f}"]
                for title, d in (("computed less observed", computed - observed),
                                 ("computed less the other model", computed - published),
                                 ("other model less observed", published - observed))]
        result.tables.append(Table(["five points (m)"], ["mean of absolute", "mean",
                                                         "largest absolute"], rows))
        result.remarks.append(f"A level is the mean of the {NEAREST} wet cells nearest to the "
                              "mark. No bound is set: the marks are too uncertain for one.")
        lowest = table[:, 3].min()
        result.remarks.append(f"The lowest depth of any cell at the end is {lowest:.2g} m.")

    def draw(self, figure, results):
        _, _, places, observed, published = self.marks().T
        series = [(scheme, figures.COLOURS[scheme], result.measured)
                  for scheme, result in results.items()]
        return figures.marks(figure, places, observed, [
            *series, ("other 2-D model, published", figures.GREEN, published)])


def level_near(table, x, y):
    wet = table[table[:, 3] > WET]
    distance = np.hypot(wet[:, 0] - x, wet[:, 1] - y)
    nearest = wet[np.argsort(distance)[:NEAREST]]
    return float((nearest[:, 2] + nearest[:, 3]).mean())


CASES = [Flood()]
