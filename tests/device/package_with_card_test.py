"""The example of the library is built against the installed package of a build for graphics cards.

That build is configured alone: its archive is that of this one, with the card in place of the file
that says that there is none, so that nothing of it is compiled twice.

Usage: package_with_card_test.py ARCHIVE CARD_OBJECT ARCHITECTURE NVCC SOURCE_FOLDER CXX_COMPILER
"""

import pathlib
import shutil
import sys
import tempfile

sys.path.append(str(pathlib.Path(__file__).parents[1] / "library"))
import package_test  # noqa: E402


def main():
    archive, card, architecture, nvcc, source, compiler = sys.argv[1:]
    with tempfile.TemporaryDirectory() as build:
        package_test.run(
            "cmake", "-S", source, "-B", build, f"-DCMAKE_CXX_COMPILER={compiler}",
            "-DQUILLMERE_CUDA=ON", f"-DQUILLMERE_CUDA_ARCHITECTURES={architecture}",
            f"-DQUILLMERE_NVCC={nvcc}",
            *(f"-DQUILLMERE_{part}=OFF" for part in ("TESTS", "TOOLS", "MPI", "PYTHON_MODULE")))
        with_card = pathlib.Path(build, "src/libquillmere.a")
        shutil.copy(archive, with_card)
        package_test.run("ar", "d", with_card, "no_card.cpp.o")
        package_test.run("ar", "q", with_card, card)
        toolkit = pathlib.Path(nvcc).resolve().parents[1]
        package_test.check(build, f"{source}/examples/library", compiler,
                           f"-DCUDAToolkit_ROOT={toolkit}")


main()
