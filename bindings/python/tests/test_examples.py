# SPDX-License-Identifier: Apache-2.0
"""The examples do what they say: logs on two workers, and a picture of an intersection."""

import csv
import os
import subprocess
import sys

import pytest
from conftest import needs_sets

import orlenta

EXAMPLES = os.path.join(os.path.dirname(__file__), "..", "examples")
PATHS = ["bsmFrame.secMark", "bsmFrame.pos.lat", "bsmFrame.speed", "mapFrame.msgCnt"]


@needs_sets
@pytest.mark.skipif("LD_PRELOAD" in os.environ, reason="workers under a sanitizer take longer than they are waited for")
def test_logs_on_two_workers(tmp_path):
    pytest.importorskip("distributed")
    with open(os.path.join(EXAMPLES, "intersection.hex")) as file:
        lines = file.read().split()
    expected = []
    for number in range(4):
        (tmp_path / f"log{number}.hex").write_text("\n".join([*lines[number:], "0102"]) + "\n")
        for name, value in map(orlenta.type("CN.MessageFrame").decode, map(bytes.fromhex, lines[number:])):
            bsm, map_data = (value if name == wanted else None for wanted in ("bsmFrame", "mapFrame"))
            expected.append([str(bsm["secMark"]), str(bsm["pos"]["lat"]), str(bsm["speed"]), ""] if bsm
                            else ["", "", "", str(map_data["msgCnt"])] if map_data else [""] * 4)
        expected.append([""] * 4)
    told = subprocess.run([sys.executable, os.path.join(EXAMPLES, "dask_logs.py"), tmp_path, tmp_path / "table", *PATHS,
                           "--type", "CN.MessageFrame", "--workers", "2"], capture_output=True, text=True, timeout=240)
    assert told.returncode == 0, told.stderr
    rows = []
    for name in sorted(told.stdout.split()):
        with open(name) as file:
            head, *block = csv.reader(file)
        assert head == PATHS
        rows += block
    assert len(told.stdout.split()) == 4 and rows == expected


@needs_sets
def test_picture(tmp_path):
    pytest.importorskip("matplotlib")
    picture = tmp_path / "intersection.png"
    subprocess.run([sys.executable, os.path.join(EXAMPLES, "map_plot.py"), os.path.join(EXAMPLES, "intersection.hex"), picture],
                   check=True, env={**os.environ, "MPLCONFIGDIR": str(tmp_path)})
    from matplotlib import image

    pixels = image.imread(picture)
    assert pixels.shape[:2] == (560, 560)
    for colour in ((0.84, 0.15, 0.16), (0.6, 0.8, 0.2)):  # red and green lights
        assert (abs(pixels[..., :3] - colour).max(axis=2) < 0.02).sum() > 10
