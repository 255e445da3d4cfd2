#!/usr/bin/python3
"""Attacks the program in every way that the files beside this one know. Prints counts per kind, and
every violation of the rule in judge.py once per cause; fails when there is one."""
import argparse
import fnmatch
import re
import shutil
import sys
import tempfile
import time
from collections import Counter, defaultdict
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import faults
import kills
import limits
import mutants
import names
import odd_files
import streams
from run import Bench, describe

KINDS = {"faults": faults, "kills": kills, "odd-files": odd_files, "limits": limits,
         "streams": streams, "names": names}
KEPT = 200  # folders of violations, at most
MOST_LATE = 4  # runs of a kind


def without_names(words):
    """What tells one cause from another: neither numbers nor what files and fields are called."""
    words = re.sub(r"[^\s\"]+\.(txt|json|nc)(\.part)?", "FILE", words)
    return re.sub(r"\d+", "#", re.sub(r", line .*: found ", ": found ", words))


class Findings:
    """What became of the attacks, by kind."""

    def __init__(self, kept):
        self.kept = kept
        self.rows = defaultdict(Counter)
        self.causes = {}

    def row_of(self, attack):
        return self.rows["/".join(attack.name.split("/")[:2])]

    def is_given_up(self, attack):
        """After some runs of its kind that hung, each of which takes long, the rest is skipped."""
        row = self.row_of(attack)
        if row["late"] < MOST_LATE:
            return False
        row["skipped"] += 1
        return True

    def add(self, attack, end, problems, folder):
        row = self.row_of(attack)
        row["attacks"] += 1
        if end.is_late:
            row["late"] += 1
        elif end.status < 0:
            row["killed"] += 1
        elif end.status > 0:
            row["error"] += 1
        else:
            row["warned" if end.stderr else "silent"] += 1
        row["violations"] += bool(problems)
        for problem in problems:
            self.keep(attack, end, problem, folder)

    def keep(self, attack, end, problem, folder):
        words = end.stderr.decode(errors="replace").strip().split("\n")[0][:160]
        kind = "/".join(attack.name.split("/")[:2])
        cause = (kind, without_names(problem))
        if not problem.startswith("changes the input"):  # whatever was said when it was too late
            cause += (without_names(words),)
        if cause in self.causes:
            self.causes[cause][-1] += 1
            return
        place = self.kept / re.sub(r"[^\w.-]+", "_", attack.name)
        if len(self.causes) < KEPT and not place.exists():
            shutil.copytree(folder, place, symlinks=True, ignore=only_files)
        self.causes[cause] = [attack.name, problem, describe(end), words, 1]

    def show(self):
        columns = ("attacks", "silent", "warned", "error", "killed", "late", "skipped",
                   "violations")
        print(f"{'kind':<30}" + "".join(f"{name:>11}" for name in columns))
        for kind, row in sorted(self.rows.items()):
            print(f"{kind:<30}" + "".join(f"{row[name]:>11}" for name in columns))
        total = sum(self.rows.values(), Counter())
        print(f"{'total':<30}" + "".join(f"{total[name]:>11}" for name in columns))
        for name, problem, ended, words, count in self.causes.values():
            print(f"\n{problem} ({count} times; {ended})\n    {words}\n"
                  f"    scripts/attack.sh --only '{name}'")
        if self.causes:
            print(f"\n{len(self.causes)} causes; the folders of their runs are in {self.kept}")


def only_files(folder, names):
    """What is not copied: a device or a pipe that would be read."""
    return [name for name in names
            if not (Path(folder) / name).is_symlink() and not (Path(folder) / name).is_file()
            and not (Path(folder) / name).is_dir()]


def all_attacks(bench, options):
    pattern = options.only or "*"
    for name, kind in KINDS.items():
        if not fnmatch.fnmatch(name, pattern.split("/")[0]):
            continue
        for attack in kind.attacks(bench, options.thorough or options.only):
            if fnmatch.fnmatch(attack.name, pattern):
                yield attack


def check_agrees(options):
    reason = mutants.reason_to_leave_out(options.bin)
    if reason:
        print(f"\ncheck against simulator: left out, {reason}")
        return True
    return mutants.agree(options.bin, options.thorough)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("bin", type=Path, help="folder of the programs")
    parser.add_argument("work", type=Path, help="folder for what is kept")
    parser.add_argument("--thorough", action="store_true", help="every allocation, and more kills")
    parser.add_argument("--only", metavar="PATTERN", help="attacks whose names match")
    options = parser.parse_args()
    options.work = options.work.resolve()
    kept = options.work / "violations"
    shutil.rmtree(kept, ignore_errors=True)
    kept.mkdir(parents=True)
    findings = Findings(kept)
    start = time.monotonic()
    with tempfile.TemporaryDirectory(prefix="attack-") as work:
        Path(work).chmod(0o755)
        # A copy: a build may go on meanwhile, and it lies where every user may look.
        program = shutil.copy(options.bin / "quillmere", Path(work) / "quillmere")
        bench = Bench(program, work, options.work / "faults.so")

        def carry_out(attack):
            if findings.is_given_up(attack):
                return
            end, problems = bench.judge(attack)
            with bench.lock:
                findings.add(attack, end, problems, bench.folder())

        with ThreadPoolExecutor(2) as pool:
            for _ in pool.map(carry_out, all_attacks(bench, options)):
                pass
    findings.show()
    print(f"{time.monotonic() - start:.0f} s")
    if not findings.rows:
        sys.exit("attack: no such attack")
    is_agreed = options.only is not None or check_agrees(options)
    sys.exit(0 if is_agreed and not findings.causes else 1)


if __name__ == "__main__":
    main()
