# SPDX-License-Identifier: Apache-2.0
"""Units in the sources of the message sets: they agree with named numbers, and give quantities that can be."""
import re
import sys
from fractions import Fraction
from pathlib import Path

# Names of numbers that stand for something else than their size, and what units call them.
SPECIAL = {"unavailable": "unavailable", "outOfRange": "outOfRange", "unknown": "unknown", "speedMaximum": "orMore",
           "moreThan1Point5Second": "orMore", "equalOrSmallerThanMinus60Deg": "orLess",
           "equalOrGreaterThan67Deg": "orMore"}

# Types, and the least and greatest quantity that the standards give them, besides special numbers without one.
RANGES = [
    ("Latitude|lat|DegreesLat", "deg", -90, 90),
    ("Longitude|LongitudeWEE", "deg", "-180|-179.9999999", 180),
    ("LatitudeDMS", "arcsec", -90 * 3600, 90 * 3600),
    ("LongitudeDMS", "arcsec", -180 * 3600, 180 * 3600),
    ("Elevation(WEE)?", "m", "-409.5", "6143.9"),
    ("AltitudeValue", "m", -1000, 8000),
    ("Heading|heading|Angle", "deg", 0, "359.9875|360"),
    ("HeadingValue|(WGS84|Cartesian)AngleValue", "deg", 0, 360),
    ("CoarseHeading|AddGrpB-Angle", "deg", 0, "358.5"),
    ("SemiMajorAxisOrientation", "deg", 0, "359.9945078786"),
    ("SteeringWheelAngle", "deg", -189, 189),
    ("Speed|Velocity", "m/s", 0, "163.8"),
    ("SpeedValue", "m/s", 0, "163.82"),
    ("SpeedAdvice", "m/s", 0, "49.9"),
    ("Acceleration", "m/s^2", -20, 20),
    ("(Longitudinal|Lateral|Vertical)AccelerationValue", "m/s^2", -16, 16),
    ("YawRate", "deg/s", "-327.67", "327.67"),
    ("Confidence|(Class|Object|FreeSpace)Confidence", "%", "0|1", 100),
    ("ClassificationConfidence|EssMobileFriction|ThrottlePosition", "%", 0, 100),
    ("Semi(Major|Minor)AxisAccuracy", "m", 0, "12.7"),
    ("VehicleHeight(CPM)?", "m", "0|0.05", "6.35"),
    ("TrailerMass", "kg", 500, 127500),
    ("AmbientAirPressure", "Pa", 58000, 108800),
    ("AmbientAirTemperature", "degC", -40, 150),
    ("TireTemp", "degC", -273, "1734.96875"),
    ("Scale-B12", "%", "-2.4", "202.35"),
    ("MinuteOfTheYear", "min", 0, 366 * 24 * 60 - 1),
    ("DMonth|month", "month", 1, 12),
    ("DDay|day", "day", 1, 31),
    ("hours", "h", 0, 23),
    ("DMinute|mins", "min", 0, 59),
    ("DOffset|DTimeOffset", "min", -14 * 60, 14 * 60),
]

LINE = re.compile(r"\s*(?P<name>[\w-]+).*?INTEGER (\{(?P<names>[^}]*)\} )?\((?P<low>-?\d+)\.\.(?P<high>-?\d+)(, \.\.\.)?\)"
                  r".*?--@ unit (?P<scale>\S+) (?P<symbol>[^\s;]+)( (?P<sign>[+-]) (?P<offset>\S+))?(?P<specials>;.*)?\n")
failures, used, count = [], set(), 0


def meaning_of(number, specials):
    for first, last, meaning in specials:
        if int(first) <= number <= int(last or first):
            return meaning
    return None


def end_of(number, step, specials):
    """The first number from an end of the range that stands for a quantity."""
    while meaning_of(number, specials) not in (None, "orMore", "orLess"):
        number += step
    return number


def one_of(value, quantities):
    return value in [Fraction(one) for one in str(quantities).split("|")]


for path in sorted(Path(sys.argv[1]).glob("*/*.asn1")):
    for number, text in enumerate(path.open(), 1):
        if "--@ unit" not in text:
            continue
        where, line = f"{path.name}:{number}", LINE.fullmatch(text)
        if not line:
            sys.exit(f"{where}: no type whose unit can be tested")
        count += 1
        specials = re.findall(r"(-?\d+)(?:\.\.(-?\d+))? ([\w-]+)", line["specials"] or "")
        for name, named in re.findall(r"([\w-]+) \((-?\d+)\)", line["names"] or ""):
            if SPECIAL.get(name) != meaning_of(int(named), specials):
                failures.append(f"{where}: {name} ({named}) is {meaning_of(int(named), specials)}")
        offset = Fraction((line["sign"] or "") + (line["offset"] or "0"))
        least, most = (Fraction(line["scale"]) * value + offset
                       for value in (end_of(int(line["low"]), 1, specials), end_of(int(line["high"]), -1, specials)))
        for row in RANGES:
            if re.fullmatch(row[0], line["name"]):
                used.add(row)
                if line["symbol"] != row[1] or not one_of(least, row[2]) or not one_of(most, row[3]):
                    failures.append(f"{where}: {line['name']} is {float(least)} to {float(most)} {line['symbol']}")

failures += [f"no type is {row[0]}" for row in RANGES if row not in used]
print("\n".join(failures) or f"{count} units")
sys.exit(1 if failures else 0)
