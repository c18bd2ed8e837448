# SPDX-License-Identifier: Apache-2.0
"""The package as a wheel: CMake builds the extension, and puts the libraries that it needs beside it.

    pip wheel --no-build-isolation bindings/python

ORLENTA_BUILD_DIR names a build folder with the extension ready, which is then taken as it is.
"""

import os
import re
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = Path(__file__).resolve().parents[2]
VERSION = re.search(r"project\(orlenta VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text())[1]
HAS_STABLE_ABI = sys.version_info >= (3, 11)


class build_by_cmake(build_ext):
    def build_extension(self, extension):
        package = Path(self.get_ext_fullpath(extension.name)).resolve().parent
        folder = os.environ.get("ORLENTA_BUILD_DIR")
        if not folder:
            folder = Path(self.build_temp).resolve()
            options = ["-DCMAKE_BUILD_TYPE=Release", "-DORLENTA_PYTHON=ON", "-DORLENTA_TESTS=OFF", "-DORLENTA_TOOLS=OFF",
                       f"-DPython3_EXECUTABLE={sys.executable}"]
            subprocess.run(["cmake", "-S", ROOT, "-B", folder, *options], check=True)
            subprocess.run(["cmake", "--build", folder, "--parallel", "--target", "orlenta_python"], check=True)
        subprocess.run(["cmake", "--install", folder, "--component", "wheel", "--prefix", package], check=True)
        for link in filter(Path.is_symlink, package.glob("*.so.*")):  # a wheel would have the library twice
            link.resolve().replace(link)


setup(
    version=VERSION,
    ext_modules=[Extension("orlenta._orlenta", [], py_limited_api=HAS_STABLE_ABI)],
    cmdclass={"build_ext": build_by_cmake},
    options={"bdist_wheel": {"py_limited_api": "cp311"}} if HAS_STABLE_ABI else {},
)
