"""A real flood: Merewether, Newcastle (Australia), 2007. Its data are not in the repository."""
import os
import shutil

import numpy as np

from validation import figures, runner
from validation.case import Case, Result, Table

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

    def evaluate(self, folder, quick=False):
        data = self.folder_of_data()
        folder = os.path.join(folder, "run")
        shutil.rmtree(folder, ignore_errors=True)
        os.makedirs(os.path.join(folder, "out"))
        for name in CASE_FILES:
            shutil.copy(os.path.join(data, "case", name), folder)
        runner.ask_for_scheme(folder)
        runner.execute(folder)
        marks = np.loadtxt(os.path.join(data, "observations.csv"), delimiter=",", ndmin=2)
        self.places, self.observed, self.published = marks[:, 2], marks[:, 3], marks[:, 4]
        table = np.loadtxt(os.path.join(folder, "out", "pic_990_00.txt"), skiprows=1)
        self.computed = np.array([level_near(table, x, y) for x, y in marks[:, :2]])
        return self.compare()

    def compare(self):
        result = Result()
        rows = [[title, f"{np.abs(d).mean():.3f}", f"{d.mean():+.3f}", f"{np.abs(d).max():.3f}"]
                for title, d in (("computed less observed", self.computed - self.observed),
                                 ("computed less the other model", self.computed - self.published),
                                 ("other model less observed", self.published - self.observed))]
        titles = ["five points (m)", "mean of absolute", "mean", "largest absolute"]
        result.tables.append(Table(titles, rows))
        result.remarks.append(f"A level is the mean of the {NEAREST} wet cells nearest to the "
                              "mark. No bound is set: the marks are too uncertain for one.")
        return result

    def draw(self, figure):
        return figures.marks(figure, self.places, self.observed, (
            ("computed", self.computed), ("other 2-D model, published", self.published)))


def level_near(table, x, y):
    wet = table[table[:, 3] > WET]
    distance = np.hypot(wet[:, 0] - x, wet[:, 1] - y)
    nearest = wet[np.argsort(distance)[:NEAREST]]
    return float((nearest[:, 2] + nearest[:, 3]).mean())


CASES = [Flood()]
