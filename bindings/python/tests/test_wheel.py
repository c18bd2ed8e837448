# SPDX-License-Identifier: Apache-2.0
"""A wheel, made without a network from a build that is there, serves on its own."""

import os
import shutil
import subprocess
import sys

import pytest
from conftest import ROOT

pytest.importorskip("pip")
pytest.importorskip("wheel")


@pytest.mark.skipif("ORLENTA_BUILD_DIR" not in os.environ or "LD_PRELOAD" in os.environ, reason="no build to take, or no plain one")
def test_wheel(tmp_path):
    source = tmp_path / "tree" / "bindings" / "python"
    shutil.copytree(ROOT / "bindings" / "python", source, ignore=shutil.ignore_patterns("build", "*.egg-info", "__pycache__"))
    shutil.copy(ROOT / "CMakeLists.txt", tmp_path / "tree")
    pip = [sys.executable, "-m", "pip", "--disable-pip-version-check", "-q"]
    subprocess.run([*pip, "wheel", "--no-index", "--no-build-isolation", "--no-deps", "-w", tmp_path, source], check=True)
    (wheel,) = tmp_path.glob("orlenta-*.whl")
    assert "-cp311-abi3-" in wheel.name or sys.version_info < (3, 11)
    subprocess.run([*pip, "install", "--no-index", "--no-deps", "--target", tmp_path / "site", wheel], check=True)
    line = "import orlenta; print(orlenta.__file__, orlenta.decode('EU.CAM', orlenta.encode('EU.CAM', orlenta.random('EU.CAM', 1))))"
    told = subprocess.run([sys.executable, "-c", line], env={"PYTHONPATH": str(tmp_path / "site")}, cwd=tmp_path,
                          capture_output=True, text=True, check=True).stdout
    assert told.startswith(str(tmp_path / "site")) and "generationDeltaTime" in told
    libraries = subprocess.run(["ldd", *(tmp_path / "site" / "orlenta").glob("_orlenta*.so")], capture_output=True, text=True, check=True)
    assert libraries.stdout.count(str(tmp_path / "site")) == 2
