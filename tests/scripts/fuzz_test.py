"""Whether scripts/fuzz.sh says why it could not build the fuzzers."""
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "scripts" / "fuzz.sh"


class FuzzTest(unittest.TestCase):
    def test_a_build_that_fails_is_told(self):
        folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, folder)
        (folder / "scripts").mkdir()
        (folder / "bin").mkdir()
        shutil.copy(SCRIPT, folder / "scripts")
        for name, text in (("scripts/install_dependencies.sh", "true"),
                           ("bin/cmake", 'case "$1" in --build) echo no header; exit 1;; esac')):
            (folder / name).write_text(f"#!/bin/sh\n{text}\n")
            (folder / name).chmod(0o755)
        run = subprocess.run([folder / "scripts" / "fuzz.sh", "1"], capture_output=True, text=True,
                             env={**os.environ, "PATH": f"{folder}/bin:{os.environ['PATH']}"})
        self.assertEqual(run.returncode, 1)
        self.assertIn("no header", run.stderr)
        self.assertIn("the fuzzers were not built", run.stderr)


if __name__ == "__main__":
    unittest.main()
