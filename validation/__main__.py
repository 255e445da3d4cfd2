"""Runs validation cases and writes docs/validation.md: python3 -m validation [CASE...]

python3 -m validation --scheme HLL2 [CASE...] does so by another flux scheme, and writes the page
beside its runs, build/validation/HLL2."""
import argparse
import os
import sys
import time

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


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("--scheme", default=runner.SCHEME)
    arguments.add_argument("cases", nargs="*", metavar="CASE")
    options = arguments.parse_args()
    cases = chosen(options.cases)
    runs, docs = RUNS, DOCS
    if options.scheme != runner.SCHEME:
        runner.SCHEME = options.scheme
        runs = docs = os.path.join(RUNS, options.scheme)
    figures = os.path.join(docs, "validation")
    os.makedirs(figures, exist_ok=True)
    page = report.Page(os.path.join(docs, "validation.md"))
    for case in cases:
        start = time.monotonic()
        result = case.evaluate(os.path.join(runs, case.name))
        report.add(page, case, result, figures)
        missed = result.missed()
        print(f"{case.name}: {len(result.criteria) - len(missed)} of {len(result.criteria)} "
              f"criteria met, {time.monotonic() - start:.0f} s", flush=True)
        page.write([case.name for case in CASES])
    print(f"Written: {page.path}")


if __name__ == "__main__":
    try:
        main()
    except runner.RunError as error:
        sys.exit(str(error))
