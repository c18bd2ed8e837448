# SPDX-License-Identifier: Apache-2.0
"""A folder of logs, read on several workers, becomes a table: one CSV file for each block of the logs.

    python3 dask_logs.py logs/ table/ --type CN.MessageFrame --workers 4 \\
        bsmFrame.secMark bsmFrame.pos.lat bsmFrame.pos.lon bsmFrame.speed

Logs are *.hex, one message a line in hexadecimal digits; each row of the table is a message, with empty cells for what
it does not have. A message that cannot be decoded is a row with nothing but its number. rows() gives dicts, which
dask.bag's to_dataframe() and then to_parquet() take as well.
"""

import argparse
import csv
import io
from pathlib import Path

import dask.bag
from dask.distributed import Client, LocalCluster

import orlenta


def rows(lines, type, paths):
    """The lines of a block as dicts of the parts that are asked for."""
    messages = [bytes.fromhex(line) for line in lines if line.strip()]
    columns = orlenta.columns(type, messages, paths, errors="none", missing="")
    cells = [column.tolist() for column in columns.values()]
    return [dict(zip(paths, row)) for row in zip(*cells)]


def as_csv(rows, paths):
    """The lines of a block of the table."""
    text = io.StringIO()
    writer = csv.DictWriter(text, paths, lineterminator="\n")
    writer.writeheader()
    writer.writerows(rows)
    return text.getvalue().splitlines()


def table(client, folder, target, type, paths, block_size="16MiB"):
    """Writes the table, and gives the names of its files."""
    type = orlenta.type(type)  # goes to the workers as its name, a type of a schema of one's own with the schema's text
    lines = dask.bag.read_text(str(Path(folder) / "*.hex"), blocksize=block_size)
    blocks = lines.map_partitions(rows, type, paths).map_partitions(as_csv, paths)
    return blocks.to_textfiles(str(Path(target) / "part-*.csv"))


def main():
    parser = argparse.ArgumentParser(description="A folder of logs as a table.")
    parser.add_argument("folder")
    parser.add_argument("target")
    parser.add_argument("paths", nargs="+", metavar="path")
    parser.add_argument("--type", required=True)
    parser.add_argument("--workers", type=int, default=2)
    options = parser.parse_args()
    cluster = LocalCluster(n_workers=options.workers, threads_per_worker=1, dashboard_address=None)
    with cluster, Client(cluster) as client:
        for name in table(client, options.folder, options.target, options.type, options.paths):
            print(name)


if __name__ == "__main__":
    main()
