"""The document: what it says of a result, and that one case replaces its own section only."""
import os
import tempfile
import unittest

from validation import report
from validation.case import Case, Result, Table


def case_named(name):
    case = Case()
    case.name, case.title, case.reason = name, f"Case {name}", "Because."
    return case


def result_with(measured):
    result = Result()
    result.tables.append(Table(["n", "error"], [["10", f"{measured:g}"]]))
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
            page.put(case_named(name), result_with(value), f"{name}.svg", "Caption.")
        page.write(["a", "b"])
        with open(self.path) as file:
            return file.read()

    def test_a_missed_criterion_is_named_with_its_reason(self):
        text = self.write(a=0.75)
        self.assertIn("error: 0.75, bound 0.5", text)
        self.assertIn("Because.", text)
        self.assertIn("| `a` | 0 of 1 |", text)

    def test_a_met_criterion_gives_no_reason(self):
        text = self.write(a=0.25)
        self.assertNotIn("Because.", text)
        self.assertIn("| `a` | 1 of 1 |", text)

    def test_a_case_replaces_its_own_section_only(self):
        first = self.write(a=0.25, b=0.125)
        self.assertIn("| 10 | 0.25 |", first)
        second = self.write(a=0.375)
        self.assertEqual(first.replace("0.25", "0.375"), second)


if __name__ == "__main__":
    unittest.main()
