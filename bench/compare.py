#!/usr/bin/env python3
"""Measures what printing costs, in one run, as ratios: against public tools, against a bare writer, as it grows.

usage: bench/compare.py BUILDFOLDER [--rows N] [--rounds N] [--only list,parts,start,growth]

  list    one list of 100,000 rows of 8 columns, 45 a page, printed by the whole program and in other ways. Every way is a
          process of its own; they take turns, so that what else the machine does strikes all of them. "bare" is the
          limit: a writer of this very list that knows nothing else (bare_list.cpp).
  parts   instructions a row of component, data access and engine apart (callgrind; the difference between two runs of
          different length, so start-up is left out)
  start   a report of one page against /bin/true and libharu's one page
  growth  time and memory of lists, of sheets with charts and of figures from a file as they become longer: the CPU time
          of each record that a size has more than the size before stays the same where growth is linear

A ratio is taken within each round; its median stands with its least and its greatest value. Times are the least of all
rounds.
"""
import argparse
import datetime
import os
import pathlib
import platform
import re
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
YEAR = 2024
COMPANY = 1
PARTS = ("list", "parts", "start", "growth")


class Run:
    """One run of a command: wall time and CPU time in seconds, peak memory in MiB."""

    def __init__(self, command):
        begin = time.monotonic()
        process = subprocess.Popen([str(part) for part in command])
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            sys.exit(f"failed: {' '.join(map(str, command))}")
        self.wall = time.monotonic() - begin
        self.cpu = usage.ru_utime + usage.ru_stime
        self.memory = usage.ru_maxrss / 1024


def in_turns(ways, rounds):
    """Runs of every way, by its name; each round runs all of them once."""
    runs = {name: [] for name in ways}
    for _ in range(rounds):
        for name, command in ways.items():
            runs[name].append(Run(command))
    return runs


def least(runs, figure):
    return min(getattr(run, figure) for run in runs)


def ratio(runs, base, figure):
    """Median and spread of the ratios of runs that stand side by side."""
    ratios = [getattr(a, figure) / getattr(b, figure) for a, b in zip(runs, base)]
    return f"{statistics.median(ratios):6.2f} ({min(ratios):.2f}–{max(ratios):.2f})"


class Callgrind:
    """What one run of a command executes, in instructions."""

    def __init__(self, command):
        with tempfile.TemporaryDirectory() as folder:
            target = pathlib.Path(folder, "callgrind.out")
            subprocess.run(["valgrind", "--tool=callgrind", "--separate-threads=yes",
                            f"--callgrind-out-file={target}", *map(str, command)], capture_output=True, check=True)
            threads = sorted(pathlib.Path(folder).glob("callgrind.out-*")) or [target]
            self.threads = [self._functions(file) for file in threads]

    @staticmethod
    def _functions(file):
        """Instructions of each function of a thread, what it calls included; of the whole thread under ""."""
        text = subprocess.run(["callgrind_annotate", "--inclusive=yes", "--threshold=100", file], capture_output=True,
                              text=True, check=True).stdout
        functions = {"": 0}
        for line in text.splitlines():
            row = re.match(r"\s*([\d,]+) \(\s*[\d.]+%\)\s+(.*)", line)
            if row and row[2] == "PROGRAM TOTALS":
                functions[""] = int(row[1].replace(",", ""))
            elif row:
                name = row[2].partition(":")[2].partition(" [")[0]
                functions[name] = functions.get(name, 0) + int(row[1].replace(",", ""))
        return functions

    def total(self):
        return sum(functions[""] for functions in self.threads)

    def within(self, name, threads):
        return sum(count for functions in threads for function, count in functions.items()
                   if function.startswith(name))

    def parts(self):
        """The whole, and the shares of engine and data access: on the printing thread, and beside it."""
        first, *others = self.threads
        writing = [thread for thread in others if self.within("kvtdruck::druckwerk::PdfOutput::put(", [thread])
                   > self.within("kvtdruck::Reader::query(", [thread])]
        reading = [thread for thread in others if thread not in writing]
        return {"whole": self.total(),
                "engine": self.within("kvtdruck::druckwerk::Druckwerk::call(", [first]),
                "data access": self.within("kvtdruck::Reader::read(int", [first]),
                "engine beside": sum(thread[""] for thread in writing),
                "data access beside": sum(thread[""] for thread in reading)}


def empty_copy(source, target, tables):
    """The sample company without the rows of some tables."""
    target.write_bytes(source.read_bytes())
    database = sqlite3.connect(target)
    for table in tables:
        database.execute(f"DELETE FROM {table}")
    return database


def insert(database, table, columns, rows):
    database.executemany(f"INSERT INTO {table} ({','.join(columns)}) VALUES ({','.join('?' * len(columns))})", rows)


def account_database(source, target, rows):
    """The sample company with `rows` accounts of one year."""
    database = empty_copy(source, target, ["konten"])
    columns = ["fnr", "fjahr", "vkonto", "ekonto", "kontenart", "bezeichnung", "ktobetrart", "jwsoll", "jwist"]
    columns += [f"mw{series}_{month:02d}" for series in ("soll", "ist") for month in range(1, 13)]
    insert(database, "konten", columns,
           ((COMPANY, YEAR, 10000 + i, 10000 + i, 1, f"Bezeichnung des Kontos {i}", i % 2, i * 731 % 9999999 / 100,
             i * 977 % 9999999 / 100, *[i * month % 999999 / 100 for month in range(1, 25)]) for i in range(rows)))
    database.commit()
    database.close()
    return target


def staff_database(source, target, records):
    """The sample company with as many employees as have `records` months of a year; month 13 holds the year's totals."""
    tables = {table: columns_of(source, table) for table in ("mitarbeiter_monate", "mitarbeiter_jahre", "mitarbeiter")}
    database = empty_copy(source, target, tables)
    keys = {"fnr": lambda i, month: COMPANY, "nummer": lambda i, month: i + 1, "fjahr": lambda i, month: YEAR,
            "monat": lambda i, month: month, "name": lambda i, month: f"Angestellte{i}", "vorname": lambda i, month: "Eva"}

    def row(columns, i, month):
        return [keys[name](i, month) if name in keys else None if kind in ("TEXT", "DATE") else
                3 if name.endswith("abmon") else (i * 37 + month) % 977 / 4 for name, kind in columns]

    staff = range(max(1, records // 12))
    for table, columns in reversed(tables.items()):
        months = range(1, 14) if table == "mitarbeiter_monate" else [1]
        insert(database, table, [name for name, _ in columns], (row(columns, i, month) for i in staff for month in months))
    database.commit()
    database.close()
    return target


def columns_of(file, table):
    database = sqlite3.connect(file)
    columns = [(row[1], row[2]) for row in database.execute(f"PRAGMA table_info({table})")]
    database.close()
    return columns


def values_file(source, target, rows):
    """Figures from a file: the sample's first line again and again."""
    head, line, *_ = source.read_text().splitlines()
    target.write_text("\n".join([head, *[line] * rows, ""]))
    return target


def account_layout(application):
    """The list's layout with the fields of the account report, in an application folder of its own."""
    fields = {"Nummer": "VKonto", "Ort": "MonatText", "Soll": "JWSoll", "Ist": "JWIst", "Abweichung": "MonatIst",
              "Prozent": "KtoBetrArt", "Jahr": "FJahr"}
    folder = application / "DB" / "BerichteLLVT"
    folder.mkdir(parents=True)
    text = re.sub(r"\{\{(\w+)", lambda found: "{{" + fields.get(found[1], found[1]),
                  (HERE / "list_layout.svg").read_text())
    (folder / "GemeinK.svg").write_text(text)


class Bench:
    def __init__(self, build, folder, rows, rounds):
        self.build, self.folder, self.rows, self.rounds = build, folder, rows, rounds
        self.sample = build / "demo" / "musterbau.sqlite"
        self.font = subprocess.run(["fc-match", "-f", "%{file}", "Liberation Sans"], capture_output=True, text=True,
                                   check=True).stdout
        account_layout(folder / "list")

    def kvtdruck(self, report, *words, application="own"):
        return [self.build / "src" / "cli" / "kvtdruck", "drucken", report, "--firma", COMPANY, "--ordner",
                self.folder / application, "--ausgabe", self.folder / f"{report}-{application}.pdf", *words]

    def accounts(self, rows, application="list"):
        database = self.folder / f"accounts-{rows}.sqlite"
        if not database.exists():
            account_database(self.sample, database, rows)
        return self.kvtdruck("GemeinK", "--datenbank", database, "--jahr", YEAR, "--monat", 3, application=application)

    def way(self, name, rows):
        program = self.build / "bench" / ("bare_list" if name == "bare" else "list_rows")
        if name == "reportlab":
            python = sys.executable if sys.executable.startswith("/usr/bin") else "/usr/bin/python3"
            return [python, HERE / "reportlab_list.py", rows, self.folder / "reportlab.pdf", self.font]
        output = self.folder / f"{name}.pdf"
        if name == "bare":
            return [program, rows, output, self.font]
        return [program, name, rows, output, HERE / "list_layout.svg" if name == "engine" else self.font]

    def list(self):
        print(f"\n{self.rows} rows of 8 columns, 45 a page, {self.rounds} rounds"
              f"\n{'':34}{'wall s':>8}{'CPU s':>8}{'MiB':>7}{'file MB':>9}   wall against bare     CPU against bare")
        ways = {"the bare writer": self.way("bare", self.rows),
                "kvtdruck drucken, the list": self.accounts(self.rows),
                "kvtdruck drucken, its own layout": self.accounts(self.rows, "own"),
                "embedded engine alone": self.way("engine", self.rows),
                "libharu, bare text": self.way("haru", self.rows)}
        slow = {"ReportLab's canvas": self.way("reportlab", self.rows),
                "cairo and pango": self.way("pango", self.rows)}
        runs = in_turns(ways, self.rounds)
        runs |= in_turns(slow, 1)
        base = runs["the bare writer"]
        for name, found in runs.items():
            output = next(part for part in (ways | slow)[name] if str(part).endswith(".pdf"))
            print(f"{name:34}{least(found, 'wall'):8.3f}{least(found, 'cpu'):8.3f}{least(found, 'memory'):7.1f}"
                  f"{output.stat().st_size / 1e6:9.1f}   {ratio(found, base, 'wall'):22}{ratio(found, base, 'cpu')}",
                  flush=True)

    def parts(self):
        few, many = 2000, 12000
        print(f"\ninstructions a row, between {few} and {many} rows")

        def per_row(command):
            a, b = Callgrind(command(few)).parts(), Callgrind(command(many)).parts()
            return {part: (b[part] - a[part]) / (many - few) for part in b}

        found = per_row(self.accounts)
        if min(found["engine"], found["data access"]) <= 0:
            sys.exit("the functions that parts are told by are gone")
        beside = found["engine beside"] + found["data access beside"]
        component = found["whole"] - sum(count for part, count in found.items() if part != "whole")
        bare = per_row(lambda rows: self.way("bare", rows))["whole"]
        for part, count in {**found, "component and program": component,
                            "on the printing thread": found["whole"] - beside, "the bare writer": bare}.items():
            print(f"{part:34}{count:8.0f}{count / bare:8.2f} of the bare writer's")

    def start(self):
        one = self.kvtdruck("GemeinK", "--datenbank", self.sample, "--jahr", YEAR, "--monat", 3)
        ways = {"/bin/true": ["/bin/true"], "libharu, one page": self.way("haru", 1), "kvtdruck, one page": one}
        runs = in_turns(ways, 4 * self.rounds)
        print(f"\none page, {4 * self.rounds} rounds\n{'':34}{'wall ms':>8}{'CPU ms':>8}   wall against libharu   of the CPU")
        for name, found in runs.items():
            print(f"{name:34}{1000 * least(found, 'wall'):8.1f}{1000 * least(found, 'cpu'):8.1f}   "
                  f"{ratio(found, runs['libharu, one page'], 'wall'):23}{ratio(found, runs['libharu, one page'], 'cpu')}")
        print(f"instructions: {Callgrind(one).total() / 1e6:.1f} million")

    def growth(self):
        print(f"\ngrowth, {self.rounds} rounds\n{'':22}{'records':>9}{'wall s':>9}{'CPU s':>9}{'MiB':>8}"
              f"{'µs a further one':>17}  of the row above")
        staff = {}

        def months(report, *selection):
            def command(records):
                if records not in staff:
                    staff[records] = staff_database(self.sample, self.folder / f"staff-{records}.sqlite", records)
                return self.kvtdruck(report, "--datenbank", staff[records], *selection)
            return command

        def figures(records):
            values = values_file(HERE.parent / "demo" / "werte" / "Bilanz.csv", self.folder / f"{records}.csv", records)
            return self.kvtdruck("Bilanz", "--datenbank", self.sample, "--werte", values)

        of_months = ("--monat-von", 1, "--monat-bis", 12) # else the lists show totals of years
        lists = (1000, 10_000, 100_000)
        for name, command, sizes in (("GemeinK, the list", self.accounts, (*lists, 1_000_000)),
                                     ("MaKost", months("MaKost", *of_months), lists),
                                     ("MaZeit", months("MaZeit", *of_months), lists),
                                     ("MaStKost, with charts", months("MaStKost"), (120, 1200, 12_000)),
                                     ("MaStZeit, with charts", months("MaStZeit"), (120, 1200, 12_000)),
                                     ("Bilanz, from a file", figures, (1000, 10_000, 32_000))): # an array has 32,768 rows
            self.grow(name, command, sizes)

    def grow(self, name, command, sizes):
        """Each size with the time of the records that it has more than the size before. They take turns: what else the
        machine does would look like growth."""
        runs = in_turns({records: command(records) for records in (12, *sizes)}, self.rounds)
        each = None
        for before, records in zip((12, *sizes), sizes):
            slope = (least(runs[records], "cpu") - least(runs[before], "cpu")) / (records - before) * 1e6
            print(f"{name:22}{records:9}{least(runs[records], 'wall'):9.3f}{least(runs[records], 'cpu'):9.3f}"
                  f"{least(runs[records], 'memory'):8.1f}{slope:17.2f}" + (f"  {slope / each:.2f}" if each else ""),
                  flush=True)
            each = slope


def machine():
    cpu = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())
    system = re.search(r'PRETTY_NAME="(.*)"', pathlib.Path("/etc/os-release").read_text())
    return (f"{datetime.date.today()}, {cpu[1] if cpu else platform.machine()}, {len(os.sched_getaffinity(0))} processors,"
            f" {system[1] if system else platform.system()}, load {os.getloadavg()[0]:.1f}")


def main():
    parser = argparse.ArgumentParser(usage=__doc__.split("\n\n")[1].removeprefix("usage: "))
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--rows", type=int, default=100_000)
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--only", default=",".join(PARTS))
    arguments = parser.parse_args()
    print(machine())
    with tempfile.TemporaryDirectory() as folder:
        bench = Bench(arguments.build.resolve(), pathlib.Path(folder), arguments.rows, arguments.rounds)
        for part in PARTS:
            if part in arguments.only.split(","):
                getattr(bench, part)()


main()
