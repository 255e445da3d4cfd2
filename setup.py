"""Builds the Python module by CMake: pip install ."""
import os
import re
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

# The compiled part where it is there already, for who packages a build of CMake.
COMPILED = os.environ.get("QUILLMERE_COMPILED_MODULE")
ROOT = os.path.dirname(os.path.abspath(__file__))


def version():
    with open(os.path.join(ROOT, "CMakeLists.txt")) as file:
        return re.search(r"project\(quillmere VERSION ([\d.]+)", file.read()).group(1)


class CMakeBuild(build_ext):
    def build_extension(self, extension):
        target = os.path.abspath(self.get_ext_fullpath(extension.name))
        if COMPILED:
            os.makedirs(os.path.dirname(target), exist_ok=True)
            shutil.copy(COMPILED, target)
            return
        folder = os.path.dirname(target)
        build = os.path.abspath(self.build_temp)
        options = ["-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_UNITY_BUILD=ON", "-DQUILLMERE_TESTS=OFF",
                   "-DQUILLMERE_TOOLS=OFF", f"-DQUILLMERE_PYTHON_FOLDER={folder}",
                   f"-DPython3_EXECUTABLE={sys.executable}"]
        try:  # the one of an isolated build
            import pybind11
            options.append(f"-Dpybind11_DIR={pybind11.get_cmake_dir()}")
        except ImportError:
            pass
        subprocess.run(["cmake", "-S", ROOT, "-B", build, *options], check=True)
        subprocess.run(["cmake", "--build", build, "--target", "_quillmere", "--parallel"],
                       check=True)


setup(name="quillmere", version=version(),
      description="Simulator of free-surface flow over terrain",
      packages=["quillmere"], package_dir={"": "python"}, python_requires=">=3.9",
      install_requires=["numpy"],
      ext_modules=[Extension("quillmere._quillmere", sources=[])],
      cmdclass={"build_ext": CMakeBuild})
