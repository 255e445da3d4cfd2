"""What bash completes is what the programs' --help lists.

The environment names the folder of the programs in QUILLMERE_PROGRAMS.
"""
import functools
import os
import re
import subprocess
import sys
import tempfile
import unittest

FOLDER = os.environ["QUILLMERE_PROGRAMS"]
SCRIPT = os.path.abspath("packaging/completion.bash")
# Completes every line that it reads, as readline would ask for it, and ends each answer with an empty
# line. One shell answers all, and asks a program for its help once.
COMPLETE = """load() { source "$1"; }  # as the completion of bash does, in a function
load "$1"
while IFS= read -r COMP_LINE; do
  COMP_POINT=${#COMP_LINE}
  _quillmere_complete "$2/${COMP_LINE%% *}"
  [[ ${#COMPREPLY[@]} -eq 0 ]] || printf '%s\\n' "${COMPREPLY[@]}"
  echo
done
"""


def start_shell():
    return subprocess.Popen(["bash", "-c", COMPLETE, "bash", SCRIPT, FOLDER], text=True,
                            stdin=subprocess.PIPE, stdout=subprocess.PIPE)


def completed(line):
    SHELL.stdin.write(line + "\n")
    SHELL.stdin.flush()
    words = []
    while word := SHELL.stdout.readline().rstrip("\n"):
        words.append(word)
    return words


@functools.cache
def help_of(*words):
    return subprocess.run([os.path.join(FOLDER, words[0]), *words[1:], "--help"], check=True,
                          capture_output=True, text=True).stdout


def options_of(words):
    listed = re.search(r"^Options:\n(.*)", help_of(*words), re.DOTALL | re.MULTILINE).group(1)
    starts = re.findall(r"^ {2,4}(-\S+)", listed, re.MULTILINE)
    return sorted(option for start in starts for option in start.split(","))


def tools():
    return [name for name in ("quillmere-mesh", "quillmere-export")
            if os.path.exists(os.path.join(FOLDER, name))]


def commands_of(tool):
    listed = re.search(r"^Subcommands:\n(.*)", help_of(tool), re.DOTALL | re.MULTILINE).group(1)
    return re.findall(r"^  (\w+)", listed, re.MULTILINE)


def has(tool):
    return unittest.skipUnless(tool in tools(), f"no {tool}")


class Completion(unittest.TestCase):
    def test_options_of_the_simulator(self):
        self.assertIn("--restart", options_of(["quillmere"]))
        self.assertEqual(sorted(completed("quillmere -")), options_of(["quillmere"]))
        self.assertEqual(sorted(completed("quillmere-mpi -")), options_of(["quillmere"]))
        self.assertEqual(completed("quillmere -f data.json --prog"), ["--progress"])

    def test_commands_and_options_of_the_tools(self):
        for tool in tools():
            commands = commands_of(tool)
            self.assertGreater(len(commands), 3)
            self.assertEqual(completed(tool + " "), commands)
            self.assertEqual(sorted(completed(tool + " -")), options_of([tool]))
            for command in commands:
                self.assertEqual(sorted(completed(f"{tool} {command} -")),
                                 options_of([tool, command]), command)

    def test_files_where_files_are_named(self):
        lines = ["quillmere -f ", "quillmere --report "]
        if "quillmere-mesh" in tools():
            lines += ["quillmere-mesh check ", "quillmere-mesh import m.msh case --terrain ",
                      "quillmere-mesh import m.msh case --level lake="]
        if "quillmere-export" in tools():
            lines += ["quillmere-export plot ", "quillmere-export plot case -o "]
        with tempfile.TemporaryDirectory() as folder:
            names = [os.path.join(folder, name) for name in ("data.json", "depth.txt", "other")]
            for name in names:
                open(name, "w").close()
            for line in lines:
                self.assertEqual(sorted(completed(f"{line}{folder}/d")), names[:2], line)

    @has("quillmere-mesh")
    def test_values_of_the_import(self):
        start = "quillmere-mesh import m.msh case "
        schemes = re.search(r"--scheme NAME:\{(.*)\}", help_of("quillmere-mesh", "import"))
        self.assertEqual(completed(start + "--scheme "), schemes.group(1).split(","))
        self.assertEqual(completed(start + "--terrain-is s"), ["surface"])
        self.assertEqual(completed(start + "--end "), [])

    @has("quillmere-mesh")
    def test_kinds_of_boundaries(self):
        with open("docs/manual.md", encoding="utf-8") as file:
            rows = re.findall(r"^\| −\d+ \| [^|]*\| `(\w+)` \| ([^|]*)\|", file.read(), re.MULTILINE)
        kinds = sorted(name + (":" if value.strip() else "") for name, value in rows)
        self.assertEqual(len(kinds), 6)
        for start in ("import m.msh case --boundary inflow=", "set case boundary.inflow="):
            self.assertEqual(sorted(completed("quillmere-mesh " + start)), kinds)
        with tempfile.TemporaryDirectory() as folder:
            flood = os.path.join(folder, "flood.csv")
            open(flood, "w").close()
            line = f"quillmere-mesh import m.msh case --boundary i=hydrograph:{folder}/f"
            self.assertEqual(completed(line), [flood])

    @has("quillmere-mesh")
    def test_values_that_can_be_set(self):
        self.assertEqual(completed("quillmere-mesh set case f"), ["friction="])
        self.assertIn("boundary.", completed("quillmere-mesh set case "))

    @has("quillmere-export")
    def test_values_of_exports(self):
        self.assertEqual(completed("quillmere-export plot case --format "), ["png", "svg", "pdf"])
        self.assertIn("max_depth", completed("quillmere-export geotiff case --field "))


if __name__ == "__main__":
    with start_shell() as SHELL:
        outcome = unittest.main(exit=False).result
    sys.exit(not outcome.wasSuccessful())
