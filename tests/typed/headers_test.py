# SPDX-License-Identifier: Apache-2.0
"""The generated headers to compilers: mistakes that must not pass, and the standards that must take them."""
import argparse
import shutil
import subprocess
import sys
from pathlib import Path

STRICT = ["-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Wsign-conversion", "-Wshadow",
          "-Werror", "-fsyntax-only"]


def compilers(*names):
    """Each compiler once, of those that the machine has."""
    found = {}
    for name in names:
        path = shutil.which(name)
        if path:
            found.setdefault(Path(path).resolve(), name)
    return list(found.values())


def complaint(args, compiler, language, standard, text):
    """What the compiler says of a text; empty if it takes it."""
    command = [compiler, "-x", language, f"-std={standard}", *STRICT, *(f"-I{folder}" for folder in args.include)]
    result = subprocess.run([*command, "-"], input=text, capture_output=True, text=True)
    return result.stdout + result.stderr if result.returncode else ""


# ---- mistakes -------------------------------------------------------------------------------------------------

# What a line of code stands in: with the US set, which takes its time, only if it is named.
CPP_BODIES = {
    False: """#include <orlenta/cn.hpp>
using namespace orlenta;
int use(cn::BasicSafetyMessage& bsm, cn::MessageFrame& cn_frame, cn::LaneList& lanes) {
@
return int(bsm.speed) + cn_frame.holds<cn::MessageFrame::mapFrame>() + lanes.empty(); }
""",
    True: """#include <orlenta/us.hpp>
using namespace orlenta;
int use(us::MessageFrame& us_frame) {
@
return us_frame.value.empty(); }
"""}
C_BODIES = {
    False: """#include <orlenta/cn_build.h>
int use(asn1_CN_BasicSafetyMessage* bsm, asn1_CN_LaneList* lanes) {
@
return (int)(bsm->speed + lanes->count); }
""",
    True: """#include <orlenta/us_build.h>
int use(asn1_US_MessageFrame* frame) {
@
return (int)frame->messageId; }
"""}

# Code, and a word of the complaint; none if it is right.
CPP_ROWS = [
    ("bsm.pos.elevation = 435; bsm.transmission = cn::TransmissionState::park;", ""),
    ("lanes.emplace_back().laneID = 1; cn_frame.emplace<cn::MessageFrame::spatFrame>();", ""),
    ("us_frame.set_value<us::MapData>().timeStamp = 1; us_frame.set_value(value<us::SPAT>());", ""),
    ("bsm.pos.has_elevation = 1;", "has_elevation"),
    ("if (bsm.vehicleClass.fuelType == 9) bsm.vehicleClass.fuelType = 9;", ""),
    ("bsm.pos.elevation = std::int64_t{4294967296};", "wider"),
    ("bsm.pos.elevation = 1.5;", "fraction"),
    ("bsm.transmission = cn::LightState::red;", "LightState"),
    ("bsm.transmission = asn1_CN_LightState_red;", "orlenta_CN_LightState"),
    ("bsm.brakes.abs = cn::TractionControlStatus::on;", "TractionControlStatus"),
    ("if (bsm.transmission == cn::LightState::red) return 0;", "operator==|invalid operands"),
    ("switch (bsm.transmission) { case cn::TransmissionState::park: return 0; }", "reverseGears"),
    ("bsm.transmission = 99;", "TransmissionState"),
    ("lanes.push_back(cn::Link());", "push_back"),
    ("lanes.emplace_back() = cn::Link();", "operator=|overloaded"),
    ("us_frame.messageId = 20;", "key<"),
    ("us_frame.set_value<us::Position3D>();", "value_row"),
    ("us_frame.set_value(value<us::Position3D>());", "value_row"),
    ("us_frame.value.emplace<us::MapData>();", "emplace"),
    ("cn_frame.emplace<cn::PositionOffsetLL::position_LL1>();", "emplace"),
    ("cn::MapData& map = cn_frame.get<cn::MessageFrame::bsmFrame>(); map.nodes.clear();", "MapData"),
    ("cn::BasicSafetyMessage copy = bsm; copy.speed = 1;", "delete"),
    ("decode<cn::Speed>(uper, std::string_view());", "decode"),
]
C_ROWS = [
    ("orlenta_CN_BasicSafetyMessage_set_transmission(bsm, asn1_CN_TransmissionState_park);", ""),
    ("if (orlenta_US_MessageFrame_set_value_MapData(frame) == NULL) return 0;", ""),
    ("orlenta_CN_BasicSafetyMessage_set_transmission(bsm, asn1_CN_LightState_red);", "enum-conversion"),
    ("switch ((enum orlenta_CN_TransmissionState)bsm->transmission) { case asn1_CN_TransmissionState_park: return 0; }",
     "reverseGears"),
    ("switch ((enum orlenta_CN_MessageFrame)bsm->speed) { case asn1_CN_MessageFrame_bsmFrame: return 0; }", "mapFrame"),
    ("asn1_CN_Link* link = orlenta_CN_LaneList_add(lanes); return link == NULL;", "incompatible"),
    ("asn1_CN_Link link = {0}; *orlenta_CN_LaneList_add(lanes) = link;", "incompatible|assigning"),
    ("asn1_US_SPAT* spat = orlenta_US_MessageFrame_set_value_MapData(frame); return spat == NULL;", "incompatible"),
    ("orlenta_CN_BasicSafetyMessage_set_angle(bsm);", "few arguments"),
]


def whole(bodies, code):
    return bodies["us_frame" in code or "US_" in code].replace("@", code)


def check_mistakes(args):
    failed = False
    for names, language, standard, bodies, rows in (
            (compilers(args.cxx, "g++", "clang++"), "c++", "c++20", CPP_BODIES, CPP_ROWS),
            (compilers(args.cc, "gcc", "clang"), "c", "c11", C_BODIES, C_ROWS)):
        for compiler in names:
            for code, words in rows:
                said = complaint(args, compiler, language, standard, whole(bodies, code))
                if bool(said) != bool(words) or not any(word in said for word in words.split("|")):
                    print(f"{compiler} takes, or refuses for something else:\n{code}\n{said[:2000]}")
                    failed = True
    sys.exit(failed)


# ---- standards ------------------------------------------------------------------------------------------------

SETS = ["orlenta/cn", "orlenta/eu", "orlenta/us", "tricky"]
C_STANDARDS = ["c99", "c11", "c17"]


def check_standards(args):
    rows = [(compiler, "c", standard, "_build.h") for compiler in compilers(args.cc, "gcc", "clang")
            for standard in C_STANDARDS]
    for compiler in compilers(args.cxx, "g++", "clang++"):
        rows.append((compiler, "c++", "c++11", "_build.h"))
        # libstdc++ 12 in C++23 proper is beyond clang 14.
        rows += [(compiler, "c++", standard, ".hpp") for standard in ("c++20", "c++2b")]
    for compiler, language, standard, suffix in rows:
        for name in SETS:
            said = complaint(args, compiler, language, standard, f"#include <{name}{suffix}>\n")
            if said:
                sys.exit(f"{compiler} -std={standard}, {name}{suffix}:\n{said[:5000]}")


# ---- std::format ----------------------------------------------------------------------------------------------

FORMATTED = ('{"lat":1,"lon":2,"elevation":3}    {"lat":0,"lon":0} [] **north** '
             'reading after end of stream at lat (bit 1) reading\n')
NEWER = ["g++-13", "g++-14", "g++-15", "clang++-17", "clang++-18", "clang++-19", "clang++-20"]


def check_format(args):
    ran = False
    source = Path(__file__).with_name("format_program.cpp")
    program = Path.cwd() / "format_program"
    for compiler in compilers(args.cxx, "g++", "clang++", *NEWER):
        for library in ([], ["-stdlib=libc++"]):
            for standard in ("c++20", "c++23", "c++26"):
                command = [compiler, f"-std={standard}", *library]
                probe = subprocess.run([*command, "-x", "c++", "-fsyntax-only", "-"], input="#include <format>\n"
                                       "int main() { return int(std::format(\"\").size()); }\n",
                                       capture_output=True, text=True)
                if probe.returncode:
                    continue
                flags = [flag for flag in STRICT if flag != "-fsyntax-only"]
                subprocess.run([*command, *flags, *(f"-I{folder}" for folder in args.include), source, "-o", program,
                                args.library, "-lm"], check=True)
                said = subprocess.run([program], capture_output=True, text=True).stdout
                if said != FORMATTED:
                    sys.exit(f"{' '.join(command)}:\n{said}")
                ran = True
    if not ran:
        sys.exit(77)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("check")
    parser.add_argument("--include", action="append")
    parser.add_argument("--cc", required=True)
    parser.add_argument("--cxx", required=True)
    parser.add_argument("--library", required=True)
    args = parser.parse_args()
    globals()[f"check_{args.check}"](args)


main()
