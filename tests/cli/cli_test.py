# SPDX-License-Identifier: Apache-2.0
"""The orlenta command: command line and standard input to standard output, standard error and exit status."""
import os
import select
import subprocess
import sys
import tempfile
from pathlib import Path

ORLENTA = os.path.abspath(sys.argv[1])
SOURCE = Path(sys.argv[2])

SET4 = "--type CN.AccelerationSet4Way"
JSON = '{"lon":-1216,"lat":2001,"vert":75,"yaw":-32767}'
LIMIT = "--type CN.RegulatorySpeedLimit"
XML = "<RegulatorySpeedLimit><type><unknown/></type><speed>1</speed></RegulatorySpeedLimit>"
UPER = "310fa1ca0000"
APER = "03100fa1ca0000"
PRETTY = '{\n  "lon": -1216,\n  "lat": 2001,\n  "vert": 75,\n  "yaw": -32767\n}\n'
CAPTURE = f"{UPER}\n\n{UPER[:8]}\n{UPER[:4]} {UPER[4:]}\r\nxy\n{UPER}00\n"
NO_DIGIT = "'x' is no hexadecimal digit, and the text no base64"
ERRORS = ("orlenta: <stdin>:3: reading after end of stream (bit 32, at yaw)\n"
          f"orlenta: <stdin>:5:1: {NO_DIGIT}\n"
          "orlenta: <stdin>:6: 1 byte behind the message (bit 48)\n")
SUMMARY = f'orlenta: 5 messages, 3 bad: 1 "{NO_DIGIT}", 1 "1 byte behind the message", 1 "reading'
HIGH = JSON.replace("75", "128")
TOO_HIGH = "integer range is -127 .. 127 (at vert)\n"
SET4_LINES = """\
     0    12  001100010000      lon   -1216 = -12.16 m/s^2    Acceleration
    12    12  111110100001      lat   2001 = unavailable      Acceleration
    24     8  11001010          vert  75 = 14.709975 m/s^2    VerticalAcceleration
    32    16  0000000000000000  yaw   -32767 = -327.67 deg/s  YawRate
"""
FRAMES = bytes.fromhex("0006" + UPER) * 2

SENSORS = f"--schema {SOURCE}/examples/Sensors.asn1"
MESSAGES = ["MessageFrame", "CAM", "DENM", "IVIM"]

# Command line, standard input, exit status, standard output, standard error. An output that begins with "..." must
# contain the rest; others must be the same.
CASES = [
    # Conversion of one message.
    (f"convert {SET4} --from uper --to jer --hex", UPER, 0, PRETTY, ""),
    (f"convert {SET4} --from uper --to jer --hex --indent 1", UPER, 0, PRETTY.replace("  ", " "), ""),
    (f"convert {SET4} --from uper --to jer --hex --compact", "31 0f A1\nca 0000", 0, JSON + "\n", ""),
    (f"convert {SET4} --from jer --to aper --hex", PRETTY, 0, APER + "\n", ""),
    (f"convert {SET4} --from uper --to jer --compact", bytes.fromhex(UPER), 0, JSON + "\n", ""),
    (f"convert {SET4} --from jer --to uper", JSON, 0, bytes.fromhex(UPER), ""),
    (f"convert {SET4} --from uper --to jer --compact --hex --allow-trailing", UPER + "00", 0, JSON + "\n", ""),
    (f"convert {SET4} --from jer --to xer --compact", JSON, 0,
     "<AccelerationSet4Way><lon>-1216</lon><lat>2001</lat><vert>75</vert><yaw>-32767</yaw></AccelerationSet4Way>\n", ""),
    (f"convert {LIMIT} --from xer --to xer --compact --no-empty-tags", "<!-- --> " + XML, 0,
     XML.replace("<unknown/>", "<unknown></unknown>") + "\n", ""),
    (f"convert {LIMIT} --from xer --to xer --enumerated-text", XML + "\n", 0,
     "<RegulatorySpeedLimit>\n  <type>unknown</type>\n  <speed>1</speed>\n</RegulatorySpeedLimit>\n", ""),
    ("convert --type CN.DescriptiveName --from jer --to ber --hex --indefinite --segment 2", '"abc"', 0,
     "36800402616204016300 00\n".replace(" ", ""), ""),
    (f"convert {SET4} --from jer --to gser", JSON, 0, "{\n  lon -1216,\n  lat 2001,\n  vert 75,\n  yaw -32767\n}\n", ""),
    # One message a line.
    (f"convert {SET4} --from uper --to jer --hex --lines", f"{UPER}\n\n{UPER}", 0, f"{JSON}\n{JSON}\n", ""),
    (f"convert {SET4} --from jer --to aper --hex --lines", f"{JSON}\r\n{JSON}\n", 0, f"{APER}\n{APER}\n", ""),
    (f"convert {SET4} --from uper --to jer --hex --lines", CAPTURE, 1, JSON + "\n", ERRORS.split("\n")[0] + "\n"),
    # A bad message leaves its line, and the last line tells how it went.
    (f"convert {SET4} --from uper --to aper --hex --lines -k", CAPTURE, 1, f"{APER}\n\n{APER}\n\n\n",
     "..." + ERRORS + SUMMARY),
    (f"convert {SET4} --from uper --to jer --hex --lines -k", CAPTURE, 1, f"{JSON}\nnull\n{JSON}\nnull\nnull\n",
     "...messages a second\n"),
    (f"check {SET4} --from uper --hex --lines", CAPTURE, 1, "", "..." + ERRORS + SUMMARY),
    # Bytes as text, and as records.
    (f"convert {SET4} --from uper --to aper --hex --lines", f"# none\n0x31 0x0f:A1 ca0000\n{'MQ+hygAA'}\n", 0,
     f"{APER}\n{APER}\n", ""),
    (f"convert {SET4} --from jer --to uper --base64", JSON, 0, "MQ+hygAA\n", ""),
    (f"convert {SET4} --from uper --to jer --compact --base64", "MQ-hyg\n AA", 0, JSON + "\n", ""),
    (f"convert {SET4} --from uper --to jer --compact --base64", "MQ+hygA!", 1, "",
     "orlenta: <stdin>:1:8: '!' is no base64 digit\n"),
    (f"convert {SET4} --from uper --to jer --hex", "310", 1, "", "orlenta: <stdin>:1:3: odd number of hexadecimal digits\n"),
    (f"convert {SET4} --from uper --to jer --framing length16", FRAMES, 0, f"{JSON}\n{JSON}\n", ""),
    (f"convert {SET4} --from jer --to uper --framing length16", f"{JSON}\n{JSON}\n", 0, FRAMES, ""),
    (f"convert {SET4} --from uper --to oer --framing length32 -k", bytes.fromhex(f"00000006{UPER}00000001310000000631"),
     1, bytes.fromhex("00000007fb4007d14b800100000000"), "...record 2: reading"),
    (f"convert {SET4} --from uper --to jer --framing length32", b"\x7f" * 8, 1, "",
     "orlenta: <stdin>, record 1: a record of 2139062143 octets; none is longer than 16777216\n"),
    # Types found.
    ("convert --type auto --from jer --to uper --hex --lines", '{"lon":1}\n', 1, "",
     "orlenta: <stdin>:1: no type fits\n"),
    ("convert --type cn.auto --from uper --to jer --hex --envelope --compact", "00", 1, "",
     "...no type fits; it begins with 00\n"),
    ("check --type xx.auto --from uper", "", 2, "", "...no types of XX can be found by themselves\n"),
    # What is wrong with text.
    (f"convert {SET4} --from jer --to uper", "\ufeff" + JSON, 1, "",
     "orlenta: <stdin>:1: the text begins with a byte order mark (EF BB BF), which is no part of it\n"),
    (f"convert {SET4} --from jer --to uper", '{"lon":1,\n"lot":2}', 1, "",
     "orlenta: <stdin>:2: sequence/set component 'lot' not found\n"),
    (f"convert {SET4} --from jer --to uper", JSON + "\n\n{}", 1, "",
     "orlenta: <stdin>:3: there is more text behind the message\n"),
    (f"convert {LIMIT} --from xer --to uper", XML + "\n<x/>", 1, "",
     "orlenta: <stdin>:2: there is more text behind the message\n"),
    (f"convert {LIMIT} --from xer --to uper", XML.replace("1", "\n-x"), 1, "",
     "orlenta: <stdin>:2: expecting integer value\n"),
    # Constraints: the checker's own words, and those of the encoder.
    (f"check {SET4} --from jer --lines", f"{JSON}\n{HIGH}", 1, "", "...orlenta: <stdin>:2: " + TOO_HIGH),
    (f"convert {SET4} --from jer --to jer --compact --check", HIGH, 1, "", "orlenta: <stdin>: " + TOO_HIGH),
    (f"convert {SET4} --from jer --to jer --compact", HIGH, 0, HIGH + "\n", "orlenta: <stdin>: warning: " + TOO_HIGH),
    (f"convert {SET4} --from jer --to jer --compact --no-check", HIGH, 0, HIGH + "\n", ""),
    (f"convert {SET4} --from jer --to uper", HIGH, 1, "", "orlenta: <stdin>: " + TOO_HIGH),
    (f"convert {SET4} --from jer --to uper --no-check", HIGH, 1, "", "...<stdin>: not encodable as uper: "),
    ("convert --type CN.DescriptiveName --from jer --to uper --hex", '"\u00e9"', 1, "", "...is not allowed"),
    # Bit by bit: the whole message, one that is cut short, one with more behind it.
    (f"explain {SET4} --from uper --hex", UPER, 0, SET4_LINES, ""),
    (f"explain {SET4} --from uper --hex", UPER[:10], 1,
     "...    24     8  11001010      vert  75 = 14.709975 m/s^2  VerticalAcceleration\n"
     "    32     8  00000000                                  not decoded\n",
     "orlenta: <stdin>: reading after end of stream (bit 32, at yaw)\n"),
    (f"explain {SET4} --from uper --json", bytes.fromhex(UPER + "ff"), 1, '...{"offset":32,"width":16,"bits":"0000000000000000"'
     ',"kind":"value","text":"value","path":"yaw","type":"YawRate","value":-32767,"physical":-327.67,"unit":"deg/s"}\n{"offset":48,"width":8,"bits":"11111111"'
     ',"kind":"trailing","text":"behind the message","path":"","type":"AccelerationSet4Way"}\n',
     "orlenta: <stdin>: 1 byte behind the message (bit 48)\n"),
    (f"explain {SENSORS} --type Sensors.Reading --from uper --hex", "0000601680", 0,
     "...    19     1  0                 quantity                 extension bit 0\n", ""),
    (f"explain {SET4} --from jer", JSON, 2, "", "...orlenta: jer is text; explain takes messages of bits\n"),
    ("explain --type CN.AcelerationSet4Way --from uper", "", 2, "", "...the nearest: CN.AccelerationSet4Way"),
    # Files that cannot be read.
    (f"convert {SET4} --from jer --to uper nowhere.json", "", 1, "",
     "orlenta: nowhere.json: cannot be read: No such file or directory\n"),
    (f"convert {SET4} --from jer --to uper .", "", 1, "", "orlenta: .: cannot be read: Is a directory\n"),
    # Usage.
    ("", "", 2, "", "...usage: orlenta convert | check"),
    ("convert", "", 2, "", "...usage: orlenta convert --type TYPE --from RULES"),
    (f"convert {SET4} --from uper --to morse", "", 2, "",
     "...no rules are named morse; there are uper, aper, oer, ber, der, jer, xer, gser\n"),
    (f"convert {SET4} --from upr --to jer", "", 2, "", "...--from: no rules are named upr; the nearest: uper\n"),
    (f"convert {SET4} --from per --to jer", "", 2, "", "...no rules are named per; the nearest: uper, aper\n"),
    (f"convert {SET4} --from uper --to JSON", "", 2, "", "...no rules are named JSON; the nearest: jer\n"),
    (f"convert {SET4} --from uper --to jer --lines", "", 2, "", "...--lines needs --hex or --base64 for uper\n"),
    (f"convert {SET4} --from jer --to uper --indent 2", "", 2, "", "...for text"),
    (f"convert {SET4} --from jer --to gser --lines", "", 2, "", "...gser cannot be written on one line\n"),
    (f"convert {SET4} --from jer --to xer --indent 4", "", 2, "", "...xer is indented by 2\n"),
    (f"convert {SET4} --from jer --to uper --envelope", "", 2, "", "...--envelope is for jer\n"),
    (f"convert {SET4} --from jer --to xer --physical", "", 2, "", "...--physical is for jer\n"),
    ("show EU.HoursMinutes", "", 0, "...hours INTEGER (0..23) --@ unit 1 h --,\n", ""),
    ("help morse", "", 2, "", "...there is no help on morse; see orlenta help\n"),
    ("help", "", 0, "...Usage: orlenta [OPTIONS] [SUBCOMMAND]\n", ""),
    ("help rules", "", 0, "...  gser  GSER, RFC 3641\n", ""),
    ("help check", "", 0, "...orlenta check [OPTIONS]", ""),
    ("completion bash", "", 0, "...complete -o default -F _orlenta orlenta\n", ""),
    ("completion tcsh", "", 2, "", "...tcsh"),
    (f"convert {SET4} --from uper --to jer --boolean-text", "", 2, "", "...are for xer\n"),
    (f"convert {SET4} --from uper --to der --indefinite", "", 2, "", "...are for ber\n"),
    (f"convert {SET4} --from uper --to ber --segment 1", "", 2, "", "...--segment"),
    (f"random {SET4} --to uper --count 2", "", 2, "", "...--count needs --hex or --base64 for uper\n"),
    ("random --type EU.REG-EXT-ID-AND-TYPE --to jer", "", 1, "", "...no value can be made\n"),
    ("convert --type CN.BasicSafteyMessage --from uper --to jer", "", 2, "",
     "...orlenta: no type is named CN.BasicSafteyMessage; the nearest: CN.BasicSafetyMessage"),
    ("roots XX", "", 2, "", "...orlenta: no region is named XX; there are: CN"),
    ("show CN.zzzzzzzzzzzz", "", 2, "", "orlenta: no type is named CN.zzzzzzzzzzzz; see orlenta types\n"),
    # Modules of the user's own.
    (f"convert {SENSORS} --type Sensors.Reading --from uper --to jer --compact --hex {SOURCE}/examples/reading.hex", "", 0,
     '{"station":17,"quantity":"temperature","value":-35,"note":"ice"}\n', ""),
    (f"convert {SENSORS} --region MY --type my.reading --from jer --to uper --hex",
     '{"station":17,"quantity":"humidity","value":-1001}', 1, "", "...integer range is -1000 .. 1000 (at value)\n"),
    (f"random {SENSORS} --type Report --valid --to jer --lines --count 3", "", 0, '...[{"station":', ""),
    (f"roots {SENSORS}", "", 0, "Sensors.Report\n", ""),
    (f"show {SENSORS} CN.MessageFrame", "", 2, "", "...no type is named CN.MessageFrame"),
    (f"types --schema {SOURCE}/README.md", "", 1, "", f"...orlenta: {SOURCE}/README.md:1:3: "),
    ("types --schema nowhere.asn1", "", 1, "", "orlenta: cannot read 'nowhere.asn1'\n"),
    # Types.
    ("show cn.position3d", "", 0, "...Position3D ::= SEQUENCE {\n", ""),
    ("show xn.Position3D", "", 2, "", "...the nearest: CN.Position3D"),
    ("types CN.Position-LL-24B", "", 0, "CN.Position-LL-24B  SEQUENCE, 2 components  8 bytes\n", ""),
    ("types cn.lat*", "", 0, "CN.Latitude  INTEGER (-900000000..900000001)  4 bytes\n", ""),
    ("types nothing-like-it", "", 1, "", "orlenta: no type matches nothing-like-it\n"),
    ("show CN.Position3D", "", 0,
     "-- Absolute position in WGS 84.\nPosition3D ::= SEQUENCE {\n    lat Latitude,\n    lon Longitude,\n    elevation Elevation OPTIONAL\n}\n", ""),
    ("show asn1_type_CN_Position_LL_24B --depth 1", "", 0,
     "Position-LL-24B ::= SEQUENCE {\n    lon OffsetLL-B12,\n    lat OffsetLL-B12\n}\n\n"
     "-- Difference in latitude or longitude to the reference point, positive to the north or east.\n"
     "OffsetLL-B12 ::= INTEGER (-2048..2047) --@ unit 0.0000001 deg\n", ""),
    ("show cn.*4way", "", 0, "...AccelerationSet4Way ::= SEQUENCE {\n", ""),
    ("show CN.Elevation*", "", 0, "...; 61439 orMore\n\n-- Largest error to be expected in an elevation, at 95 % confidence.\n"
     "ElevationConfidence ::= ENUMERATED {\n", ""),
    ("show CN.zz*", "", 2, "", "orlenta: no type matches CN.zz*\n"),
    ("show CN.DescriptiveName", "", 0, "...DescriptiveName ::= IA5String (SIZE (1..63))\n", ""),
    ("show CN.ConnectsToList", "", 0, "...ConnectsToList ::= SEQUENCE (SIZE (1..8)) OF Connection\n", ""),
    ("show CN.EventSource", "", 0, "...    unknown (0),\n", ""),
    ("show CN.MessageFrame --recursive", "", 0, "...\nLatitude ::= INTEGER (-900000000..900000001) --@ unit 0.0000001 deg; 900000001 unavailable\n", ""),
    ("roots CN", "", 0, "...CN.MessageFrame\n", ""),
]


def as_bytes(text):
    return text if isinstance(text, bytes) else text.encode()


def orlenta(arguments, stdin=b"", folder=None):
    return subprocess.run([ORLENTA, *arguments], input=as_bytes(stdin), capture_output=True, cwd=folder)


def shown(outcome):
    text = repr(outcome)
    return text if len(text) < 500 else text[:500] + "..."


failures = []


def expect(name, what, wanted, found):
    wanted_bytes = as_bytes(wanted) if not isinstance(wanted, int) else wanted
    if isinstance(wanted, str) and wanted.startswith("..."):
        good = wanted_bytes[3:] in found
    else:
        good = wanted_bytes == found
    if not good:
        failures.append(f"orlenta {name}\n  {what}: {shown(found)}\n  wanted: {shown(wanted_bytes)}")


def test_cases():
    for line, stdin, status, out, err in CASES:
        result = orlenta(line.split(), stdin)
        expect(line, "standard output", out, result.stdout)
        expect(line, "standard error", err, result.stderr)
        expect(line, "exit status", status, result.returncode)


def test_explain():
    """Messages taken apart, held against what tests/cli/explain_*.txt have."""
    for name, row in (("bsm", "cn.tsv:13"), ("cam", "eu.tsv:50")):
        file, number = row.split(":")
        region, kind, uper = (SOURCE / "tests/data" / file).read_text().splitlines()[int(number) - 1].split("\t")[:3]
        line = f"explain --type {region}.{kind} --from uper --hex"
        result = orlenta(line.split(), uper)
        expect(line, "standard output", (SOURCE / f"tests/cli/explain_{name}.txt").read_bytes(), result.stdout)
        expect(line, "exit status", 0, result.returncode)


def test_several_files(folder):
    (folder / "one.hex").write_text(UPER + "\n")
    (folder / "two.hex").write_text(f"{UPER}\nzz\n")
    line = f"convert {SET4} --from uper --to jer --hex --lines one.hex - two.hex"
    result = orlenta(line.split(), UPER, folder)
    expect(line, "standard output", f"{JSON}\n" * 3, result.stdout)
    expect(line, "standard error", "...orlenta: two.hex:2:1: 'z' is no hexadecimal digit", result.stderr)


def test_output_files(folder):
    """A file appears whole or not at all, and with --keep-going without the bad messages."""
    out = folder / "out.txt"
    line = f"convert {SET4} --from uper --to jer --hex --lines --output {out}"
    orlenta(line.split(), UPER)
    expect(line, "new file", f"{JSON}\n", out.read_bytes())
    out.chmod(0o640)
    result = orlenta(line.split(), f"{UPER}\n{UPER}\nxy\n")
    expect(line, "file after a failure", f"{JSON}\n{JSON}\n", out.read_bytes())
    expect(line, "what it says then", f"...stopped at <stdin>:3:1: {out} has the 2 messages before it\n", result.stderr)
    result = orlenta(line.split(), "xy\n")
    expect(line, "file without a good message", f"{JSON}\n{JSON}\n", out.read_bytes())
    expect(line, "what it says then", f"...{out} is not written\n", result.stderr)
    link = folder / "link.txt"
    link.symlink_to(out)
    orlenta([*line.split()[:-1], str(link), "-k"], CAPTURE)
    expect(line, "file after --keep-going", f"{JSON}\nnull\n{JSON}\nnull\nnull\n", out.read_bytes())
    expect(line, "mode of the file", 0o640, out.stat().st_mode & 0o777)
    expect(line, "what is left behind", str(["link.txt", "out.txt"]),
           str(sorted(each.name for each in folder.iterdir())).encode())
    result = orlenta(f"convert {SET4} --from uper --to jer --hex --output {folder}/none/out.txt".split(), UPER)
    expect(line, "exit status without a folder", 1, result.returncode)
    if os.path.exists("/dev/full"):
        result = orlenta(f"convert {SET4} --from uper --to jer --hex --output /dev/full".split(), UPER)
        expect(line, "exit status on a full device", 1, result.returncode)


def test_random():
    """The same seed, the same values; each survives all rules that can stand on lines."""
    line = "random --type CN.MessageFrame --seed 7 --count 20 --to jer --lines"
    first = orlenta(line.split()).stdout
    expect(line, "second run", first, orlenta(line.split()).stdout)
    expect(line, "lines", 20, first.count(b"\n"))
    later = orlenta("random --type CN.MessageFrame --seed 8 --to jer --lines".split()).stdout
    expect(line, "second value, by its own seed", first.split(b"\n")[1] + b"\n", later)
    for rules in ("uper", "aper", "oer", "ber", "der", "xer"):
        there = orlenta(f"convert --type CN.MessageFrame --from jer --to {rules} --hex --lines".split(), first)
        back = orlenta(f"convert --type CN.MessageFrame --from {rules} --to jer --hex --lines".split(), there.stdout)
        expect(line, f"through {rules}", first, back.stdout)


def test_example_capture():
    """The failing capture of the demonstration: error with file, line, bit and component path."""
    line = "convert --type CN.MessageFrame --from uper --to jer --hex --lines --keep-going examples/capture.hex"
    result = orlenta(line.split(), folder=SOURCE)
    expect(line, "exit status", 1, result.returncode)
    expect(line, "good messages", 2, result.stdout.count(b'\n{"') + 1)
    expect(line, "lines", 3, result.stdout.count(b"\n"))
    expect(line, "standard error", "...orlenta: examples/capture.hex:2: reading after end of stream (bit ", result.stderr)
    expect(line, "standard error", "..., at rsmFrame.participants[0].", result.stderr)


def test_live():
    """What comes through a pipe is answered at once."""
    line = f"convert {SET4} --from uper --to jer --hex --lines"
    with subprocess.Popen([ORLENTA, *line.split()], stdin=subprocess.PIPE, stdout=subprocess.PIPE) as process:
        for _ in range(3):
            process.stdin.write(f"{UPER}\n".encode())
            process.stdin.flush()
            if not select.select([process.stdout], [], [], 20)[0]:
                failures.append(f"orlenta {line}\n  no answer in 20 s, the input being open")
                process.kill()
                break
            expect(line, "answer", f"{JSON}\n", process.stdout.readline())
        process.stdin.close()


def test_mixed_log():
    """Real messages of several types in one file, the same by every rule."""
    rows = [row.split("\t") for row in (SOURCE / "bench/messages.tsv").read_text().splitlines() if row[0] != "#"]
    known = orlenta("types *.MessageFrame".split()).stdout + orlenta("types EU.*".split()).stdout
    rows = [row for row in rows if row[1].encode() + b" " in known and row[1].split(".")[1] in MESSAGES]
    same = [orlenta(f"convert --type {row[1]} --from jer --to jer --envelope --compact".split(), row[3]) for row in rows]
    wanted = b"".join(result.stdout for result in same)
    texts = "".join(f"{row[3]}\n" for row in rows)
    for rules in ("uper", "oer", "der"):
        coded = orlenta(f"convert --type auto --from jer --to {rules} --hex --lines".split(), texts).stdout
        line = f"convert --type auto --from {rules} --to jer --hex --lines --envelope"
        expect(line, "standard output", wanted, orlenta(line.split(), coded).stdout)
    if len(rows) < 3:
        failures.append("bench/messages.tsv has too few messages whose types can be found")


def test_jobs(folder):
    """Order and bytes do not depend on how many threads there are, and a bad message stops them all."""
    good = (UPER + "\n") * 40000
    (folder / "log.hex").write_text(good + "00\n" + good)
    line = f"convert {SET4} --from uper --to jer --hex --lines --errors {folder}/errors.json log.hex"
    one, two = (orlenta([*line.split(), "--jobs", jobs], folder=folder) for jobs in "13")
    expect(line, "lines up to the bad one", 40000, one.stdout.count(b"\n"))
    expect(line, "output of three threads", one.stdout, two.stdout)
    expect(line, "errors of three threads", one.stderr, two.stderr)
    expect(line, "file of errors", '{"file":"log.hex","line":40001,"bit":0,"path":"lon","message":"reading after end of '
           'stream","input":"00"}\n', (folder / "errors.json").read_bytes())


test_cases()
test_explain()
test_live()
test_mixed_log()
for test in (test_several_files, test_output_files, test_jobs):
    with tempfile.TemporaryDirectory() as name:
        test(Path(name))
test_random()
test_example_capture()
print("\n".join(failures))
print(f"{len(CASES)} cases, {len(failures)} failures")
sys.exit(1 if failures else 0)
