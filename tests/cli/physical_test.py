# SPDX-License-Identifier: Apache-2.0
"""orlenta convert --physical: raw numbers of safety messages, and what people read of them."""
import json
import subprocess
import sys
from pathlib import Path

ORLENTA = sys.argv[1]
DATA = Path(sys.argv[2])
REGIONS = sys.argv[3].split(",")

# Type, the record of the message to write to, and for its components raw numbers and what they mean.
MESSAGES = [
    ("cn.tsv", "CN.BasicSafetyMessage", "", [
        ("pos.lat", 399087153, 39.9087153, "deg"), ("pos.lat", 900000001, None, "unavailable"),
        ("pos.lon", -1163975126, -116.3975126, "deg"), ("speed", 694, 13.88, "m/s"),
        ("speed", 8191, None, "unavailable"), ("heading", 7184, 89.8, "deg"),
        ("accelSet.lon", -42, -0.42, "m/s^2"), ("accelSet.lat", 2001, None, "unavailable"),
        ("accelSet.lat", 2000, 20, "m/s^2 orMore"), ("accelSet.vert", 10, 1.96133, "m/s^2"),
        ("accelSet.yaw", 120, 1.2, "deg/s"), ("angle", -3, -4.5, "deg"), ("size.width", 182, 1.82, "m"),
    ]),
    ("us.tsv", "US.MessageFrame", "value.coreData", [
        ("lat", 425501234, 42.5501234, "deg"), ("long", 1800000001, None, "unavailable"),
        ("elev", -4096, None, "unknown"), ("elev", -4095, -409.5, "m orLess"), ("speed", 917, 18.34, "m/s"),
        ("speed", 8191, None, "unavailable"), ("heading", 28799, 359.9875, "deg"),
        ("heading", 28800, None, "unavailable"), ("accelSet.long", 150, 1.5, "m/s^2"),
        ("accelSet.long", 2001, None, "unavailable"), ("accelSet.vert", -127, None, "unavailable"),
        ("accuracy.semiMajor", 254, 12.7, "m orMore"), ("accuracy.orientation", 1, 0.0054932479, "deg"),
    ]),
    ("eu.tsv", "EU.CAM", "cam.camParameters", [
        ("basicContainer.referencePosition.latitude", -554369190, -55.436919, "deg"),
        ("basicContainer.referencePosition.latitude", 900000001, None, "unavailable"),
        ("basicContainer.referencePosition.altitude.altitudeValue", 800001, None, "unavailable"),
        ("highFrequencyContainer.basicVehicleContainerHighFrequency.heading.headingValue", 900, 90, "deg"),
        ("highFrequencyContainer.basicVehicleContainerHighFrequency.heading.headingValue", 3601, None, "unavailable"),
        ("highFrequencyContainer.basicVehicleContainerHighFrequency.speed.speedValue", 1389, 13.89, "m/s"),
        ("highFrequencyContainer.basicVehicleContainerHighFrequency.speed.speedValue", 16383, None, "unavailable"),
        ("highFrequencyContainer.basicVehicleContainerHighFrequency.longitudinalAcceleration"
         ".longitudinalAccelerationValue", -12, -1.2, "m/s^2"),
        ("highFrequencyContainer.basicVehicleContainerHighFrequency.longitudinalAcceleration"
         ".longitudinalAccelerationValue", 161, None, "unavailable"),
    ]),
]

failures = []


def convert(name, source, target, text, *options):
    result = subprocess.run([ORLENTA, "convert", "--type", name, "--from", source, "--to", target, *options],
                            input=text, capture_output=True)
    return result.returncode, result.stdout


def follow(value, path):
    for step in path:
        value = value.get(step) if isinstance(value, dict) else None
    return value


def first_with(file, name, paths):
    """The first row that has all components."""
    for line in (DATA / file).read_text().splitlines():
        columns = line.split("\t")
        if f"{columns[0]}.{columns[1]}" == name:
            value = json.loads(convert(name, "uper", "jer", bytes.fromhex(columns[2]))[1])
            if all(follow(value, path) is not None for path in paths):
                return value
    sys.exit(f"{file} has no {name} with all components")


def expected(raw, physical, text):
    if physical is None:
        return {"raw": raw, "meaning": text}
    unit, _, meaning = text.partition(" ")
    return {"raw": raw, "physical": physical, "unit": unit, **({"meaning": meaning} if meaning else {})}


for file, name, record, rows in MESSAGES:
    if name.split(".")[0] not in REGIONS:
        continue
    where = record.split(".") if record else []
    message = first_with(file, name, [where + row[0].split(".") for row in rows])
    for component, raw, physical, text in rows:
        path = where + component.split(".")
        follow(message, path[:-1])[path[-1]] = raw
        status, uper = convert(name, "jer", "uper", json.dumps(message).encode())
        status, shown = convert(name, "uper", "jer", uper, "--physical") if status == 0 else (status, b"")
        found = follow(json.loads(shown), path) if status == 0 else None
        if found != expected(raw, physical, text):
            failures.append(f"{name} {component} = {raw}: {found}")
    if convert(name, "jer", "uper", shown)[0] != 1:
        failures.append(f"{name}: what is for reading was taken as input")



def raw_of(value):
    """What is for reading, as it was."""
    if isinstance(value, dict):
        return value["raw"] if "raw" in value else {name: raw_of(part) for name, part in value.items()}
    return [raw_of(part) for part in value] if isinstance(value, list) else value


# Lists, open types and numbers without a unit around them.
for name in ("CN.MessageFrame", "EU.IVIM", "EU.CPM", "EU.DENM", "US.MessageFrame"):
    if name.split(".")[0] in REGIONS:
        values = subprocess.run([ORLENTA, "random", "--type", name, "--to", "jer", "--valid", "--lines", "--count", "40"],
                                capture_output=True, check=True).stdout
        shown = convert(name, "jer", "jer", values, "--lines", "--physical")[1]
        if shown.count(b'"raw":') < 40 or [raw_of(json.loads(line)) for line in shown.splitlines()] != [
                json.loads(line) for line in values.splitlines()]:
            failures.append(f"{name}: more than numbers with a unit differs")

print("\n".join(failures))
sys.exit(1 if failures else 0)
