"""Signals at random moments to a run that writes lines of more than a thousand gauges and sections,
snapshots, and the envelope at every step."""
import os
import random
import signal
import time

from cases import Case
from run import Attack

SEED = 11
WAYS = {  # signals, and the exit statuses that they may lead to
    "KILL": ([signal.SIGKILL], (0,)),
    "TERM": ([signal.SIGTERM], (0, 143)),
    "INT-INT": ([signal.SIGINT, signal.SIGINT], (0, 130)),
    "HUP": ([signal.SIGHUP], (0, 129)),
}
ROUNDS, MORE_ROUNDS = 25, 250  # of every way
LONGEST_PAUSE = 0.002  # s, before a signal


def long_lines():
    snapshots = [0.25 * i for i in range(40)]
    return Case("Quillmere", columns=20, rows=10, end=10.0, gauges=1200, sections=1200,
                interval=1e-9, snapshots=snapshots)


def kill_at(size, signals, pause):
    """Sends the signals once the gauges have grown to that size, and a little later."""
    def kill(process, folder):
        while process.poll() is None and size_of(folder / "out" / "gauges.txt") < size:
            time.sleep(0.0002)
        for number in signals:
            time.sleep(pause)
            if process.poll() is None:
                process.send_signal(number)
    return kill


def size_of(path):
    try:
        return os.stat(path).st_size
    except FileNotFoundError:
        return -1


def attacks(bench, is_thorough):
    case = long_lines()
    whole = len(bench.files_of_reference(Attack("undisturbed", case))["out/gauges.txt"])
    moments = random.Random(SEED)
    for way, (signals, statuses) in WAYS.items():
        for round_number in range(MORE_ROUNDS if is_thorough else ROUNDS):
            kill = kill_at(moments.uniform(-0.05, 0.8) * whole, signals,
                           moments.uniform(0, LONGEST_PAUSE))
            # Before the run listens, a signal ends it at once. Only a kill may cut a line.
            yield Attack(f"kills/{way}/{round_number}", case, during=kill, statuses=statuses,
                         signals=tuple(signals), may_cut_last_line=way == "KILL")
