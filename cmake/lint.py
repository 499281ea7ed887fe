#!/usr/bin/env python3
"""lint.py BUILD… [FILE…]: clang-tidy over every source of the build trees, or the named ones alone, with a memory of what
was clean.

A source is checked again when it, a header that it includes, its compile command, the rules or clang-tidy itself has
changed. The memory outlives a clone; it lies beside the compiler's cache.
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

ROOT = pathlib.Path(__file__).resolve().parent.parent
TIDY = "clang-tidy-14"
CHECKED = tuple(str(ROOT / folder) + os.sep for folder in ("src", "tests", "bench"))


def cache_folder():
    base = os.environ.get("XDG_CACHE_HOME") or os.path.join(os.environ.get("HOME", "/tmp"), ".cache")
    return pathlib.Path(base) / "kvtdruck" / "lint"


@functools.lru_cache(maxsize=None)
def content_hash(path):
    return hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest()


def dependencies(build):
    """The files that each object was made of, by the object's path, as Ninja has recorded them."""
    lines = subprocess.run(["ninja", "-C", build, "-t", "deps"], check=True, capture_output=True, text=True).stdout
    files, current = {}, None
    for line in lines.splitlines():
        if line.startswith("    "):
            path = os.path.normpath(os.path.join(build, line.strip()))
            if "/cmake_pch.hxx" not in path:
                current.append(path)
        elif ":" in line:
            current = files.setdefault(line.split(":", 1)[0], [])
    return files


def fingerprint(entry, files, rules):
    """Stands for everything that a finding depends on; paths within the project count without the clone's place."""
    parts = [rules, entry["command"].replace(str(ROOT), "")]
    parts += [path.replace(str(ROOT), "") + content_hash(path) for path in sorted(files)]
    return hashlib.sha256("\n".join(parts).encode()).hexdigest()


def object_of(entry):
    """The object file that the compile command writes."""
    words = shlex.split(entry["command"])
    return words[words.index("-o") + 1]


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
    commands = pathlib.Path(build, "compile_commands.json").read_text()
    (folder / "compile_commands.json").write_text(re.sub(r" -Winvalid-pch -include \S+/cmake_pch\.hxx", "", commands))
    return folder


def check(commands, entry):
    command = [TIDY, "--quiet", "-p", commands, *cross_arguments(compiler_of(entry)), entry["file"]]
    result = subprocess.run(command, capture_output=True, text=True)
    return result.returncode == 0, result.stdout


def main():
    memory = cache_folder()
    memory.mkdir(parents=True, exist_ok=True)
    version = subprocess.run([TIDY, "--version"], check=True, capture_output=True, text=True).stdout
    rules = version + "".join((ROOT / folder / ".clang-tidy").read_text() for folder in (".", "tests", "tests/faults"))
    jobs, seen = {}, set()
    builds = [path for path in map(os.path.abspath, sys.argv[1:]) if os.path.isdir(path)]
    wanted = {path for path in map(os.path.abspath, sys.argv[1:]) if not os.path.isdir(path)}
    for build in builds:
        made_of = dependencies(build)
        commands = commands_of_lint(build)
        for entry in json.loads((commands / "compile_commands.json").read_text()):
            file = entry["file"]
            if not file.startswith(CHECKED) or not file.endswith(".cpp") or file in seen:
                continue
            if wanted and file not in wanted:
                continue
            seen.add(file)
            files = made_of.get(os.path.relpath(os.path.join(entry["directory"], object_of(entry)), build))
            if not files:
                sys.exit(f"lint: {file} has not been built")
            jobs[fingerprint(entry, files, rules)] = (commands, entry)

    unknown = {key: job for key, job in jobs.items() if not (memory / key).exists()}
    print(f"{len(jobs)} sources, {len(unknown)} to check")
    clean = True
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for (key, (_, entry)), (good, text) in zip(unknown.items(), pool.map(lambda job: check(*job), unknown.values())):
            if good:
                (memory / key).touch()
            else:
                clean = False
                print(f"{os.path.relpath(entry['file'], ROOT)}:\n{text}")
    return 0 if clean else 1


if __name__ == "__main__":
    sys.exit(main())
