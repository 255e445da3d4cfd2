"""docs/workflow.md: its options exist, its programs can be read, its pictures are there."""
import ast
import functools
import os
import re
import shlex
import subprocess
import unittest

PAGE = os.path.join("docs", "workflow.md")
FOLDER = os.environ["QUILLMERE_PROGRAMS"]


def page():
    with open(PAGE, encoding="utf-8") as file:
        return file.read()


def blocks(language):
    return re.findall(rf"```{language}\n(.*?)```", page(), re.DOTALL)


def commands():
    """The words of every command that runs one of the programs."""
    for block in blocks("sh"):
        for line in block.replace("\\\n", " ").splitlines():
            for command in re.split(r"&&|[()]", line):
                words = shlex.split(command)
                if words and words[0].startswith("quillmere"):
                    yield words


@functools.cache
def options_of(program):
    text = subprocess.run([os.path.join(FOLDER, program[0]), *program[1:], "--help"], check=True,
                          capture_output=True, text=True).stdout
    return set(re.findall(r"(?<![\w-])--?[a-z][\w-]*", text))


class Workflow(unittest.TestCase):
    def test_every_option_is_one_of_its_program(self):
        seen = set()
        for words in commands():
            program = tuple(words[:1] if words[0] == "quillmere" else words[:2])
            seen.add(" ".join(program))
            known = options_of(program)
            for word in words:
                if re.match(r"--?[a-z]", word):
                    self.assertIn(word, known, " ".join(words))
        self.assertEqual(seen, {"quillmere", "quillmere-mesh import", "quillmere-mesh check",
                                "quillmere-export plot", "quillmere-export report",
                                "quillmere-export netcdf", "quillmere-export geotiff"})

    def test_its_programs_are_python(self):
        programs = blocks("python")
        self.assertEqual(len(programs), 2)
        for program in programs:
            ast.parse(program)

    def test_what_it_links_is_there(self):
        targets = re.findall(r"\]\(([^)#]+)\)", page())
        self.assertTrue(targets)
        for target in targets:
            self.assertTrue(os.path.exists(os.path.join(os.path.dirname(PAGE), target)), target)


if __name__ == "__main__":
    unittest.main()
