"""The rule that every attack is held to: status 0 and no word on standard error means that every
file is identical; and always: no death by signal, no hang, no result under its final name that is
incomplete, no input changed."""
import json
import math
import re
import signal

from cases import LINES, LOG, RECORDS, REPORT, WHOLE
from netcdf import damage_of_records

ALLOWED_STATUSES = (0, 255)
LAST_WORDS = re.compile(rb"^(Simulation interrupted|Total execution time).*\n", re.MULTILINE)


def comparable(name, text):
    """The text less what another run of the same case need not repeat: its wall times."""
    if name.endswith("log.txt"):
        return re.sub(rb"Total execution time: \d+ sec", b"Total execution time: ? sec", text)
    if text.startswith(b"{"):
        try:
            report = json.loads(text)
            report.pop("wall_time", None)
        except (ValueError, AttributeError):
            return text
        return json.dumps(report).encode()
    return text


def is_prefix_of_lines(text, whole):
    return whole.startswith(text) and (text == b"" or text.endswith(b"\n"))


def number(text):
    try:
        return float(text)
    except ValueError:
        return math.nan


def is_complete_table(text, last):
    """Whether the text tells of the same cells as that of the run whose last one is given, but of
    another time."""
    rows, last_rows = text.split(b"\n"), last.split(b"\n")
    if len(rows) != len(last_rows) or rows[0] != last_rows[0] or rows[-1] != b"":
        return False
    for row, last_row in zip(rows[1:-1], last_rows[1:-1]):
        values, last_values = row.split(b"\t"), last_row.split(b"\t")
        if len(values) != len(last_values) or values[:2] != last_values[:2]:
            return False
        if not all(math.isfinite(number(value)) for value in values):
            return False
    return True


def is_complete_envelope(text, last):
    """Whether the text is an envelope of the run whose last one is given: depths only grow."""
    rows, last_rows = text.split(b"\n"), last.split(b"\n")
    if len(rows) != len(last_rows) or rows[-1] != b"":
        return False
    for row, last_row in zip(rows[:-1], last_rows[:-1]):
        *place, depth = row.split(b"\t")
        *last_place, last_depth = last_row.split(b"\t")
        if place != last_place or not 0 < number(depth) <= number(last_depth):
            return False
    return True


def is_json(text):
    try:
        json.loads(text)
        return True
    except ValueError:
        return False


def damage(name, kind, text, reference, may_cut_last_line):
    """What is wrong with a result under its final name; None if nothing is."""
    if kind == REPORT:
        return None if is_json(text) else "is no complete report"
    if reference is None:
        return None
    if kind == RECORDS:
        return damage_of_records(text, reference)
    if kind in (LINES, LOG):
        if may_cut_last_line:
            text = text[:text.rfind(b"\n") + 1]
        if kind == LOG:  # it grows by pieces of lines, and tells at its end how the run ended
            is_right = reference.startswith(LAST_WORDS.sub(b"", text))
        else:
            is_right = is_prefix_of_lines(text, reference)
        return None if is_right else "does not hold whole lines of the undisturbed run"
    if name.endswith("enveloppe.txt"):
        return None if is_complete_envelope(text, reference) else "is no complete envelope"
    if name.endswith(("final.txt", "maxima.txt")):
        return None if is_complete_table(text, reference) else "is no complete table"
    return None if text == reference else "differs from that of the undisturbed run"


def kind_of(name, kinds):
    return WHOLE if "/pic_" in "/" + name and name.endswith(".txt") else kinds.get(name)


def judge_end(attack, end):
    if end.is_late:
        return ["hangs"]
    status = end.status
    if status < 0 and -status not in attack.signals:
        return [f"dies of {signal.Signals(-status).name}"]
    if status > 0 and status not in attack.statuses:
        return [f"ends with status {status}"]
    if status > 0 and not attack.is_mute and not (end.stderr + end.stdout).strip(b" 0.\r\n"):
        return [f"ends with status {status} without a word"]
    if end.stderr.strip() in (b"std::bad_alloc", b"std::length_error"):
        return [f"says nothing but {end.stderr.strip().decode()}"]
    return []


def judge_results(attack, end, reference):
    problems = []
    kinds = attack.case.results()
    for name, text in end.files.items():
        kind = kind_of(name, kinds)
        if kind is None or name in attack.free:
            continue
        # The log tells how the run ends piece by piece: a second signal may come between them.
        may_cut_last_line = attack.may_cut_last_line or (kind == LOG and attack.signals)
        trouble = damage(name, kind, text, reference.get(name), may_cut_last_line)
        if trouble:
            problems.append(f"{name} {trouble}")
    return problems


def judge_silence(attack, end, reference):
    if end.is_late or end.status != 0 or (end.stderr and not attack.may_warn_only):
        return []
    if attack.must_speak:
        return ["is silent: status 0, nothing on standard error"]
    problems = []
    for name in sorted(set(reference) | set(end.files)):
        if name in attack.free:
            continue
        if name not in end.files:
            problems.append(f"silently without {name}")
        elif name not in reference:
            problems.append(f"silently leaves {name}")
        elif comparable(name, end.files[name]) != comparable(name, reference[name]):
            problems.append(f"silently another {name}")
    return problems


def judge(attack, end, reference):
    """Problems in words; `reference` are the files of the undisturbed run."""
    problems = [f"changes the input {name}" for name in end.changed_inputs]
    problems += judge_end(attack, end)
    problems += judge_silence(attack, end, reference)
    problems += [p for p in judge_results(attack, end, reference)
                 if f"silently another {p.split()[0]}" not in problems]
    return problems
