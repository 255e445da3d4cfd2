"""Whether scripts/attack finds what it is there to find: programs that hide a failure, crash, hang,
damage a result or change an input must be told from one that does not."""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROGRAM = Path(os.environ["QUILLMERE_PROGRAM"])
SCRIPTS = Path(__file__).resolve().parents[2] / "scripts"
FAULTY = '[ -n "$FAULT" ]'  # the run is disturbed, and neither counted nor the undisturbed one
RUN_UNDISTURBED = 'unset FAULT; "$REAL" "$@"'


class AttackTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        (self.folder / "bin").mkdir()
        subprocess.run(["cc", "-shared", "-fPIC", "-o", self.folder / "faults.so",
                        SCRIPTS / "attack" / "faults.c"], check=True)

    def make_dishonest(self, condition, deed):
        """The program does something else under a condition."""
        program = self.folder / "bin" / "quillmere"
        program.write_text(f'#!/bin/sh\nREAL="{PROGRAM}"\nif {condition}; then\n{deed}\nfi\n'
                           'exec "$REAL" "$@"\n')
        program.chmod(0o755)

    def attack(self, pattern):
        """Answers the exit status and the words."""
        ended = subprocess.run(
            [sys.executable, "-B", SCRIPTS / "attack" / "attack.py", "--only", pattern,
             self.folder / "bin", self.folder], capture_output=True, text=True)
        return ended.returncode, ended.stdout + ended.stderr

    def expect_found(self, words, deed, pattern="faults/rename/flow/1-once-*", condition=FAULTY):
        self.make_dishonest(condition, deed)
        status, text = self.attack(pattern)
        self.assertEqual(status, 1, text)
        self.assertIn(words, text)
        self.assertIn("scripts/attack.sh --only '", text)

    def test_lets_an_honest_program_pass(self):
        shutil.copy(PROGRAM, self.folder / "bin")
        status, text = self.attack("faults/read/flow/*-once-EIO")
        self.assertEqual(status, 0, text)
        self.assertRegex(text, r"faults/read +[1-9]")

    def test_lets_every_call_fail(self):
        shutil.copy(PROGRAM, self.folder / "bin")
        status, text = self.attack("faults/open/flow/*-once-EMFILE")
        self.assertEqual(status, 0, text)
        attacks, silent, warned, error = map(int, text.split("\ntotal")[1].split()[:4])
        self.assertGreater(attacks, 15, text)
        self.assertLess(silent, attacks / 2, text)  # the program goes on where it has a second way
        self.assertEqual(attacks, silent + warned + error, text)

    def test_finds_a_missing_result(self):
        self.expect_found("silently without sections.txt",
                          RUN_UNDISTURBED + '; rm sections.txt; exit 0')

    def test_finds_another_result(self):
        self.expect_found("silently another out/gauges.txt",
                          RUN_UNDISTURBED + '; sed -i s/0.3/0.4/ out/gauges.txt; exit 0')

    def test_finds_what_is_left_behind(self):
        self.expect_found("silently leaves out/enveloppe.txt.part",
                          RUN_UNDISTURBED + '; touch out/enveloppe.txt.part; exit 0')

    def test_finds_a_result_that_is_incomplete_although_the_failure_is_told(self):
        self.expect_found("out/pic_0_50.txt differs",
                          'echo Error >&2; echo x >out/pic_0_50.txt; exit 255')
        self.expect_found("out/enveloppe.txt is no complete envelope",
                          'echo Error >&2; echo x >out/enveloppe.txt; exit 255')
        self.expect_found("sections.txt does not hold whole lines",
                          'echo Error >&2; printf 0 >sections.txt; exit 255')
        self.expect_found("report.json is no complete report",
                          'echo Error >&2; echo "{" >report.json; exit 255')

    def test_finds_an_input_that_has_changed(self):
        self.expect_found("changes the input bed.txt",
                          RUN_UNDISTURBED + '; echo >>bed.txt; exit 0')

    def test_finds_ends_that_tell_nothing(self):
        self.expect_found("ends with status 255 without a word", "exit 255")
        self.expect_found("says nothing but std::bad_alloc", "echo std::bad_alloc >&2; exit 255")
        self.expect_found("ends with status 3", "echo Error >&2; exit 3")
        self.expect_found("dies of SIGSEGV", "kill -SEGV $$")

    def test_finds_a_program_that_hangs(self):
        self.expect_found("hangs", "exec tail -f /dev/null")

    def test_finds_a_line_that_a_signal_cuts(self):
        self.expect_found("sections.txt does not hold whole lines",
                          """trap 'kill -KILL $child; wait; printf 0 >>sections.txt; exit 129' HUP
                          "$REAL" "$@" &
                          child=$!
                          wait $child
                          exit""", "kills/HUP/[0-3]", '[ "$1" = -f ]')

    def test_finds_a_result_that_replaces_an_input(self):
        self.expect_found("changes the input", 'cp sections.txt bed.txt; exec "$REAL" "$@"',
                          "odd-files/result-link/sections.txt-to-nodes.txt", "[ -L sections.txt ]")


if __name__ == "__main__":
    unittest.main()
