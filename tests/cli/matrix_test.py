# SPDX-License-Identifier: Apache-2.0
"""orlenta convert from each set of encoding rules to each other one, for messages of all message sets."""
import subprocess
import sys
import tempfile
from pathlib import Path

ORLENTA = sys.argv[1]
DATA = Path(sys.argv[2])
REGIONS = sys.argv[3].split(",")

RULES = ["uper", "aper", "oer", "ber", "der", "jer", "xer", "gser"]
MESSAGES = {  # vector file: region, types
    "cn.tsv": ("CN", ["MessageFrame"]),
    "eu.tsv": ("EU", ["CAM", "DENM", "CPM", "SPATEM"]),
    "us.tsv": ("US", ["MessageFrame", "SrvAdvMsg"]),
    "us-rrc.tsv": ("US", ["DL-DCCH-Message"]),
}

failures = []
conversions = 0


def convert(name, source, target, message, *options):
    """The message in the target's encoding, or None with the reason noted."""
    global conversions
    conversions += 1
    arguments = [ORLENTA, "convert", "--type", name, "--from", source, "--to", target, *options]
    result = subprocess.run(arguments, input=message, capture_output=True)
    if result.returncode == 0 and not result.stderr:
        return result.stdout
    failures.append(f"{name} {source} to {target}: status {result.returncode}, {result.stderr.decode()}")
    return None


def messages(file, types):
    """The longest row of each type."""
    longest = {}
    for line in (DATA / file).read_text().splitlines():
        columns = line.split("\t")
        if columns[1] in types and len(columns[2]) > len(longest.get(columns[1], "")):
            longest[columns[1]] = columns[2]
    return longest


for file, (region, types) in MESSAGES.items():
    if region not in REGIONS:
        continue
    found = messages(file, types)
    if sorted(found) != sorted(types):
        failures.append(f"{file}: only {sorted(found)} of {types}")
    for short_name, uper in found.items():
        name = f"{region}.{short_name}"
        forms = {rules: convert(name, "uper", rules, bytes.fromhex(uper)) for rules in RULES}
        if len(set(forms.values())) < len(RULES) - 1:  # BER and DER may agree
            failures.append(f"{name}: some rules give the same bytes")
        for source in RULES:
            for target in RULES:
                if forms[source] is not None and convert(name, source, target, forms[source]) != forms[target]:
                    failures.append(f"{name}: {source} to {target} differs from uper to {target}")
        # What only BER has comes back as well.
        loose = convert(name, "uper", "ber", bytes.fromhex(uper), "--indefinite", "--segment", "2")
        if loose == forms["ber"] or convert(name, "ber", "der", loose) != forms["der"]:
            failures.append(f"{name}: indefinite lengths and segments do not come back")

print("\n".join(failures))
print(f"{conversions} conversions, {len(failures)} failures")
sys.exit(1 if failures or conversions < 64 else 0)
