"""Names that nobody expects: of the output folder, of results, and results called like inputs."""
import os

from cases import Case
from faults import PLAIN, WITH_REPORT
from run import Attack

FOLDERS = {
    "here": "", "dot": "./", "slashes": "out//", "no-slash": "out", "newline": "o\nut/",
    "quotes": "o'u\"t/", "dollar": "$(touch oops)/", "percent": "%s%n%d/", "blank": " o ut /",
    "dash": "-f/", "stars": "*?[a]/", "utf-8": "øut/", "backslash": "o\\ut/",
    "long": "x" * 250 + "/", "deep": "d/" * 100, "too-long": "x" * 300 + "/",
    "much-too-long": "x" * 5000 + "/",
    "missing": "missing/", "input": "nodes.txt/", "nul": "o\0ut/", "root": "/proc/",
}
WORDS = {
    "quotes": "g'a\"u.txt", "dollar": "$HOME;$(touch_oops)", "percent": "%s%n%d", "dash": "-f",
    "stars": "*?[a]", "utf-8": "gåuge.txt", "backslash": "g\\a.txt", "long": "x" * 250,
    "too-long": "x" * 256, "much-too-long": "x" * 5000, "folder": "missing/gauges.txt", "dot": ".",
    "up": "..",
}
OF_NAMES = ("log.txt",)  # tells the names
RESULTS = ("log.txt", "report.json", "gauges.txt", "sections.txt", "enveloppe.txt", "pic_0_50.txt",
           "final.txt", "maxima.txt", "results.nc")
SPELLINGS = {"plain": "{}", "dot": "./{}", "round": "out/../{}"}
PLAIN_CASE = Case()
UNDISTURBED = Attack("undisturbed", PLAIN_CASE, WITH_REPORT)


def with_output_folder(name):
    return Case().with_data(lambda data: data["output"].update(folder=name))


def make(name):
    def make_folder(folder):
        try:
            os.makedirs(folder / name, exist_ok=True)
        except (OSError, ValueError):
            pass  # the run meets the same
    return make_folder


def of_folders():
    for word, name in FOLDERS.items():
        there = word not in ("missing", "input", "root")
        in_out = ("gauges.txt", "enveloppe.txt", "pic_0_00.txt", "pic_0_50.txt", "pic_0_90.txt",
                  "final.txt", "maxima.txt", "results.nc")
        renamed = {f"out/{result}": os.path.normpath(name + result)
                   if "\0" not in name else result for result in in_out}
        yield Attack(f"names/folder/{word}", with_output_folder(name), PLAIN, renamed=renamed,
                     prepare=make(name) if there else None,
                     reference=Attack("undisturbed", PLAIN_CASE, PLAIN), free=OF_NAMES)


def with_result_name(request, name):
    case = Case()
    first, rest = case.inputs[request].split("\n", 1)
    case.inputs[request] = " ".join(name if word.endswith(".txt") else word
                                    for word in first.split(" ")) + "\n" + rest
    if request == "gauges_in.txt":
        case.inputs[request] = f"3 {name}\n" + rest
    return case


def of_results():
    for word, name in WORDS.items():
        for request, result, place in (("gauges_in.txt", "out/gauges.txt", f"out/{name}"),
                                       ("sections_in.txt", "sections.txt", name)):
            yield Attack(f"names/result/{request}-{word}", with_result_name(request, name),
                         WITH_REPORT, renamed={result: os.path.normpath(place)},
                         reference=UNDISTURBED, free=OF_NAMES)
        yield Attack(f"names/result/report-{word}", PLAIN_CASE, (*PLAIN, "--report", name),
                     reference=UNDISTURBED, renamed={"report.json": os.path.normpath(name)})


def of_collisions():
    """One result called like another, or like an input in any spelling."""
    def must_speak(name, case, arguments=WITH_REPORT):
        return Attack(f"names/collision/{name}", case, arguments, must_speak=True,
                      reference=UNDISTURBED, free=OF_NAMES)

    for other in RESULTS:
        in_out = f"../{other}" if other in ("log.txt", "report.json", "sections.txt") else other
        at_top = other if in_out != other else f"out/{other}"
        if other != "gauges.txt":
            yield must_speak(f"gauges-is-{other}", with_result_name("gauges_in.txt", in_out))
        if other != "sections.txt":
            yield must_speak(f"sections-is-{other}", with_result_name("sections_in.txt", at_top))
        if other != "report.json":
            yield must_speak(f"report-is-{other}", PLAIN_CASE, (*PLAIN, "--report", at_top))
    for other in ("out/enveloppe.txt.part", "out/pic_0_50.txt.part"):
        yield must_speak(f"report-is-{other}", PLAIN_CASE, (*PLAIN, "--report", other))
    for name in PLAIN_CASE.inputs:
        for spelling, pattern in SPELLINGS.items():
            yield must_speak(f"gauges-is-{name}-{spelling}",
                             with_result_name("gauges_in.txt", "../" + pattern.format(name)))
            yield must_speak(f"sections-is-{name}-{spelling}",
                             with_result_name("sections_in.txt", pattern.format(name)))
            yield must_speak(f"report-is-{name}-{spelling}", PLAIN_CASE,
                             (*PLAIN, "--report", pattern.format(name)))


def rename_input(case, old, new):
    """The same case with an input of another name."""
    case.inputs = {new if name == old else name:
                   text.replace(f'"{old}"', f'"{new}"') if name == "data.json"
                   else text.replace(f" {old}", f" {new}") if name == "edges.txt" else text
                   for name, text in case.inputs.items()}
    return case


def of_inputs_called_like_results():
    """Everything lies in one folder, and an input has the name of a result."""
    for result in (*RESULTS, "enveloppe.txt.part", "pic_0_50.txt.part", "report.json.part"):
        for old in PLAIN_CASE.inputs:
            case = rename_input(with_output_folder(""), old, result)
            arguments = ("-f", result if old == "data.json" else "data.json", *WITH_REPORT[2:])
            yield Attack(f"names/input-is-result/{old}-is-{result}", case, arguments,
                         must_speak=True, reference=UNDISTURBED, free=OF_NAMES)


def attacks(bench, is_thorough):
    del bench, is_thorough
    yield from of_folders()
    yield from of_results()
    yield from of_collisions()
    yield from of_inputs_called_like_results()
