"""Runs one validation case on one mesh by the second-order scheme: second_order_test.py CASE KIND N
BOUND. Fails where the relative L1 error of the depth is larger than the bound, or a depth below 0."""
import sys
import tempfile

from validation import runner
from validation.cases import CASES


def main():
    name, kind, n, bound = sys.argv[1:]
    runner.SCHEME = "HLL2"
    case = {case.name: case for case in CASES}[name]
    with tempfile.TemporaryDirectory() as folder:
        run = case.run(folder, int(n), kind)
        depth, discharge = case.errors(run, run.states[-1])
    lowest = min(state.h.min() for state in run.states)
    print(f"L1(h) {depth:.3g}, bound {bound}; L1(q) {discharge:.3g}; lowest depth {lowest:.3g} m")
    if not depth <= float(bound):
        sys.exit("The error of the depth is too large.")
    if not lowest >= 0:
        sys.exit("A depth is below zero.")


if __name__ == "__main__":
    main()
