# SPDX-License-Identifier: Apache-2.0
"""orlenta random --valid for every root of every message set: the values pass the check, and come back from a chain of
all encoding rules as they went in."""
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

ORLENTA = sys.argv[1]
REGIONS = sys.argv[2].split(",")

COUNT = 30
CHAIN = ["jer", "uper", "aper", "oer", "ber", "der", "xer", "jer"]


def run(command, root, *arguments, message=b""):
    line = [ORLENTA, command, "--type", root, *arguments]
    result = subprocess.run(line, input=message, capture_output=True)
    if result.returncode != 0 or (result.stderr and command == "convert"):
        raise RuntimeError(f"{' '.join(line)}: status {result.returncode}, {result.stderr.decode()[:300]}")
    return result.stdout


def failure_of(root):
    """What went wrong; empty if nothing."""
    try:
        values = run("random", root, "--valid", "--count", str(COUNT), "--to", "jer", "--lines")
        if len(values.splitlines()) != COUNT:
            return f"{root}: {len(values.splitlines())} values"
        run("check", root, "--from", "jer", "--lines", message=values)
        # Records, since an encoding may have no octets.
        message = values
        for source, target in zip(CHAIN, CHAIN[1:]):
            options = ["--compact"] if target in ("jer", "xer") else []
            message = run("convert", root, "--from", source, "--to", target, "--framing", "length32", *options,
                          message=message)
        if message != values:
            return f"{root}: other values came back"
        # Of GSER there is no form on one line.
        value = values.splitlines()[0]
        gser = run("convert", root, "--from", "jer", "--to", "gser", message=value)
        back = run("convert", root, "--from", "gser", "--to", "jer", "--compact", message=gser)
        return "" if back.rstrip() == value else f"{root}: another value came back from gser"
    except RuntimeError as error:
        return str(error)


roots = [root for region in REGIONS for root in subprocess.check_output([ORLENTA, "roots", region], text=True).split()]
with ThreadPoolExecutor(2) as pool:
    failures = [failure for failure in pool.map(failure_of, roots) if failure]
print("\n".join(failures))
print(f"{len(roots)} roots, {len(failures)} failures")
sys.exit(1 if failures or not roots else 0)
