"""The manual pages name the options that the programs' --help lists, and no others.

The environment names the folder of the programs in QUILLMERE_PROGRAMS.
"""
import os
import re
import shutil
import subprocess
import unittest

FOLDER = os.environ["QUILLMERE_PROGRAMS"]
PAGES = {"quillmere": "src/main/quillmere.1", "quillmere-mpi": "src/main/quillmere-mpi.1",
         "quillmere-mesh": "tools/mesh/quillmere-mesh.1",
         "quillmere-export": "tools/export/quillmere-export.1"}


def help_of(*words):
    return subprocess.run([os.path.join(FOLDER, words[0]), *words[1:], "--help"], check=True,
                          capture_output=True, text=True).stdout


def part(name, text):
    found = re.search(rf"^{name}:\n(.*)", text, re.DOTALL | re.MULTILINE)
    return found.group(1) if found else ""


def options_of(program):
    """Those of the program and of its commands, but for the help of a tool."""
    texts = [help_of(program)]
    for command in re.findall(r"^  (\w+)", part("Subcommands", texts[0]), re.MULTILINE):
        texts.append(help_of(program, command))
    starts = [start for text in texts
              for start in re.findall(r"^ {2,4}(-\S+)", part("Options", text), re.MULTILINE)]
    return {option for start in starts for option in start.split(",")} - {"-h"}


def text_of(page):
    """The page without what only sets it, without examples, and without commands of others."""
    with open(page, encoding="utf-8") as file:
        text = file.read().replace("\\-", "-").replace("\\ ", " ")
    text = re.sub(r"^\.nf\n.*?^\.fi\n", "", text, flags=re.DOTALL | re.MULTILINE)
    return re.sub(r"\\f[BIRP]|quillmere(-\w+ \w+)? --[\w-]+", "", text)


def options_in(page):
    return set(re.findall(r"(?<![\w-])--?[a-zA-Z][\w-]*", text_of(page)))


class ManualPages(unittest.TestCase):
    def test_they_name_the_options_of_their_program(self):
        for program, page in PAGES.items():
            if program == "quillmere-mpi" or not os.path.exists(os.path.join(FOLDER, program)):
                continue
            options = options_of(program)
            self.assertGreater(len(options), 8)
            named = options_in(page)
            self.assertEqual(options - named, set(), page)
            self.assertLessEqual(named - options, {"-1", "-2"}, page)

    def test_that_of_quillmere_mpi_leads_to_the_options_of_quillmere(self):
        text = text_of(PAGES["quillmere-mpi"])
        self.assertIn("options of quillmere", text)
        self.assertIn("SEE ALSO\n.BR quillmere (1)", text)

    @unittest.skipUnless(shutil.which("groff"), "no groff")
    def test_they_are_set_without_a_warning(self):
        for page in PAGES.values():
            done = subprocess.run(["groff", "-man", "-ww", "-Tutf8", "-z", page],
                                  capture_output=True, text=True)
            self.assertEqual((done.returncode, done.stderr), (0, ""), page)


if __name__ == "__main__":
    unittest.main()
