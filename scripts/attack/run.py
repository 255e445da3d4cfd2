"""Runs the program in a folder of its own, disturbed or not, and tells how it ended."""
import os
import select
import shutil
import signal
import stat
import subprocess
import threading
from dataclasses import dataclass, field
from pathlib import Path
from typing import Callable

import judge
from cases import Case

TIME_LIMIT = 10.0  # s; an undisturbed run takes some milliseconds
LARGEST_RESULT = 1 << 28  # bytes that are read of a result


@dataclass
class Attack:
    name: str  # as in "faults/write/flow/17-once-ENOSPC": its kind comes first
    case: Case
    arguments: tuple = ("-f", "data.json", "-nodisplay")
    environment: dict = field(default_factory=dict)
    prepare: Callable = None  # gets the folder, before the run
    in_child: Callable = None  # called between fork and exec
    during: Callable = None  # gets the process and the folder; runs beside it
    streams: dict = field(default_factory=dict)  # of Popen, in place of those that are looked at
    user: int = None
    # --- what is allowed
    statuses: tuple = judge.ALLOWED_STATUSES
    signals: tuple = ()  # that may end the process
    free: tuple = ()  # results that are not looked at
    must_speak: bool = False  # status 0 without a word is wrong whatever the files are
    is_mute: bool = False  # the program has no standard error: its words are not missed
    may_warn_only: bool = False  # words do not excuse a file that differs
    may_cut_last_line: bool = False
    reference: "Attack" = None  # whose results are expected, under the names that `renamed` gives
    renamed: dict = field(default_factory=dict)


@dataclass
class End:
    status: int
    is_late: bool
    stdout: bytes
    stderr: bytes
    files: dict  # name: content of every regular file that is no input
    changed_inputs: list


def wait(process, handle, seconds):
    """Whether the process of a handle ended in time; it is killed if not. Closes the handle."""
    try:
        poll = select.poll()
        poll.register(handle, select.POLLIN)
        is_in_time = bool(poll.poll(1000 * seconds))
    finally:
        os.close(handle)
    if not is_in_time:
        process.kill()
    process.wait()
    return is_in_time


def read_files(folder):
    """Name and content of every regular file below the folder; links are not followed."""
    files = {}
    pending = [folder]
    while pending:
        with os.scandir(pending.pop()) as entries:
            for entry in entries:
                if entry.is_dir(follow_symlinks=False):
                    pending.append(entry.path)
                elif entry.is_file(follow_symlinks=False):
                    with open(entry.path, "rb") as file:
                        files[os.path.relpath(entry.path, folder)] = file.read(LARGEST_RESULT)
    return files


def remove(folder):
    """Also where a run or an attack has left folders that nobody may write to."""
    if not os.path.isdir(folder):
        return
    os.chmod(folder, 0o777)
    shutil.rmtree(folder)


class Bench:
    """A program, and folders in which it runs; one per thread."""

    def __init__(self, program, work, shim):
        self.program, self.work, self.shim = str(program), Path(work), str(shim)
        self.references = {}
        self.lock = threading.Lock()

    def folder(self):
        return self.work / threading.current_thread().name / "case"

    def launch(self, attack, folder):
        """Answers the status, whether it came late, and both streams."""
        environment = {**os.environ, **attack.environment}
        if "FAULT" in environment or "FAULT_COUNTS" in environment:
            environment["LD_PRELOAD"] = self.shim
        streams = {"stdin": subprocess.DEVNULL}
        words = {}
        for name in ("stdout", "stderr"):
            words[name] = open(folder.parent / name, "w+b")
            streams[name] = words[name]
        streams.update(attack.streams)
        process = subprocess.Popen([self.program, *attack.arguments], cwd=folder, env=environment,
                                   preexec_fn=attack.in_child, user=attack.user, **streams)
        handle = os.pidfd_open(process.pid)  # before anybody beside sees that it has ended
        if attack.during:
            beside = threading.Thread(target=attack.during, args=(process, folder), daemon=True)
            beside.start()
        is_in_time = wait(process, handle, TIME_LIMIT)
        if attack.during:
            beside.join()
        texts = []
        for file in words.values():
            file.seek(0)
            texts.append(file.read(1 << 20))
            file.close()
        return process.returncode, not is_in_time, *texts

    def run(self, attack):
        folder = self.folder()
        remove(folder)
        folder.mkdir(parents=True)
        folder.chmod(0o777)
        attack.case.write(folder)
        (folder / "out").chmod(0o777)
        if attack.prepare:
            attack.prepare(folder)
        before = {name: look(folder / name) for name in attack.case.inputs}
        status, is_late, stdout, stderr = self.launch(attack, folder)
        changed = [name for name in attack.case.inputs if look(folder / name) != before[name]]
        files = {name: text for name, text in read_files(folder).items()
                 if name not in attack.case.inputs}
        return End(status, is_late, stdout, stderr, files, changed)

    def files_of_reference(self, attack):
        """The files of the undisturbed run, which must be complete and silent."""
        undisturbed = attack.reference or Attack("undisturbed", attack.case, attack.arguments)
        key = (id(undisturbed.case), undisturbed.arguments, *undisturbed.environment.items())
        with self.lock:
            if key not in self.references:
                end = self.run(undisturbed)
                if end.status != 0 or end.stderr or end.is_late:
                    raise SystemExit(f"attack: the undisturbed run ends with status {end.status}: "
                                     f"{end.stderr.decode(errors='replace')}")
                self.references[key] = (undisturbed.case, end.files)  # the case keeps its id
            return {attack.renamed.get(name, name): text
                    for name, text in self.references[key][1].items()}

    def judge(self, attack):
        """Answers how the run ended and its problems."""
        reference = self.files_of_reference(attack)
        end = self.run(attack)
        return end, judge.judge(attack, end, reference)


def look(path):
    """What tells whether an input has been changed: its kind and, if it is a file, its content."""
    try:
        kind = os.lstat(path)
    except OSError:
        return None
    if stat.S_ISLNK(kind.st_mode):
        return os.readlink(path)
    if not stat.S_ISREG(kind.st_mode):
        return stat.S_IFMT(kind.st_mode)
    with open(path, "rb") as file:
        return kind.st_ino, file.read(LARGEST_RESULT)


def describe(end):
    if end.is_late:
        return "late"
    if end.status < 0:
        return signal.Signals(-end.status).name
    return f"status {end.status}"
