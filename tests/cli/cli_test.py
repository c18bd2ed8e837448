"""The orlenta command: command line and standard input to standard output, standard error and exit status."""
import os
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
ERRORS = ("orlenta: <stdin>:3: reading after end of stream (bit 32, at yaw)\n"
          "orlenta: <stdin>:5: 'x' is no hexadecimal digit\n"
          "orlenta: <stdin>:6: 1 byte behind the message (bit 48)\n")

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
    (f"convert {SET4} --from uper --to aper --hex --lines -k", CAPTURE, 1, f"{APER}\n{APER}\n", ERRORS),
    (f"check {SET4} --from uper --hex --lines", CAPTURE, 1, "", ERRORS),
    # What is wrong with text.
    (f"convert {SET4} --from jer --to uper", '{"lon":1,\n"lot":2}', 1, "",
     "orlenta: <stdin>:2: sequence/set component 'lot' not found\n"),
    (f"convert {SET4} --from jer --to uper", JSON + "\n\n{}", 1, "",
     "orlenta: <stdin>:3: there is more text behind the message\n"),
    (f"convert {LIMIT} --from xer --to uper", XML + "\n<x/>", 1, "",
     "orlenta: <stdin>:2: there is more text behind the message\n"),
    (f"convert {LIMIT} --from xer --to uper", XML.replace("1", "\n-x"), 1, "",
     "orlenta: <stdin>:2: expecting integer value\n"),
    # Constraints: the checker's own words, and those of the encoder.
    (f"check {SET4} --from jer --lines", f'{JSON}\n{JSON.replace("75", "128")}', 1, "",
     "orlenta: <stdin>:2: integer range is -127 .. 127 (at vert)\n"),
    (f"convert {SET4} --from jer --to jer --compact --check", JSON.replace("75", "128"), 1, "",
     "orlenta: <stdin>: integer range is -127 .. 127 (at vert)\n"),
    (f"convert {SET4} --from jer --to jer --compact", JSON.replace("75", "128"), 0, JSON.replace("75", "128") + "\n",
     ""),
    (f"convert {SET4} --from jer --to uper", JSON.replace("75", "128"), 1, "",
     "...<stdin>: not encodable as uper: "),
    # Files that cannot be read.
    (f"convert {SET4} --from jer --to uper nowhere.json", "", 1, "",
     "orlenta: nowhere.json: cannot be read: No such file or directory\n"),
    (f"convert {SET4} --from jer --to uper .", "", 1, "", "orlenta: .: cannot be read: Is a directory\n"),
    # Usage.
    ("", "", 2, "", "...usage: orlenta convert | check"),
    ("convert", "", 2, "", "...usage: orlenta convert --type TYPE --from RULES"),
    (f"convert {SET4} --from uper --to morse", "", 2, "", "...morse"),
    (f"convert {SET4} --from uper --to jer --lines", "", 2, "", "...--lines needs --hex for uper\n"),
    (f"convert {SET4} --from jer --to uper --indent 2", "", 2, "", "...for text"),
    (f"convert {SET4} --from jer --to gser --lines", "", 2, "", "...gser cannot be written on one line\n"),
    (f"convert {SET4} --from jer --to xer --indent 4", "", 2, "", "...xer is indented by 2\n"),
    (f"convert {SET4} --from uper --to jer --boolean-text", "", 2, "", "...are for xer\n"),
    (f"convert {SET4} --from uper --to der --indefinite", "", 2, "", "...are for ber\n"),
    (f"convert {SET4} --from uper --to ber --segment 1", "", 2, "", "...--segment"),
    (f"random {SET4} --to uper --count 2", "", 2, "", "...--count needs --hex for uper\n"),
    ("convert --type CN.BasicSafteyMessage --from uper --to jer", "", 2, "",
     "...orlenta: no type is named CN.BasicSafteyMessage; the nearest: CN.BasicSafetyMessage"),
    ("roots XX", "", 2, "", "...orlenta: no region is named XX; there are: CN"),
    ("show CN.zzzzzzzzzzzz", "", 2, "", "orlenta: no type is named CN.zzzzzzzzzzzz; see orlenta types\n"),
    # Types.
    ("types CN.Position-LL-24B", "", 0, "CN.Position-LL-24B  SEQUENCE, 2 components  8 bytes\n", ""),
    ("types cn.lat*", "", 0, "CN.Latitude  INTEGER (-900000000..900000001)  4 bytes\n", ""),
    ("types --all CN._local_1", "", 0, "...CN._local_1", ""),
    ("types nothing-like-it", "", 1, "", "orlenta: no type matches nothing-like-it\n"),
    ("show CN.Position3D", "", 0,
     "Position3D ::= SEQUENCE {\n    lat Latitude,\n    lon Longitude,\n    elevation Elevation OPTIONAL\n}\n", ""),
    ("show asn1_type_CN_Position_LL_24B --depth 1", "", 0,
     "Position-LL-24B ::= SEQUENCE {\n    lon OffsetLL-B12,\n    lat OffsetLL-B12\n}\n\n"
     "OffsetLL-B12 ::= INTEGER (-2048..2047)\n", ""),
    ("show CN.DescriptiveName", "", 0, "DescriptiveName ::= IA5String (SIZE (1..63))\n", ""),
    ("show CN.ConnectsToList", "", 0, "ConnectsToList ::= SEQUENCE (SIZE (1..8)) OF Connection\n", ""),
    ("show CN.EventSource", "", 0, "...    unknown (0),\n", ""),
    ("show CN.MessageFrame --recursive", "", 0, "...\nLatitude ::= INTEGER (-900000000..900000001)\n", ""),
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


def test_several_files(folder):
    (folder / "one.hex").write_text(UPER + "\n")
    (folder / "two.hex").write_text(f"{UPER}\nzz\n")
    line = f"convert {SET4} --from uper --to jer --hex --lines one.hex - two.hex"
    result = orlenta(line.split(), UPER, folder)
    expect(line, "standard output", f"{JSON}\n" * 3, result.stdout)
    expect(line, "standard error", "orlenta: two.hex:2: 'z' is no hexadecimal digit\n", result.stderr)


def test_output_files(folder):
    """A file appears whole or not at all, and with --keep-going without the bad messages."""
    out = folder / "out.txt"
    line = f"convert {SET4} --from uper --to jer --hex --lines --output {out}"
    orlenta(line.split(), UPER)
    expect(line, "new file", f"{JSON}\n", out.read_bytes())
    out.chmod(0o640)
    orlenta(line.split(), CAPTURE)
    expect(line, "file after a failure", f"{JSON}\n", out.read_bytes())
    link = folder / "link.txt"
    link.symlink_to(out)
    orlenta([*line.split()[:-1], str(link), "-k"], CAPTURE)
    expect(line, "file after --keep-going", f"{JSON}\n{JSON}\n", out.read_bytes())
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
    expect(line, "good messages", 2, result.stdout.count(b"\n"))
    expect(line, "standard error", "...orlenta: examples/capture.hex:2: reading after end of stream (bit ", result.stderr)
    expect(line, "standard error", "..., at rsmFrame.participants[0].", result.stderr)


test_cases()
for test in (test_several_files, test_output_files):
    with tempfile.TemporaryDirectory() as name:
        test(Path(name))
test_random()
test_example_capture()
print("\n".join(failures))
print(f"{len(CASES)} cases, {len(failures)} failures")
sys.exit(1 if failures else 0)
