"""Runs validation cases by every flux scheme and writes docs/validation.md: python3 -m validation
[CASE...]"""
import os
import sys
import time
from concurrent.futures import ThreadPoolExecutor

from validation import report, runner
from validation.cases import CASES, flood

RUNS = os.path.join(runner.ROOT, "build", "validation")
DOCS = os.path.join(runner.ROOT, "docs")


def chosen(names):
    """The cases of these names, or all that can run here."""
    known = {case.name: case for case in CASES}
    unknown = [name for name in names if name not in known]
    if unknown:
        sys.exit(f"There is no case {', '.join(unknown)}. The cases are:\n  " + "\n  ".join(known))
    cases = [known[name] for name in names] if names else CASES
    if os.environ.get(flood.FOLDER_VARIABLE):
        return cases
    if flood.CASES[0] in cases:
        print(f"{flood.CASES[0].name} is skipped: {flood.FOLDER_VARIABLE} names no folder.")
    return [case for case in cases if case is not flood.CASES[0]]


def evaluate(case):
    """The results of a case by scheme. The schemes run side by side, each on one thread."""
    simulators = [runner.Simulator(os.path.join(RUNS, case.name, scheme), scheme)
                  for scheme in case.schemes]
    with ThreadPoolExecutor() as pool:
        return dict(zip(case.schemes, pool.map(case.evaluate, simulators)))


def main():
    cases = chosen(sys.argv[1:])
    figures = os.path.join(DOCS, "validation")
    os.makedirs(figures, exist_ok=True)
    page = report.Page(os.path.join(DOCS, "validation.md"))
    for case in cases:
        start = time.monotonic()
        results = evaluate(case)
        report.add(page, case, results, figures)
        met = ", ".join(f"{scheme} {report.criteria_met(result)}"
                        for scheme, result in results.items())
        print(f"{case.name}: {met}; {time.monotonic() - start:.0f} s", flush=True)
        page.write([case.name for case in CASES])
    print(f"Written: {page.path}")


if __name__ == "__main__":
    try:
        main()
    except runner.RunError as error:
        sys.exit(str(error))
