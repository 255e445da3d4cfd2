"""The n-th call of a kind fails, or it and all that follow, or it moves half of its bytes."""
import errno
import tempfile
from dataclasses import replace
from pathlib import Path

from cases import Case
from run import Attack

# For every kind of call the errors and the ways in which it fails.
WAYS = {
    "open": [("EMFILE", "once"), ("EMFILE", "from"), ("ENOSPC", "once"), ("EACCES", "from")],
    "close": [("EIO", "once"), ("EDQUOT", "from")],
    "read": [("EIO", "once"), ("EIO", "from"), ("EINTR", "once"), ("EIO", "short"),
             ("EIO", "cut")],
    "write": [("ENOSPC", "once"), ("ENOSPC", "from"), ("EIO", "once"), ("EINTR", "once"),
              ("EIO", "short"), ("ENOSPC", "cut")],
    "rename": [("EACCES", "once"), ("EIO", "from")],
    "remove": [("EACCES", "once"), ("EIO", "from")],
    "memory": [("ENOMEM", "once"), ("ENOMEM", "from")],
    "thread": [("EAGAIN", "once"), ("EAGAIN", "from")],
}
PLAIN = ("-f", "data.json", "-nodisplay")
WITH_REPORT = (*PLAIN, "--report", "report.json")
THREADS = {"OMP_NUM_THREADS": "4"}
STRIDE = {"memory": 31, "write": 5, "read": 3}  # of a short round; every way begins elsewhere


def variants():
    """Name, case, arguments and environment of the runs that are disturbed."""
    flow, sand = Case("Quillmere"), Case("Bramsett")
    wide = Case("Quillmere", columns=50, rows=50, end=0.05, snapshots=(0,))
    return [("flow", flow, PLAIN, {}), ("flow-report", flow, WITH_REPORT, {}),
            ("sand", sand, PLAIN, {}), ("sand-report", sand, WITH_REPORT, {}),
            ("flow-checkpoint", flow, (*PLAIN, "--checkpoint", "kept"), {}),
            ("flow-objects", flow, WITH_REPORT, {"QUILLMERE_ENGINE": "objects"}),
            ("wide", wide, WITH_REPORT, THREADS)]


def kinds_of(variant):
    """The wide mesh is there for the team of threads."""
    return ["thread"] if variant == "wide" else list(WAYS)


def count_calls(bench, undisturbed):
    """How many calls of every kind a run makes."""
    with tempfile.TemporaryDirectory() as folder:
        counts = Path(folder) / "counts.txt"
        bench.run(replace(undisturbed, environment={**undisturbed.environment,
                                                    "FAULT_COUNTS": str(counts)}))
        pairs = (line.split() for line in counts.read_text().splitlines())
        return {kind: int(count) for kind, count in pairs}


def attacks(bench, is_thorough):
    for variant, case, arguments, environment in variants():
        undisturbed = Attack("undisturbed", case, arguments, environment)
        counts = count_calls(bench, undisturbed)
        if counts["write"] == 0 or counts["memory"] == 0:
            raise SystemExit("attack: the calls of the program cannot be counted")
        for kind in kinds_of(variant):
            stride = 1 if is_thorough else STRIDE.get(kind, 1)
            for way, (error, mode) in enumerate(WAYS[kind]):
                for call in range(1 + way % stride, counts[kind] + 1, stride):
                    yield Attack(
                        f"faults/{kind}/{variant}/{call}-{mode}-{error}", case, arguments,
                        {**environment,
                         "FAULT": f"{kind} {call} {getattr(errno, error)} {mode}"},
                        reference=undisturbed)
