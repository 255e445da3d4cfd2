"""Limits of the system: on the size of files, on memory, open files, and processes."""
import os
import resource

from cases import Case
from faults import THREADS, WITH_REPORT
from run import Attack

NOBODY = 65534
MIB = 1 << 20
WORDS = 200  # bytes of an error: it goes to a file too, here


def limit(kind, value):
    return lambda: resource.setrlimit(kind, (value, value))


def starts(bench, case, in_child):
    """Whether the program gets as far as main() under that limit."""
    attack = Attack("start", case, ("--version",), in_child=in_child)
    return bench.run(attack).status == 0


def fewest(bench, case, kind, values):
    """The values under which the program starts."""
    return [value for value in values if starts(bench, case, limit(kind, value))]


def attacks(bench, is_thorough):
    case = Case()
    wide = Case(columns=50, rows=50, end=0.05, snapshots=(0,))

    def attack(name, case, kind, value, environment=None, user=None):
        environment = environment or {}
        return Attack(f"limits/{name}-{value}", case, WITH_REPORT, environment, user=user,
                      in_child=limit(kind, value),
                      is_mute=kind == resource.RLIMIT_FSIZE and value < WORDS,
                      reference=Attack("undisturbed", case, WITH_REPORT, environment))

    for size in range(0, 8192, 64 if is_thorough else 256):
        yield attack("file-size/flow", case, resource.RLIMIT_FSIZE, size)
    step = MIB // 8 if is_thorough else MIB
    memory = fewest(bench, case, resource.RLIMIT_AS, range(4 * MIB, 40 * MIB, step))
    for size in memory:
        yield attack("memory/flow", case, resource.RLIMIT_AS, size)
        yield attack("memory/wide", wide, resource.RLIMIT_AS, size, THREADS)
    for count in fewest(bench, case, resource.RLIMIT_NOFILE, range(3, 16)):
        yield attack("open-files/flow", case, resource.RLIMIT_NOFILE, count)
    if os.getuid() == 0:  # whom no limit on processes binds
        for count in range(1, 8):
            yield attack("processes/flow", case, resource.RLIMIT_NPROC, count, user=NOBODY)
            yield attack("processes/wide", wide, resource.RLIMIT_NPROC, count, THREADS, NOBODY)
