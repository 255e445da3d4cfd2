"""What the packages hold works where it is unpacked: packages_test.py BUILD_FOLDER EXAMPLE_OF_LIBRARY.

Ends with 77 where the tools of Debian that make packages are missing.
"""
import glob
import gzip
import os
import re
import shutil
import subprocess
import sys
import tarfile
import tempfile

SQUARE = """MESH2D
ND 1 0 0 0
ND 2 1 0 0
ND 3 1 1 0
ND 4 0 1 0
E3T 1 1 2 3 1
E3T 2 1 3 4 1
"""
GEOMETRY = """Point(1) = {0, 0, 0, 1}; Point(2) = {1, 0, 0, 1}; Point(3) = {1, 1, 0, 1};
Line(1) = {1, 2}; Line(2) = {2, 3}; Line(3) = {3, 1}; Curve Loop(1) = {1, 2, 3}; Plane Surface(1) = {1};
"""
PROGRAMS = {"quillmere": ["quillmere"], "quillmere-mpi": ["quillmere-mpi"],
            "quillmere-tools": ["quillmere-mesh", "quillmere-export"]}
PYTHON_FOLDER = "usr/lib/python3/dist-packages"


def run(*command, folder=None, **environment):
    done = subprocess.run(command, cwd=folder, env=dict(os.environ, **environment), text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    assert done.returncode == 0, f"{' '.join(command)}\n{done.stdout}"
    return done.stdout


def pack(build, generator, folder):
    run("cpack", "--config", os.path.join(build, "CPackConfig.cmake"), "-G", generator, "-B", folder,
        "-D", "CPACK_DEBIAN_COMPRESSION_TYPE=gzip")  # faster than what users get


def field(package, name):
    return run("dpkg-deb", "--field", package, name).strip()


def has_matplotlib():
    return subprocess.run(["/usr/bin/python3", "-c", "import matplotlib"],
                          stderr=subprocess.DEVNULL).returncode == 0


def use_programs(root, folder):
    """A case is imported, run, and drawn, by what stands under a root alone."""
    program = lambda name: os.path.join(root, "bin", name)
    with open(os.path.join(folder, "square.2dm"), "w", encoding="ascii") as file:
        file.write(SQUARE)
    if os.path.exists(os.path.join(root, "lib/quillmere/gmsh.so")):
        with open(os.path.join(folder, "triangle.geo"), "w", encoding="ascii") as file:
            file.write(GEOMETRY)
        run(program("quillmere-mesh"), "import", "triangle.geo", "triangle", folder=folder)
    run(program("quillmere-mesh"), "import", "square.2dm", "case", "--level", "1", "--end", "1",
        folder=folder)
    case = os.path.join(folder, "case")
    run(program("quillmere"), "-f", "data.json", "-nodisplay", folder=case)
    if not has_matplotlib():
        print("No matplotlib: nothing is drawn")
        return
    run(program("quillmere-export"), "plot", "case", folder=folder)
    pictures = glob.glob(os.path.join(case, "export", "*.png"))
    assert len(pictures) == 1, pictures


def names_no_folder_of(build, root):
    """Nothing that runs leads back to where it was built; what is for debuggers may."""
    for path, _, names in os.walk(root):
        for name in names:
            if name.endswith(".a"):
                continue
            with open(os.path.join(path, name), "rb") as file:
                assert build.encode() not in file.read(), name


def check_documents(root, name):
    documents = os.path.join(root, "usr/share/doc", name)
    with open(os.path.join(documents, "copyright"), encoding="utf-8") as file:
        assert "Copyright" in file.read(), name
    with gzip.open(os.path.join(documents, "changelog.Debian.gz"), "rt", encoding="utf-8") as file:
        assert file.read().startswith("quillmere ("), name
    for program in PROGRAMS.get(name, []):
        with gzip.open(os.path.join(root, f"usr/share/man/man1/{program}.1.gz"), "rt") as file:
            assert file.read().startswith(".TH " + program.upper()), program
        completion = os.path.join(root, "usr/share/bash-completion/completions", program)
        run("bash", "-c", f"source {completion} && complete -p {program}")
        assert "not stripped" not in run("file", os.path.join(root, "usr/bin", program)), program


def check_debian_packages(build, example):
    with tempfile.TemporaryDirectory() as folder:
        pack(build, "DEB", folder)
        packages = {field(file, "Package"): file for file in glob.glob(f"{folder}/*.deb")}
        assert {"quillmere", "libquillmere-dev"} <= set(packages), packages
        root = os.path.join(folder, "root")
        for name, file in packages.items():
            run("dpkg-deb", "--extract", file, root)
            check_documents(root, name)
            assert len(field(file, "Description").splitlines()) > 2, name
            if name != "libquillmere-dev":
                assert "libc6 (" in field(file, "Depends"), name
        names_no_folder_of(build, root)
        run("cmake", "-S", example, "-B", os.path.join(folder, "example"),
            f"-DCMAKE_PREFIX_PATH={root}/usr")
        if "python3-quillmere" in packages:
            (module,) = glob.glob(os.path.join(root, PYTHON_FOLDER, "quillmere/_quillmere.*"))
            minor = int(re.search(r"cpython-3(\d+)-", module).group(1))
            depends = field(packages["python3-quillmere"], "Depends").split(", ")
            assert {f"python3 (>= 3.{minor})", f"python3 (<< 3.{minor + 1})",
                    "python3-numpy"} <= set(depends), depends
            found = run("/usr/bin/python3", "-c", "import quillmere; print(quillmere.__file__)",
                        folder=folder, PYTHONPATH=os.path.join(root, PYTHON_FOLDER))
            assert found.startswith(root), found
        if "quillmere-tools" in packages:
            use_programs(os.path.join(root, "usr"), folder)
        else:
            print("No companion tools: the programs are not used")


def check_archive(build):
    with tempfile.TemporaryDirectory() as folder:
        pack(build, "TGZ", folder)
        (archive,) = glob.glob(f"{folder}/*.tar.gz")
        with tarfile.open(archive) as file:
            file.extractall(os.path.join(folder, "unpacked"))
        (root,) = glob.glob(f"{folder}/unpacked/*")
        moved = shutil.move(root, os.path.join(folder, "elsewhere"))
        assert os.path.exists(os.path.join(moved, "share/quillmere/quillmere.schema.json"))
        names_no_folder_of(build, moved)
        if os.path.exists(os.path.join(moved, "bin/quillmere-mesh")):
            use_programs(moved, folder)


def main():
    build, example = sys.argv[1:]
    for tool in ("cpack", "file", "gzip", "dpkg-deb", "dpkg-shlibdeps"):
        if not shutil.which(tool):
            print(f"No {tool}: packages cannot be made here")
            sys.exit(77)
    check_archive(build)
    check_debian_packages(build, example)


main()
