#!/usr/bin/env python3
"""check_rooms.py BUILD: the house's rules that a compiler does not know. Fails, with a line for each breach, where

- a source includes one of a room that lies above its own, or that its room may not see (docs/architecture.md);
- a file, of C++ or Python, has more than 450 lines, or a function of C++ more than 60, without a comment "long: <reason>"
  beside its beginning;
- a source is not compiled by the plain build tree, BUILD, though it is for Linux.
"""
import pathlib
import re
import sys

from compile_commands import compile_commands

ROOT = pathlib.Path(__file__).resolve().parent.parent
SOURCES = ROOT / "src"
FOLDERS = ("bench", "cmake", "demo", "inkscape", "src", "tests")
COMMENT = {".h": "//", ".cpp": "//", ".py": "#"}
LONGEST_FILE = 450
LONGEST_FUNCTION = 60

# What is for Windows, or for the sanitizers.
BUILT_ELSEWHERE = ("src/com/", "src/platform/windows/", "src/druckwerk/text/sanitized_fonts.cpp", "tests/com/", "bench/com",
                   "tests/platform/windows_platform_test.cpp")

# What each room of the house sees, beside itself. Whoever is not named is not seen.
VALUES = {"values"}
PLATFORM = VALUES | {"platform"}
MODULE = PLATFORM | {"module"}
DATA = MODULE | {"dataaccess"}
CONTROL = VALUES | {"control"}
ENGINE = DATA | CONTROL | {"engine"}
REPORTS = ENGINE | {"reports"}
COMPONENT = REPORTS | {"manager"}
HOUSE = {
    "values": VALUES,
    "platform": PLATFORM,
    "module": MODULE,
    "dataaccess": DATA,
    "control": CONTROL,
    "engine": ENGINE,
    "reports": REPORTS,
    "manager": COMPONENT,
    "kvtzug": DATA,
    "catalog": DATA,
    "druckwerk": PLATFORM | CONTROL,
    "com": COMPONENT,
    "cli": COMPONENT | {"kvtzug", "catalog", "druckwerk"},
}

# The rooms of the embedded engine, from the lowest. Each sees those before it; the façade, druckwerk.h, sees all and is
# seen from outside alone.
DRUCKWERK = ["common", "svg", "expression", "pdf", "text", "layout", "page", "structure", "exits", "druckwerk"]

INCLUDE = re.compile(r'^\s*#include "([^"]+)"', re.MULTILINE)


def room_of(path):
    return path.split("/")[0]


def engine_room_of(path):
    parts = path.split("/")
    return parts[1] if len(parts) > 2 else "druckwerk"


def breaches_of_arrows(path, text):
    room = room_of(path)
    for included in INCLUDE.findall(text):
        if "/" not in included:
            continue  # made while building
        target = room_of(included)
        if target not in HOUSE:
            yield f"{path}: includes {included}, which is in no room"
        elif target not in HOUSE[room] | {room}:
            yield f"{path}: {room} may not see {target} ({included})"
        elif room == target == "druckwerk":
            own, other = (DRUCKWERK.index(engine_room_of(name)) for name in (path, included))
            if other > own or (included == "druckwerk/druckwerk.h" and path != "druckwerk/druckwerk.cpp"):
                yield f"{path}: {engine_room_of(path)} lies below {engine_room_of(included)} ({included})"


def is_excused(lines, first, comment):
    """Whether the comment above `first`, or that line itself, gives a reason for its length."""
    while first > 0 and lines[first - 1].lstrip().startswith(comment):
        first -= 1
    for line in lines[first:]:
        if f"{comment} long: " in line:
            return True
        if not line.lstrip().startswith(comment):
            return False
    return False


CONTROL_FLOW = re.compile(r"\s*(\} )?(if|else|for|while|do|switch|try|catch|return|class|struct|enum|union|namespace)\b")


def functions(lines):
    """(first, last) line of each function of a namespace or a class, as clang-format lays it out."""
    for last, line in enumerate(lines):
        if line not in ("}", "    }"):
            continue
        indent = line[:-1]
        first = last - 1
        while first >= 0 and (not lines[first].strip() or lines[first].startswith(indent + " ")):
            first -= 1
        while first > 0 and lines[first].startswith(indent + "    "):
            first -= 1
        if first >= 0 and not CONTROL_FLOW.match(lines[first]):
            yield first, last


def breaches_of_length(path, text, comment):
    lines = text.splitlines()
    if len(lines) > LONGEST_FILE and not is_excused(lines, 0, comment):
        yield f"{path}: {len(lines)} lines, more than {LONGEST_FILE}"
    for first, last in functions(lines):
        length = last - first + 1
        if length > LONGEST_FUNCTION and not is_excused(lines, first, comment):
            yield f"{path}:{first + 1}: a function of {length} lines, more than {LONGEST_FUNCTION}"


def breaches_of_building(build):
    compiled = {entry["file"] for entry in compile_commands(build)}
    for folder in FOLDERS:
        for source in sorted((ROOT / folder).rglob("*.cpp")):
            path = source.relative_to(ROOT).as_posix()
            if str(source) not in compiled and not path.startswith(BUILT_ELSEWHERE):
                yield f"{path}: no build compiles it"


def main():
    breaches = []
    for file in (file for folder in FOLDERS for file in sorted((ROOT / folder).rglob("*"))):
        if file.suffix not in COMMENT:
            continue
        text = file.read_text(encoding="utf-8")
        if file.is_relative_to(SOURCES):
            breaches += breaches_of_arrows(file.relative_to(SOURCES).as_posix(), text)
        breaches += breaches_of_length(file.relative_to(ROOT).as_posix(), text, COMMENT[file.suffix])
    breaches += breaches_of_building(sys.argv[1])
    print("\n".join(breaches) if breaches else
          "every arrow points down, every file and function is short enough, every source is built")
    sys.exit(bool(breaches))


if __name__ == "__main__":
    main()
