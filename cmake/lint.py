#!/usr/bin/env python3
"""lint.py BUILD… [FILE…]: clang-tidy over every source of the build trees, or the named ones alone, that is not on record
as clean.

To check them all takes longer than everything else that ./test does, so what is clean stays on record beside this script,
in lint-clean.txt, and is committed with the sources. A source is checked again when it, a header of the project that it
includes, its compile command, the rules or clang-tidy itself is not what it was. Builds compile a dozen sources as one;
here each is read alone, so each includes what it uses. Lines that a merge leaves twice do no harm: a record is of no use to
any other state of its source.
"""
import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

from compile_commands import compile_commands

ROOT = pathlib.Path(__file__).resolve().parent.parent
TIDY = "clang-tidy-14"
RECORD = pathlib.Path(__file__).with_name("lint-clean.txt")
CHECKED = tuple(str(ROOT / folder) + os.sep for folder in ("src", "tests", "bench"))

INCLUDE = re.compile(r'^\s*#\s*include\s+["<]([^">]+)[">]', re.MULTILINE)


@functools.lru_cache(maxsize=None)
def content_hash(path):
    """What is made while building names the clone's place."""
    return hashlib.sha256(pathlib.Path(path).read_bytes().replace(bytes(ROOT), b"")).hexdigest()


@functools.lru_cache(maxsize=None)
def included_by(path, folders):
    """The project's files that one file includes, also what a condition would leave out."""
    names = INCLUDE.findall(pathlib.Path(path).read_text(encoding="utf-8"))
    candidates = ([os.path.join(folder, name) for folder in (os.path.dirname(path), *folders)] for name in names)
    found = (next(filter(os.path.isfile, paths), None) for paths in candidates)
    return {os.path.normpath(path) for path in found if path}


def files_of(entry):
    """The project's files that a source is made of, itself included."""
    words = [word.removeprefix("-I") for word in shlex.split(entry["command"])]
    folders = tuple(word for word in words if word.startswith(str(ROOT)) and os.path.isdir(word))
    files, unread = set(), {entry["file"]}
    while unread:
        path = unread.pop()
        files.add(path)
        unread |= included_by(path, folders) - files
    return files


def fingerprint(entry, rules):
    """Stands for everything that a finding depends on, so not for how the compiler optimises, what it tells a debugger and
    where it writes; paths count without the clone's place."""
    words = shlex.split(re.sub(r" -o \S+", "", entry["command"]))
    command = [word for word in words[words.index(compiler_of(entry)):] if not re.match("-[Og]", word)]
    parts = [rules, " ".join(command)]
    parts += [path + content_hash(path) for path in sorted(files_of(entry))]
    return hashlib.sha256("\n".join(parts).replace(str(ROOT), "").encode()).hexdigest()[:32]


@functools.lru_cache(maxsize=None)
def cross_arguments(compiler):
    """What clang must be told to read sources as this compiler does: nothing for the machine's own one, its target and
    its standard library for one that compiles for Windows."""
    target = re.fullmatch(r"(\w+-w64-mingw32)-g\+\+.*", os.path.basename(compiler))
    if not target:
        return []
    searched = subprocess.run([compiler, "-E", "-v", "-x", "c++", os.devnull], check=True, capture_output=True,
                              text=True).stderr
    library = [line.strip() for line in searched.splitlines() if line.startswith(" /") and "/c++" in line]
    return [f"--extra-arg-before=--target={target[1]}", "--extra-arg=-nostdinc++",
            *(f"--extra-arg=-isystem{folder}" for folder in library)]


def compiler_of(entry):
    words = shlex.split(entry["command"])
    return words[1] if os.path.basename(words[0]) == "ccache" else words[0]


def commands_of_lint(build):
    """Writes the compile commands of the build tree as clang takes them, and gives the folder. It can't read the
    precompiled headers of g++, and a source shall include by itself what it uses."""
    folder = pathlib.Path(build, "lint")
    folder.mkdir(exist_ok=True)
    commands = json.dumps(list(compile_commands(build)), indent=1)
    (folder / "compile_commands.json").write_text(re.sub(r" -Winvalid-pch -include \S+/cmake_pch\.hxx", "", commands))
    return folder


def check(commands, entry):
    command = [TIDY, "--quiet", "-p", commands, *cross_arguments(compiler_of(entry)), entry["file"]]
    result = subprocess.run(command, capture_output=True, text=True)
    return result.returncode == 0, result.stdout


def rules():
    """What is checked, and by which version; what else that tells is the machine's."""
    version = subprocess.run([TIDY, "--version"], check=True, capture_output=True, text=True).stdout
    number = re.search(r"version (\S+)", version)[1]
    return number + "".join((ROOT / folder / ".clang-tidy").read_text() for folder in (".", "tests", "tests/faults"))


def sources(builds, wanted):
    """Each source of the builds, or of the wanted ones, once: its line of the record, the commands' folder, the command."""
    stated, seen = rules(), set()
    for build in builds:
        commands = commands_of_lint(build)
        for entry in json.loads((commands / "compile_commands.json").read_text()):
            file = entry["file"]
            if not file.startswith(CHECKED) or not file.endswith(".cpp") or file in seen or wanted and file not in wanted:
                continue
            seen.add(file)
            yield f"{os.path.relpath(file, ROOT)} {fingerprint(entry, stated)}", commands, entry


def main():
    paths = [os.path.abspath(path) for path in sys.argv[1:]]
    wanted = {path for path in paths if not os.path.isdir(path)}
    jobs = {line: job for line, *job in sources([path for path in paths if os.path.isdir(path)], wanted)}
    record = set(RECORD.read_text().splitlines())
    unknown = {line: job for line, job in jobs.items() if line not in record}
    print(f"{len(jobs)} sources, {len(unknown)} to check", flush=True)
    files = {line.split()[0] for line in jobs}
    clean = {line for line in record if line in jobs or wanted and line.split()[0] not in files}
    good = True
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for line, (is_clean, text) in zip(unknown, pool.map(lambda job: check(*job), unknown.values())):
            if is_clean:
                clean.add(line)
                RECORD.write_text("".join(f"{one}\n" for one in sorted(clean)))
            else:
                good = False
                print(f"{line.split()[0]}:\n{text}", flush=True)
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
