"""Standard streams that are closed, broken pipes, or full."""
import itertools
import os

from cases import Case
from faults import PLAIN, WITH_REPORT
from run import Attack

ARGUMENTS = {"plain": PLAIN, "report": WITH_REPORT, "display": ("-f", "data.json"),
             "progress": (*PLAIN, "--progress")}


def close(streams):
    def close_in_child():
        for number in streams:
            os.close(number)
    return close_in_child


def broken_pipe(number):
    """Puts a pipe that nobody reads in the place of a stream."""
    def break_in_child():
        reading, writing = os.pipe()
        os.dup2(writing, number)
        os.close(reading)
        os.close(writing)
    return break_in_child


def full(number):
    def fill_in_child():
        device = os.open("/dev/full", os.O_WRONLY)
        os.dup2(device, number)
        os.close(device)
    return fill_in_child


def attacks(bench, is_thorough):
    del bench, is_thorough
    case = Case()
    for words, arguments in ARGUMENTS.items():
        silent = Attack("undisturbed", case, WITH_REPORT if words == "report" else PLAIN)

        def attack(name, in_child, is_mute):
            return Attack(f"streams/{name}-{words}", case, arguments, in_child=in_child,
                          is_mute=is_mute, may_warn_only=True, reference=silent)

        for count in (1, 2, 3):
            for streams in itertools.combinations((0, 1, 2), count):
                name = "".join(map(str, streams))
                yield attack(f"closed/{name}", close(streams), 2 in streams)
        for number in (1, 2):
            yield attack(f"broken-pipe/{number}", broken_pipe(number), number == 2)
            yield attack(f"full/{number}", full(number), number == 2)
