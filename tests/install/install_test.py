# SPDX-License-Identifier: Apache-2.0
"""Checks of the built library from outside: headers, symbols, addresses, and the installed packages."""
import argparse
import os
import re
import shutil
import subprocess
import sys
import tempfile
import textwrap
from pathlib import Path

HERE = Path(__file__).parent


def run(*command, **options):
    """Output of a command that must succeed."""
    result = subprocess.run([str(part) for part in command], capture_output=True, text=True, **options)
    if result.returncode != 0:
        sys.exit(f"failed: {' '.join(map(str, command))}\n{result.stdout}{result.stderr}")
    return result.stdout


def expect(condition, text):
    if not condition:
        sys.exit(text)


def include_dirs(args):
    return [args.source / "include", args.build / "include"]


def public_headers(args, pattern="*.h"):
    return sorted(header for folder in include_dirs(args) for header in folder.glob(f"orlenta/{pattern}"))


def compilers(args, *names):
    """The compilers of the build, and others by name if the machine has them."""
    found = {Path(shutil.which(name)).resolve(): name for name in names if shutil.which(name)}
    return list(found.values())


def check_headers(args):
    """Each header compiles alone, as C and as C++, without a warning."""
    includes = [f"-I{folder}" for folder in include_dirs(args)]
    strict = ["-Wall", "-Wextra", "-pedantic", "-Werror", "-fsyntax-only"]
    languages = [(compilers(args, args.cc, "gcc", "clang"), ["-x", "c", "-std=c11"]),
                 (compilers(args, args.cxx, "g++", "clang++"), ["-x", "c++", "-std=c++20"])]
    headers = public_headers(args)
    expect(len(headers) > 10, f"only {len(headers)} headers")
    for header in headers:
        for names, options in languages:
            for compiler in names:
                # Included, not compiled itself: "#pragma once" in the main file would be a warning.
                run(compiler, *options, *strict, *includes, "-", input=f"#include <orlenta/{header.name}>\n")
    for header in public_headers(args, "cpp/*.hpp"):
        run(args.cxx, "-x", "c++", "-std=c++20", *strict, *includes, "-",
            input=f"#include <orlenta/cpp/{header.name}>\n")


def declared_names(args, macro="ORLENTA_API"):
    """All functions and tables that the public headers declare."""
    names = set()
    for header in public_headers(args):
        text = re.sub(r"/\*.*?\*/|^#.*?(?<!\\)$", " ", header.read_text(), flags=re.S | re.M)
        for declaration in re.findall(rf"\b{macro}\b([^;{{]*)[;{{]", text):
            data = re.search(r"\bextern\b[^(]*?(\w+)\s*(?:\[.*)?$", declaration, re.S)
            function = re.search(r"(\w+)\s*\(", declaration)
            names.add((data or function).group(1))
    return names


def library(args):
    return args.build / "liborlenta.so"


def check_exports(args):
    """The shared library defines what the headers declare and nothing else, under one version, needs libc and libm
    alone, and has no code that runs at load time."""
    lines = run("nm", "-D", "--defined-only", "--with-symbol-versions", library(args)).splitlines()
    names = [line.split()[-1].split("@@") for line in lines if line.split()[-2] != "A"]
    expect({version for _, *version in map(tuple, names) for version in version} == {"ORLENTA_1"}, "versions")
    exported = {name for name, *_ in names}
    declared = declared_names(args)
    expect(exported == declared, f"not declared: {sorted(exported - declared)[:20]}\n"
                                 f"not exported: {sorted(declared - exported)[:20]}")
    weak = {line.split()[-1].split("@@")[0] for line in lines if line.split()[-2] in "WVwv"}
    expect(weak == {"asn1_malloc", "asn1_realloc", "asn1_free"}, f"weak: {sorted(weak)}")

    dynamic = run("readelf", "-dW", library(args))
    needed = set(re.findall(r"NEEDED.*\[(.*)\]", dynamic))
    expect(needed <= {"libc.so.6", "libm.so.6"}, f"needs {needed}")
    expect("[liborlenta.so.1]" in dynamic, "no SONAME liborlenta.so.1")
    for tag in ("(INIT)", "(INIT_ARRAY)", "(FINI)", "(FINI_ARRAY)", "(TEXTREL)"):
        expect(tag not in dynamic, f"{tag} in the dynamic section")
    written = [line for line in run("nm", library(args)).splitlines() if line.split()[-2] in "bBC"]
    expect(not written, f"writable globals: {written[:20]}")


def check_schema_exports(args):
    """The schema compiler shows nothing of the C++ inside."""
    compiler = args.build / "compiler" / "liborlenta-schema.so"
    exported = {line.split()[-1] for line in run("nm", "-D", "--defined-only", compiler).splitlines()}
    declared = declared_names(args, "ORLENTA_SCHEMA_API")
    expect(exported == declared and declared, f"exported: {sorted(exported ^ declared)[:20]}")


def check_addresses(args):
    """The address of a table is the same to a program and to other tables, however the program was compiled, and the
    program keeps what it needs of libc."""
    with tempfile.TemporaryDirectory() as folder:
        program = Path(folder) / "addresses"
        for compiler in compilers(args, args.cc, "gcc", "clang"):
            for mode in (["-fPIE", "-pie"], ["-fno-pie", "-no-pie"], ["-fPIC"]):
                run(compiler, "-O2", *mode, *(f"-I{d}" for d in include_dirs(args)), HERE / "addresses.c",
                    "-o", program, library(args), f"-Wl,-rpath,{args.build}")
                expect(run(program) == "same\n", f"{compiler} {mode}: no output")


def check_allocator(args):
    """A program's own asn1_malloc and the others serve the whole library, shared and static."""
    with tempfile.TemporaryDirectory() as folder:
        program = Path(folder) / "allocator"
        for how in ([library(args), f"-Wl,-rpath,{args.build}"], [args.build / "liborlenta.a", "-lm"]):
            run(args.cc, *(f"-I{d}" for d in include_dirs(args)), HERE / "allocator.c", "-o", program, *how)
            run(program)


def check_regions(args):
    """A static program that names a message set gets its types by name, and no other set."""
    with tempfile.TemporaryDirectory() as folder:
        program = Path(folder) / "program"
        run(args.cc, *(f"-I{d}" for d in include_dirs(args)), "-x", "c", "-", "-o", program,
            "-x", "none", args.build / "liborlenta.a", "-lm",
            input="#include <orlenta/catalogue.h>\n#include <orlenta/cn.h>\n"
                  "int main(void) { orlenta_type_entry entry;\n"
                  "return orlenta_catalogue_find(orlenta_catalogue_CN(), \"CN.Latitude\", &entry, 0) ||"
                  " entry.type != asn1_type_CN_Latitude; }")
        run(program)
        regions = set(re.findall(r"\basn1_type_([A-Z]+)", run("nm", program)))
        expect(regions == {"CN"}, f"regions: {regions}")


def check_static_size(args):
    """The typed layer adds a tenth at most to a static program for one message."""
    with tempfile.TemporaryDirectory() as folder:
        sizes, printed = [], set()
        for compiler, source in (([args.cc, "-std=c11"], "static.c"), ([args.cxx, "-std=c++20"], "static.cpp")):
            program = Path(folder) / source
            run(*compiler, "-Os", "-s", "-ffunction-sections", "-fdata-sections", "-Wl,--gc-sections",
                *(f"-I{d}" for d in include_dirs(args)), HERE / source, "-o", program,
                args.build / "liborlenta.a", "-lm")
            printed.add(run(program))
            sizes.append(program.stat().st_size)
        expect(len(printed) == 1, f"they print {printed}")
        expect(sizes[1] <= sizes[0] * 1.1, f"{sizes[0]} bytes in C, {sizes[1]} through the typed layer")


EXAMPLE_OUTPUT = "10 bytes: lat 399087000, lon 1163975000, elevation 435\n"
# What the programs that build messages print first, and the most lines that main() may take.
MESSAGES = {"bsm": "48 bytes", "cam": "42 bytes", "map": "60 bytes"}
MAIN_LINES = {"c": 35, "cpp": 25}


def check_messages(args, build):
    """The programs for one message in C and C++ encode the same and are short."""
    for name, output in MESSAGES.items():
        for language, most in MAIN_LINES.items():
            printed = run(build / f"{name}_{language}")
            expect(printed.startswith(output), f"{name}_{language} printed {printed}")
            source = (args.source / "examples" / f"{name}.{language}").read_text()
            lines = re.search(r"^int main\(.*?\{\n(.*?)^\}", source, re.S | re.M).group(1).splitlines()
            expect(len([line for line in lines if line.strip()]) <= most, f"{name}.{language} is long")


def check_packages(args):
    """An installed tree, moved elsewhere, serves programs in C and C++ through CMake and through pkg-config, and has
    the manual."""
    with tempfile.TemporaryDirectory() as folder:
        folder = Path(folder)
        run("cmake", "--install", args.build, "--prefix", folder / "first")
        prefix = (folder / "first").rename(folder / "moved")

        run("cmake", "-G", "Ninja", "-S", args.source / "examples", "-B", folder / "examples",
            f"-DCMAKE_PREFIX_PATH={prefix}", f"-DCMAKE_C_COMPILER={args.cc}", f"-DCMAKE_CXX_COMPILER={args.cxx}")
        run("cmake", "--build", folder / "examples")
        for program in sorted((folder / "examples").glob("position_*")):
            expect(run(program) == EXAMPLE_OUTPUT, f"{program.name} printed something else")
        check_messages(args, folder / "examples")

        (folder / "c_only").mkdir()
        (folder / "c_only" / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.16)\nproject(c_only LANGUAGES C)\n"
            "find_package(orlenta QUIET COMPONENTS CN MARS)\nif(orlenta_FOUND)\n  message(FATAL_ERROR MARS)\nendif()\n"
            "find_package(orlenta REQUIRED COMPONENTS CN schema compiler)\n"
            f"add_executable(position {args.source}/examples/position.c)\n"
            "target_link_libraries(position PRIVATE orlenta::orlenta_static)\n")
        run("cmake", "-G", "Ninja", "-S", folder / "c_only", "-B", folder / "c_only" / "build",
            f"-DCMAKE_PREFIX_PATH={prefix}", f"-DCMAKE_C_COMPILER={args.cc}")
        run("cmake", "--build", folder / "c_only" / "build")
        expect(run(folder / "c_only" / "build" / "position") == EXAMPLE_OUTPUT, "C without C++")

        found = next(prefix.glob("lib*/**/pkgconfig/orlenta.pc"))
        environment = dict(os.environ, PKG_CONFIG_PATH=str(found.parent))
        flags = run("pkg-config", "--cflags", "--libs", "orlenta", env=environment).split()
        libdir = run("pkg-config", "--variable=libdir", "orlenta", env=environment).strip()
        for compiler, source in ((args.cc, "position.c"), (args.cxx, "position.cpp")):
            standard = ["-std=c++20"] if source.endswith("pp") else []
            run(compiler, *standard, args.source / "examples" / source, "-o", folder / "program", *flags)
            output = run(folder / "program", env=dict(os.environ, LD_LIBRARY_PATH=libdir))
            expect(output == EXAMPLE_OUTPUT, f"{source} by pkg-config printed something else")

        version = run(prefix / "bin" / "orlenta", "--version").split()[-1]
        expect(run("pkg-config", "--modversion", "orlenta", env=environment).strip() == version, "versions differ")
        expect("Apache-2.0" in found.read_text(), "no licence in the .pc file")
        share = prefix / "share"
        for file in ("man/man1/orlenta.1", "man/man1/orlentac.1", "man/man3/liborlenta.3", "doc/orlenta/linking.md"):
            expect((share / file).exists(), f"{file} is not installed")


def check_reproducible(args):
    """What is installed names no folder of the build, and a schema's library and program, built in two folders with no
    compiler cache between, are the same to the bit."""
    with tempfile.TemporaryDirectory() as folder:
        folder = Path(folder)
        run("cmake", "--install", args.build, "--prefix", folder / "prefix")
        places = [str(args.build).encode(), str(args.source).encode()]
        for file in (file for file in (folder / "prefix").rglob("*") if file.is_file()):
            content = file.read_bytes()
            expect(not any(place in content for place in places), f"{file.name} names the folder of the build")

        made = []
        for place in ("a", "another/place"):
            source = folder / place / "source"
            source.mkdir(parents=True)
            (source / "Sensors.asn1").write_text(OWN_MODULE)
            (source / "app.c").write_text(SCHEMA_PROGRAM)
            (source / "CMakeLists.txt").write_text(SCHEMA_PROJECT)
            build = folder / place / "build"
            run("cmake", "-G", "Ninja", "-S", source, "-B", build, f"-DCMAKE_PREFIX_PATH={folder / 'prefix'}",
                f"-DCMAKE_C_COMPILER={args.cc}", f"-DCMAKE_CXX_COMPILER={args.cxx}", "-DCMAKE_BUILD_TYPE=Release",
                "-DCMAKE_C_COMPILER_LAUNCHER=", "-DCMAKE_CXX_COMPILER_LAUNCHER=")
            run("cmake", "--build", build)
            made.append([(build / name).read_bytes() for name in ("libsensors.a", "app")])
        expect(made[0] == made[1], "two builds differ")


OWN_MODULE = """
Sensors DEFINITIONS AUTOMATIC TAGS ::= BEGIN
Reading ::= SEQUENCE { id INTEGER (0..255), level Level, note IA5String (SIZE (0..20)) OPTIONAL, ... }
Level ::= ENUMERATED { low, high, ... }
END
"""
OWN_TYPED_PROGRAM = """
#include <my.hpp>
int main() {
    orlenta::value<orlenta::my::Reading> there;
    there->id = 200;
    there->level = orlenta::my::Level::high;
    there->note = "warm";
    auto bytes = orlenta::encode(orlenta::uper, there);
    return bytes && *orlenta::decode<orlenta::my::Reading>(orlenta::uper, *bytes) == there ? 0 : 1;
}
"""
OWN_PROGRAM = """
#include <my.h>
#include <my_build.h>
#include <my_codecs.h>
#include <my_local.h>
#include <other.h>
#include <other_codecs.h>
#include <orlenta/catalogue.h>
#include <orlenta/per.h>
#include <orlenta/value.h>
#include <stdio.h>
int main(void) {
    asn1_MY_Reading there = {.id = 200, .level = asn1_MY_Level_high};
    uint8_t* bytes;
    void* value;
    int64_t size = asn1_uper_encode(&bytes, asn1_type_MY_Reading, &there);
    if (size < 0 || asn1_uper_decode(&value, asn1_type_MY_Reading, bytes, (size_t)size, NULL) != size) return 1;
    const asn1_MY_Reading* back = value;
    if (asn1_type_MY_Reading[4].type != asn1_type_MY__local_1) return 1; /* what id is */
    printf("%d bytes: id %d, level %d\\n", (int)size, (int)back->id, (int)back->level);
    if (orlenta_codec_find(asn1_type_MY_Reading) != &orlenta_codec_MY_Reading) return 2;
    if (orlenta_codec_find(asn1_type_OTHER_Unit) != &orlenta_codec_OTHER_Unit) return 3;
    if (orlenta_codec_find(asn1_type_MY_Level) != NULL) return 4; /* no root */
    orlenta_type_entry entry;
    if (orlenta_catalogue_find(orlenta_catalogue_MY(), "Sensors.Level", &entry, NULL) != 0) return 5;
    if (entry.type != asn1_type_MY_Level || orlenta_catalogue_count(orlenta_catalogue_OTHER()) != 1) return 6;
    asn1_free_value(asn1_type_MY_Reading, value);
    asn1_free(bytes);
    return 0;
}
"""


SCHEMA_PROJECT = """
cmake_minimum_required(VERSION 3.25)
project(reproducible LANGUAGES C CXX)
find_package(orlenta REQUIRED)
orlenta_add_schema(sensors REGION MY FILES Sensors.asn1)
add_executable(app app.c)
target_link_libraries(app PRIVATE sensors orlenta::orlenta_static)
"""
SCHEMA_PROGRAM = """
#include <my.h>
#include <orlenta/value.h>
int main(void) { return asn1_get_size(asn1_type_MY_Reading) < 0; }
"""


def check_own_schema(args):
    """A module of the user's own, compiled by the installed orlentac, as the README shows."""
    readme = (args.source / "README.md").read_text()
    recipe = re.search(r"```cmake\n(.*?)```", readme, re.S).group(1)
    with tempfile.TemporaryDirectory() as folder:
        folder = Path(folder)
        prefix = folder / "prefix"
        run("cmake", "--install", args.build, "--prefix", prefix)
        (folder / "Sensors.asn1").write_text(OWN_MODULE)
        (folder / "Common.asn1").write_text("Common DEFINITIONS AUTOMATIC TAGS ::= BEGIN Unit ::= NULL END\n")
        (folder / "app.c").write_text(OWN_PROGRAM)
        (folder / "typed.cpp").write_text(OWN_TYPED_PROGRAM)
        more = ("orlenta_add_schema(more REGION OTHER FILES Common.asn1)\n"
                "target_link_libraries(app PRIVATE more)\n"
                "add_executable(static_app app.c)\n"
                "target_link_libraries(static_app PRIVATE my_messages more orlenta::orlenta_static)\n"
                "target_link_options(static_app PRIVATE -Wl,--gc-sections)\n"
                "add_executable(typed typed.cpp)\ntarget_compile_features(typed PRIVATE cxx_std_20)\n"
                "target_link_libraries(typed PRIVATE my_messages orlenta::orlenta)\n")
        (folder / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.25)\nproject(own LANGUAGES C CXX)\nadd_executable(app app.c)\n" +
            recipe + more)
        for generator in ("Ninja", "Unix Makefiles"):
            build = folder / generator
            run("cmake", "-G", generator, "-S", folder, "-B", build, f"-DCMAKE_PREFIX_PATH={prefix}",
                f"-DCMAKE_C_COMPILER={args.cc}", f"-DCMAKE_CXX_COMPILER={args.cxx}")
            run("cmake", "--build", build)
            # Extension bit, presence bit, 8 bits of id, extension bit and 1 bit of level: 12 bits.
            for app in ("app", "static_app"):
                expect(run(build / app) == "2 bytes: id 200, level 1\n", f"another value came back to {app}")
            run(build / "typed")
            for pattern in ("my_tables_1.cpp", "my.h"):  # what is deleted is made again
                made = next(build.glob(f"**/{pattern}"))
                made.unlink()
                run("cmake", "--build", build)
                expect(made.exists(), f"{generator}: {made} is gone")


def check_readme(args):
    """The programs that README and manual show stand in examples/ as shown; links lead somewhere."""
    examples = {}
    for kind in ("c", "cpp"):
        sources = (args.source / "examples").glob(f"*.{kind}")
        examples[kind] = "\n".join(source.read_text() for source in sources)
    for page in ("README.md", "docs/start.md", "docs/typed.md"):
        blocks = re.findall(r"```(c|cpp)\n(.*?)```", (args.source / page).read_text(), re.S)
        expect({kind for kind, _ in blocks} == {"c", "cpp"}, f"{page} shows no example")
        for kind, code in blocks:
            expect(code in examples[kind] or textwrap.indent(code, "    ") in examples[kind],
                   f"{page}: in no example:\n{code}")
    check_links(args)


def check_links(args):
    """Files that pages refer to are there, and the manual's first page names all its pages."""
    manual = sorted((args.source / "docs").glob("*.md"))
    pages = [*manual, *args.source.glob("*.md"), args.source / "web/README.md", args.source / "bindings/js/README.md"]
    links = [(page, target) for page in pages for target in re.findall(r"\]\(([^)#:]+)[)#]", page.read_text())]
    expect(len(links) > 50, f"only {len(links)} links")
    for page, target in links:
        expect((page.parent / target).exists(), f"{page}: no {target}")
    listed = {target for page, target in links if page == args.source / "docs/README.md"}
    expect({page.name for page in manual} - {"README.md"} <= listed, f"docs/README.md names only {sorted(listed)}")


def sessions(page):
    """(command, lines of its output) of a page's console blocks."""
    for block in re.findall(r"```console\n(.*?)```", page.read_text(), re.S):
        for command, output in re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", block, re.M):
            yield command, [" ".join(line.split()) for line in output.splitlines()]


def matches(shown, lines):
    """Whether the lines are those shown, in which "..." stands for any number of them."""
    if not shown:
        return not lines
    if shown[0] == "...":
        return any(matches(shown[1:], lines[i:]) for i in range(len(lines) + 1))
    return bool(lines) and shown[0] == lines[0] and matches(shown[1:], lines[1:])


def check_manual(args):
    """The sessions that the installed manual shows go as shown, in its own folder."""
    with tempfile.TemporaryDirectory() as folder:
        prefix = Path(folder)
        run("cmake", "--install", args.build, "--prefix", prefix)
        libdir = next(prefix.glob("lib*/**/pkgconfig")).parent
        environment = dict(os.environ, PATH=f"{prefix}/bin:{os.environ['PATH']}", LD_LIBRARY_PATH=str(libdir),
                           PKG_CONFIG_PATH=f"{libdir}/pkgconfig")
        commands = 0
        for page in sorted((prefix / "share/doc/orlenta").glob("*.md")):
            for command, shown in sessions(page):
                result = subprocess.run(["bash", "-c", command], cwd=page.parent, env=environment, text=True,
                                        stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
                lines = [" ".join(line.split()) for line in result.stdout.splitlines()]
                expect(matches(shown, lines), f"{page.name}: $ {command}\n{result.stdout}")
                commands += 1
        expect(commands >= 9, f"only {commands} commands")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("check")
    parser.add_argument("--source", type=Path, required=True)
    parser.add_argument("--build", type=Path, required=True)
    parser.add_argument("--cc", required=True)
    parser.add_argument("--cxx", required=True)
    args = parser.parse_args()
    globals()[f"check_{args.check}"](args)


main()
