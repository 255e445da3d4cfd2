"""Something else in the place of every input, of every result, and of every ".part" of a result."""
import errno
import os
import resource
import time

from cases import Case
from faults import WITH_REPORT
from limits import MIB, NOBODY
from run import Attack

MEMORY = 512 * MIB  # for those that read a file without an end
RESULTS = ("log.txt", "report.json", "sections.txt", "out/gauges.txt", "out/enveloppe.txt",
           "out/pic_0_50.txt", "out/final.txt", "out/maxima.txt", "out/results.nc")
WHOLE_RESULTS = ("report.json", "out/enveloppe.txt", "out/pic_0_50.txt", "out/final.txt",
                 "out/maxima.txt", "out/results.nc")


def bound_memory():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))


# --- What stands in the place of a file ----------------------------------------------------------


def empty_file(path):
    path.write_text("")


def folder(path):
    path.mkdir()


def full_folder(path):
    path.mkdir()
    (path / "kept.txt").write_text("kept\n")


def pipe(path):
    os.mkfifo(path)


def unreadable(path):
    path.write_text("secret\n")
    path.chmod(0)


def link_to(target):
    return lambda path: path.symlink_to(target)


def link_to_itself(path):
    path.symlink_to(path.name)


INSTEAD_OF_INPUT = {
    "empty": empty_file, "folder": folder, "null": link_to("/dev/null"),
    "zero": link_to("/dev/zero"), "loop": link_to_itself, "dangling": link_to("nowhere"),
    "unreadable": unreadable, "terminal": link_to("/dev/tty"), "memory": link_to("/proc/self/mem"),
}
INSTEAD_OF_RESULT = {
    "folder": folder, "full-folder": full_folder, "null": link_to("/dev/null"),
    "full": link_to("/dev/full"), "loop": link_to_itself, "unwritable": unreadable,
    "dangling": link_to("nowhere/at/all"),
}

NO_RESULT = ("folder", "full-folder", "full", "loop", "dangling")  # of which nothing can be made


def replaced(name, instead):
    def replace(folder):
        path = folder / name
        path.unlink(missing_ok=True)
        instead(path)
    return replace


# --- Pipes with somebody at their other end ------------------------------------------------------


def open_when_there(path, flags, process):
    """The pipe, once the program has opened its end; None if it never did."""
    while process.poll() is None:
        try:
            return os.open(path, flags | os.O_NONBLOCK)
        except OSError as error:
            if error.errno != errno.ENXIO:
                raise
            time.sleep(0.0005)
    return None


def feed(name, text):
    def feed_once(process, folder):
        pipe_end = open_when_there(folder / name, os.O_WRONLY, process)
        if pipe_end is None:
            return
        try:
            os.write(pipe_end, text.encode())  # less than a pipe holds
        except BrokenPipeError:
            pass
        os.close(pipe_end)
    return feed_once


def drain(name):
    def read_on(process, folder):
        pipe_end = os.open(folder / name, os.O_RDONLY | os.O_NONBLOCK)
        while process.poll() is None:
            try:
                os.read(pipe_end, 1 << 16)
            except BlockingIOError:
                pass
            time.sleep(0.0005)
        os.close(pipe_end)
    return read_on


# --- Attacks -------------------------------------------------------------------------------------


def of_inputs(case):
    for name, text in case.inputs.items():
        for word, instead in INSTEAD_OF_INPUT.items():
            # A file that nobody may read keeps only those out who are not root.
            user = NOBODY if word == "unreadable" and os.getuid() == 0 else None
            yield Attack(f"odd-files/input-{word}/{name}", case, WITH_REPORT, user=user,
                         prepare=replaced(name, instead), in_child=bound_memory, must_speak=True)
        for word, content in (("pipe", text), ("empty-pipe", "")):
            yield Attack(f"odd-files/input-{word}/{name}", case, WITH_REPORT,
                         prepare=replaced(name, pipe), during=feed(name, content),
                         must_speak=word == "empty-pipe")


def of_results(case):
    for result in RESULTS:
        for name in (result, result + ".part"):
            free = (name, result)
            for word, instead in INSTEAD_OF_RESULT.items():
                user = NOBODY if word == "unwritable" and os.getuid() == 0 else None
                yield Attack(f"odd-files/result-{word}/{name}", case, WITH_REPORT, user=user,
                             prepare=replaced(name, instead),
                             free=may_differ(word, name, result),
                             must_speak=word in NO_RESULT and name == result)
            yield Attack(f"odd-files/result-pipe/{name}", case, WITH_REPORT, free=free,
                         prepare=replaced(name, pipe),
                         during=drain(name) if name == result else None)
            for word, link in (("link", os.symlink), ("hard-link", os.link)):
                for target in case.inputs:
                    yield Attack(f"odd-files/result-{word}/{name}-to-{target}", case, WITH_REPORT,
                                 prepare=linked(name, target, link), free=free)


def may_differ(word, name, result):
    """Whoever makes a device, a link or a folder of a result's name looks at it himself. A file
    that is written whole takes the place of one that cannot be written to."""
    if word != "unwritable":
        return name, result, f"{name}/kept.txt"
    return () if name in WHOLE_RESULTS else (name,)


def linked(name, target, link):
    return replaced(name, lambda path: link(path.parent.parent / target
                                            if path.parent.name == "out" else path.parent / target,
                                            path))


def attacks(bench, is_thorough):
    del bench, is_thorough
    for model in ("Quillmere", "Bramsett"):
        case = Case(model)
        yield from of_inputs(case)
        if model == "Quillmere":
            yield from of_results(case)
