"""Fails calls of kvtdruck one by one and judges every run by one rule: it ends with 0 and has made exactly what a run without
fault makes, or it ends with 1 and a message and has left everything as it was. A run that a signal ends (where a library
gives up for want of memory) has at least left the old file as it was.

fault_matrix.py PROGRAM SHIM DATABASE VALUES [--stride N] [--only WORDS] [--sample SCENARIOS FAULTS] [--jobs N]
"""
import argparse
import collections
import concurrent.futures
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile

TIME = re.compile(r"-\d{8}-\d{6}-\d{3}")
KINDS = ["allocate", "open", "read", "write", "sync", "rename", "remove", "process", "sqlite", "odbc", "printer"]
LISTS = ("Umsatz MitUeber Firma GemeinK NeutralA MaKost MaZeit MaStKost MaStZeit KalkKo MatUeber "
         "Bilanz BsEMa BsEStd BsEGes KalkW WasWenn UmsatzHW").split()
YEARLY = {"Umsatz", "Firma", "GemeinK", "NeutralA", "KalkKo", "MatUeber"}
FED_BY_FILES = set(LISTS[11:])
MODES = ["pdf", "vorschau", "gestalten", "csv", "xlsx", "json", "drucker", "odbc"]
OLD = b"the good old file\n"

# A cache of fonts of its own: a run that can't read the fonts leaves an empty one behind, for every program of the machine.
FONTS = """<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig><dir>/usr/share/fonts</dir><cachedir>{}</cachedir></fontconfig>
"""

Fault = collections.namedtuple("Fault", "kind number once")
Answer = collections.namedtuple("Answer", "status met calls output errors")


class Scenario:
    """A command with everything around it, in a folder of its own."""

    def __init__(self, arguments, list_name, mode):
        self.name = f"{list_name} {mode}"
        self.mode = mode
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="faults-"))
        self.place = self.root / "place"  # all that a run may touch
        self.streams = self.root / "streams"
        for folder in ("app/DB/BerichteLLVT/Preview", "out", "tmp", "home", "bin"):
            (self.place / folder).mkdir(parents=True)
        shutil.copytree(arguments.fonts, self.place / "fonts")
        (self.root / "fonts.conf").write_text(FONTS.format(self.place / "fonts"))
        self.streams.mkdir()
        program = pathlib.Path(arguments.program).resolve()
        layouts = self.place / "app/DB/BerichteLLVT"
        for layout in (program.parent.parent / "share/kvtdruck/layouts").iterdir():
            shutil.copy(layout, layouts)
        self.output = {"gestalten": layouts / f"{list_name}.svg", "vorschau": self.place / "out/shown",
                       "drucker": self.place / "out/printed"}.get(mode, self.place / f"out/{list_name}.{mode}")
        if mode != "gestalten":
            self.output.write_bytes(OLD)
        self.script("evince", f'cp "$1" {self.output}')
        self.script("inkscape", 'for f; do :; done; sed "s/<.svg>/<!-- drawn --><\\/svg>/" "$f" >"$f.new" && mv "$f.new" "$f"')
        database = self.root / "firma.sqlite"
        shutil.copy(arguments.database, database)
        source = ["--verbindung", f"Driver=libsqlite3odbc.so;Database={database}"] if mode == "odbc" else ["--datenbank", database]
        command = {"vorschau": "vorschau", "gestalten": "gestalten"}.get(mode, "drucken")
        self.command = [program, command, list_name, "--firma", "1", "--ordner", self.place / "app",
                        "--druckdatum", "01.02.2024", *source]
        if list_name in YEARLY:
            self.command += ["--jahr", "2024"]
        if list_name in FED_BY_FILES:
            self.command += ["--werte", pathlib.Path(arguments.values).resolve() / f"{list_name}.csv"]
        if mode == "odbc":
            self.output = self.place / "out/odbc.pdf"
            self.output.write_bytes(OLD)
        if command == "drucken":
            self.command += ["--drucker", "Buero"] if mode == "drucker" else ["--ausgabe", self.output]
        self.environment = {
            "PATH": f"{self.place / 'bin'}:/usr/bin:/bin", "HOME": str(self.place / "home"), "LANG": "C.UTF-8", "DISPLAY": ":0",
            "TMPDIR": str(self.place / "tmp"), "LD_PRELOAD": str(pathlib.Path(arguments.shim).resolve()),
            "KVT_FAULTS_PRINTER": str(self.output), "FONTCONFIG_FILE": str(self.root / "fonts.conf")}
        self.before = self.state()
        self.contents = {path: self.content(path) for path in self.before}

    def script(self, name, text):
        file = self.place / "bin" / name
        file.write_text(f"#!/bin/sh\n{text}\n")
        file.chmod(0o755)

    def content(self, path):
        file = self.place / path
        return None if file.is_dir() else file.read_bytes()

    def state(self):
        """Every path with what tells whether it has changed."""
        found, folders = {}, [""]
        for folder in folders:
            with os.scandir(f"{self.place}/{folder}") as entries:
                for entry in entries:
                    path = folder + entry.name
                    if entry.is_dir(follow_symlinks=False):
                        found[path] = None
                        folders.append(f"{path}/")
                    else:
                        info = entry.stat(follow_symlinks=False)
                        found[path] = info.st_ino, info.st_size, info.st_mtime_ns
        return found

    def changes(self):
        """The paths that are not as before, with their contents (None: gone). What has the time in its name is the same in
        every run."""
        after = self.state()
        changed = {path for path in after.keys() | self.before.keys()
                   if after.get(path, 0) != self.before.get(path, 0) and not path.startswith("fonts/")}
        return {TIME.sub("-", path): self.content(path) if path in after else None for path in changed
                if path not in after or path not in self.before or self.content(path) != self.contents[path]}

    def restore(self):
        now = self.state()
        if now == self.before:
            return
        for path in sorted(now.keys() - self.before.keys(), reverse=True):
            file = self.place / path
            file.rmdir() if now[path] is None else file.unlink()
        for path, content in self.contents.items():
            if now.get(path, 0) == self.before[path]:
                continue
            file = self.place / path
            if content is None:
                file.mkdir()
            else:
                file.write_bytes(content)
                if path.startswith("bin/"):
                    file.chmod(0o755)
        self.before = self.state()

    def remove(self):
        shutil.rmtree(self.root)


class Server:
    """The program, ready to run once for each fault."""

    def __init__(self, scenario):
        self.scenario = scenario
        requests, self.requests = os.pipe()
        answers_in, answers = os.pipe()
        environment = scenario.environment | {"KVT_FAULTS": f"{requests},{answers}"}
        self.process = subprocess.Popen([str(word) for word in scenario.command], env=environment, pass_fds=(requests, answers),
                                        stdin=subprocess.DEVNULL, cwd=scenario.root)
        os.close(requests)
        os.close(answers)
        self.answers = os.fdopen(answers_in)

    def run(self, fault):
        kind = KINDS.index(fault.kind)
        os.write(self.requests, f"{kind} {fault.number} {int(fault.once)} {self.scenario.streams}\n".encode())
        status, met, *calls = map(int, self.answers.readline().split())
        read = lambda name: (self.scenario.streams / name).read_text(errors="replace")
        return Answer(status, met == 1, dict(zip(KINDS, calls)), read("output"), read("errors"))

    def end(self):
        os.close(self.requests)
        self.process.wait()
        self.answers.close()


def judge(scenario, fault, answer, good):
    """How a run has ended, and what is wrong with it ("" for nothing)."""
    changes = scenario.changes()
    target = str(scenario.output.relative_to(scenario.place))
    # A viewer may have shown the pages before something failed, an author's drawing is saved before it is checked, a printer
    # has begun what it can't take back.
    seen = set(good) if scenario.mode in ("vorschau", "gestalten", "drucker") else set()
    spoiled = {path for path in changes if path not in seen or changes[path] != good[path]}
    if os.WIFSIGNALED(answer.status):
        number = os.WTERMSIG(answer.status)
        if number in (signal.SIGXCPU, signal.SIGKILL):
            return "hung", "it hangs"
        return signal.Signals(number).name, "the old file is gone" if target in spoiled else ""
    code = os.WEXITSTATUS(answer.status)
    if fault.kind == "remove":  # what can't be removed is left behind
        spoiled &= {target} | {path for path in scenario.contents}
    if code == 0:
        made = {path: content for path, content in changes.items() if path in good or path in spoiled}
        return "right", "" if made == good else "0, but not what a good run makes"
    if code != 1:
        return "wrong", f"exit code {code}"
    spoiled = {path for path in spoiled if str(scenario.place / path) not in answer.errors}  # left for the user, and told
    if "Fehler: " not in answer.errors:
        return "wrong", "1 without a message"
    return "refused", f"1, but {', '.join(sorted(spoiled))} changed" if spoiled else ""


def faults_of(calls, arguments, chance):
    """The faults that a scenario is to meet, from the calls of a good run."""
    for kind in KINDS:
        total = calls[kind]
        step = arguments.stride if kind == "allocate" else 1
        for number in range(1 + chance.randrange(step), total + 1, step):
            for once in (True, False):
                yield Fault(kind, number, once)


def sample(faults, count, chance):
    """Faults by chance, of every kind about as many."""
    kinds = [[fault for fault in faults if fault.kind == kind] for kind in KINDS]
    kinds = [faults for faults in kinds if faults]
    return [chance.choice(kinds[i % len(kinds)]) for i in range(count)]


def examine(arguments, list_name, mode, count, seed):
    """Runs one scenario with its faults (`count` of them, 0 for all); gives its tallies and what was wrong."""
    chance = random.Random(f"{seed} {list_name} {mode}")
    scenario = Scenario(arguments, list_name, mode)
    tally = collections.Counter()
    wrong = []
    try:
        server = Server(scenario)
        answer = server.run(Fault("allocate", 0, True))
        good = scenario.changes()
        if answer.status != 0 or not good:
            return tally, [f"{scenario.name}: without a fault it ends with {answer.status}: {answer.errors}"]
        faults = list(faults_of(answer.calls, arguments, chance))
        for fault in sample(faults, count, chance) if count else faults:
            scenario.restore()
            answer = server.run(fault)
            ending, reason = judge(scenario, fault, answer, good)
            tally[mode, fault.kind, "wrong" if reason else ending] += 1
            if reason or (arguments.verbose and ending not in ("right", "refused")):
                wrong.append(f"{scenario.name}, {fault.kind} {fault.number} {'once' if fault.once else 'for good'}: "
                             f"{ending}, {reason}\n    {answer.errors.strip()[:400]}")
        server.end()
    finally:
        scenario.remove()
    return tally, wrong


def show(tally):
    endings = sorted({ending for _, _, ending in tally} - {"right", "refused", "wrong"})
    columns = ["right", "refused", *endings, "wrong"]
    print("| Call | Injections | " + " | ".join(columns) + " |")
    print("|---|" + "---|" * (len(columns) + 1))
    for kind in [*KINDS, "all"]:
        cells = [sum(n for (_, k, e), n in tally.items() if kind in (k, "all") and e == ending) for ending in columns]
        if sum(cells):
            print(f"| {kind} | {sum(cells):,} | " + " | ".join(f"{cell:,}" for cell in cells) + " |")


def main():
    parser = argparse.ArgumentParser()
    for name in ("program", "shim", "database", "values"):
        parser.add_argument(name)
    parser.add_argument("--stride", type=int, default=1, help="every how manieth allocation fails")
    parser.add_argument("--sample", type=int, nargs=2, metavar=("SCENARIOS", "FAULTS"),
                        help="so many faults in each of so many scenarios, by chance")
    parser.add_argument("--seed", default="1", help="of the chance")
    parser.add_argument("--only", default="", help="scenarios whose name holds this")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--verbose", action="store_true", help="tells also of runs that a signal has ended")
    arguments = parser.parse_args()
    scenarios = [(name, mode) for name in LISTS for mode in MODES
                 if arguments.only in f"{name} {mode}" and not (mode == "odbc" and name in FED_BY_FILES)]
    count = 0
    if arguments.sample:
        number, count = arguments.sample
        scenarios = random.Random(arguments.seed).sample(scenarios, number)
    with tempfile.TemporaryDirectory(prefix="fonts-") as fonts:
        arguments.fonts = f"{fonts}/cache"
        pathlib.Path(f"{fonts}/fonts.conf").write_text(FONTS.format(arguments.fonts))
        subprocess.run(["fc-cache"], env=os.environ | {"FONTCONFIG_FILE": f"{fonts}/fonts.conf"}, check=True)
        total, failed = run_all(arguments, scenarios, count)
    show(total)
    return 1 if failed and not arguments.verbose else 0


def run_all(arguments, scenarios, count):
    total = collections.Counter()
    failed = 0
    with concurrent.futures.ProcessPoolExecutor(arguments.jobs) as pool:
        works = [pool.submit(examine, arguments, name, mode, count, arguments.seed) for name, mode in scenarios]
        for work in concurrent.futures.as_completed(works):
            tally, wrong = work.result()
            total += tally
            failed += len(wrong)
            for line in wrong:
                print(line, flush=True)
    return total, failed


if __name__ == "__main__":
    sys.exit(main())
