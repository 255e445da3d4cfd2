"""What pip installs is the package, with the compiled part: package_test.py SOURCE MODULE."""
import os
import subprocess
import sys
import tempfile


def main():
    source, module = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        copy = os.path.join(folder, "source")  # pip leaves its traces beside setup.py
        os.mkdir(copy)
        for name in ("setup.py", "pyproject.toml", "CMakeLists.txt", "python"):
            subprocess.run(["cp", "-r", os.path.join(source, name), copy], check=True)
        target = os.path.join(folder, "site")
        environment = dict(os.environ, QUILLMERE_COMPILED_MODULE=module, PYTHONPATH="")
        subprocess.run([sys.executable, "-m", "pip", "install", "--quiet", "--no-build-isolation",
                        "--no-deps", "--no-index", "--root-user-action", "ignore",
                        "--disable-pip-version-check", "--target", target, copy],
                       env=environment, check=True)
        found = subprocess.run(
            [sys.executable, "-c", "import quillmere, quillmere.bmi, importlib.metadata as m; "
             "print(quillmere.__file__, m.version('quillmere'))"],
            env=dict(environment, PYTHONPATH=target), cwd=folder, check=True, capture_output=True,
            text=True).stdout.split()
        assert found[0] == os.path.join(target, "quillmere", "__init__.py"), found
        with open(os.path.join(source, "CMakeLists.txt")) as file:
            assert f"project(quillmere VERSION {found[1]} " in file.read(), found


main()
