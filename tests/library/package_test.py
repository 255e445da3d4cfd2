"""The example of the library is built against the installed package, and says what it should.

Usage: package_test.py BUILD_FOLDER EXAMPLE_FOLDER CXX_COMPILER
"""

import pathlib
import re
import subprocess
import sys
import tempfile


def run(*command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}\n{done.stdout}")
    return done.stdout


def check(build, example, compiler, *options):
    """What a build folder installs; with options for the build of the example."""
    with tempfile.TemporaryDirectory() as folder:
        prefix, there = pathlib.Path(folder, "prefix"), pathlib.Path(folder, "build")
        run("cmake", "--install", build, "--prefix", prefix, "--component", "library")
        run("cmake", "-S", example, "-B", there, f"-DCMAKE_PREFIX_PATH={prefix}",
            "-DCMAKE_DISABLE_FIND_PACKAGE_nlohmann_json=TRUE", f"-DCMAKE_CXX_COMPILER={compiler}",
            "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Werror", *options)
        run("cmake", "--build", there)
        headers = sorted(file.name for file in prefix.rglob("*.hpp"))
        assert headers == ["simulation.hpp"], headers
        text = run(there / "two_basins")
    numbers = re.fullmatch(r"upper (\S+) m3, lower (\S+) m3, together (\S+) of (\S+) m3 after "
                           r"(\S+) s\n", text)
    assert numbers, text
    upper, lower, together, at_first, time = map(float, numbers.groups())
    assert at_first == 200.0 and time == 60.0, text
    assert abs(together - at_first) <= 0.01 * at_first, text
    # The upper basin has sunk towards its crest at 80 m3, and the lower one has what it lost.
    assert 80.0 < upper < 100.0 and lower > 100.0, text


if __name__ == "__main__":
    check(*sys.argv[1:])
