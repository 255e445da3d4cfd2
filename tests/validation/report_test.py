"""The document: what it says of results, and that one case replaces its own section only."""
import os
import tempfile
import unittest

from validation import report
from validation.case import Case, Result, Table


def case_named(name):
    case = Case()
    case.name, case.title, case.reasons = name, f"Case {name}", {"HLL2": "Because."}
    return case


def result_with(measured, remark=""):
    result = Result()
    result.tables.append(Table(["n"], ["error"], [["10", f"{measured:g}"]]))
    result.remarks += ["Said by all.", *([remark] if remark else [])]
    result.require_at_most("error", measured, 0.5)
    return result


class Report(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = os.path.join(folder.name, "validation.md")

    def write(self, **measured):
        page = report.Page(self.path)
        for name, value in measured.items():
            results = {"LHLLC": result_with(0.5), "HLL2": result_with(value)}
            page.put(case_named(name), results, f"{name}.svg", "Caption.")
        page.write(["a", "b"])
        with open(self.path) as file:
            return file.read()

    def test_a_missed_criterion_is_named_with_its_reason(self):
        text = self.write(a=0.75)
        self.assertIn("error: 0.75, bound 0.5", text)
        self.assertIn("Because.", text)
        self.assertIn("| `a` | 1 of 1 | 0 of 1 |", text)
        self.assertIn("*Criteria, LHLLC.* All 1 are met.", text)

    def test_a_met_criterion_gives_no_reason(self):
        text = self.write(a=0.25)
        self.assertNotIn("Because.", text)
        self.assertIn("| `a` | 1 of 1 |", text)

    def test_a_case_replaces_its_own_section_only(self):
        first = self.write(a=0.25, b=0.125)
        self.assertIn("| 10 | 0.5 | 0.25 |", first)
        second = self.write(a=0.375)
        self.assertEqual(first.replace("0.25", "0.375"), second)

    def test_schemes_stand_side_by_side(self):
        measures = ["error", "order"]
        tables = {"LHLLC": Table(["n"], measures, [["10", "0.5", ""], ["20", "0.3", "0.7"]]),
                  "HLL2": Table(["n"], measures, [["20", "0.1", "2"]])}
        titles, rows = report.side_by_side(tables)
        self.assertEqual(titles, ["n", "error, LHLLC", "error, HLL2", "order, LHLLC",
                                  "order, HLL2"])
        self.assertEqual(rows, [["10", "0.5", "–", "", "–"], ["20", "0.3", "0.1", "0.7", "2"]])

    def test_a_case_of_one_scheme_has_a_dash_for_the_other(self):
        page = report.Page(self.path)
        page.put(case_named("a"), {"LHLLC": result_with(0.25)}, "a.svg", "Caption.")
        page.write(["a"])
        with open(self.path) as file:
            text = file.read()
        self.assertIn("| `a` | 1 of 1 | – |", text)
        self.assertIn("| n | error |", text)

    def test_what_all_schemes_remark_is_said_once(self):
        lines = report.remarks({"LHLLC": result_with(0.25), "HLL2": result_with(0.25, "Alone.")})
        self.assertEqual(lines, ["Said by all.", "", "*HLL2.* Alone.", ""])


if __name__ == "__main__":
    unittest.main()
