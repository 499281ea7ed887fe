#!/usr/bin/env python3
"""Prints the same list of 100,000 rows with the embedded engine and with public tools, in one run, and the ratios.

usage: bench/compare.py BUILDFOLDER [ROWS]

Each way runs in a process of its own, three times; the best time counts. The whole program (database, component,
engine) prints the account list of a company with as many accounts. Instructions per row come from callgrind: the
difference between two runs of different length, so start-up is left out.
"""
import os
import pathlib
import re
import sqlite3
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent


def measure(command, runs=3):
    """Best wall time (s), its CPU time (s) and the peak memory (MiB) of a command."""
    best = None
    for _ in range(runs):
        begin = time.monotonic()
        process = subprocess.Popen([str(part) for part in command])
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            sys.exit(f"failed: {' '.join(map(str, command))}")
        result = (time.monotonic() - begin, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024)
        best = min(best, result) if best else result
    return best


def instructions(command):
    """Instructions that the command executes in user mode."""
    run = subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", *map(str, command)],
                         capture_output=True, text=True, check=True)
    return int(re.search(r"Collected : (\d+)", run.stderr).group(1))


def account_database(source, target, rows):
    """The sample company with `rows` accounts of one year."""
    target.write_bytes(source.read_bytes())
    database = sqlite3.connect(target)
    company = database.execute("SELECT min(fnr) FROM firma").fetchone()[0]
    columns = ["fnr", "fjahr", "vkonto", "ekonto", "kontenart", "bezeichnung", "ktobetrart", "jwsoll", "jwist"]
    columns += [f"mw{series}_{month:02d}" for series in ("soll", "ist") for month in range(1, 13)]
    database.execute("DELETE FROM konten")
    database.executemany(
        f"INSERT INTO konten ({','.join(columns)}) VALUES ({','.join('?' * len(columns))})",
        ((company, 2023, 10000 + i, 10000 + i, 1, f"Bezeichnung des Kontos {i}", i % 2, i * 731 % 9999999 / 100,
          i * 977 % 9999999 / 100, *[i * month % 999999 / 100 for month in range(1, 25)]) for i in range(rows)))
    database.commit()
    database.close()
    return company


def account_layout(layout, application):
    """The list's layout with the fields of the account report, in an application folder of its own."""
    fields = {"Nummer": "VKonto", "Ort": "MonatText", "Soll": "JWSoll", "Ist": "JWIst", "Abweichung": "MonatIst",
              "Prozent": "KtoBetrArt", "Jahr": "FJahr"}
    folder = application / "DB" / "BerichteLLVT"
    folder.mkdir(parents=True)
    text = re.sub(r"\{\{(\w+)", lambda found: "{{" + fields.get(found[1], found[1]), layout.read_text())
    (folder / "GemeinK.svg").write_text(text)


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    build = pathlib.Path(sys.argv[1]).resolve()
    rows = int(sys.argv[2]) if len(sys.argv) > 2 else 100_000
    program = build / "bench" / "list_rows"
    font = subprocess.run(["fc-match", "-f", "%{file}", "Liberation Sans"], capture_output=True, text=True,
                          check=True).stdout
    layout = HERE / "list_layout.svg"
    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)
        company = account_database(build / "demo" / "musterbau.sqlite", folder / "konten.sqlite", rows)

        def whole(application):
            return [build / "src" / "host" / "kvtdruck", "drucken", "GemeinK", "--datenbank", folder / "konten.sqlite",
                    "--firma", company, "--jahr", 2023, "--monat", 3, "--ordner", folder / application, "--ausgabe",
                    folder / "gemeink.pdf"]

        def engine(count):
            return [program, "engine", count, folder / "engine.pdf", layout]

        account_layout(layout, folder / "list")
        ways = {
            "embedded engine": (engine(rows), folder / "engine.pdf"),
            "kvtdruck, list": (whole("list"), folder / "gemeink.pdf"),
            "kvtdruck, GemeinK": (whole("own"), folder / "gemeink.pdf"),
            "libharu": ([program, "haru", rows, folder / "haru.pdf", font], folder / "haru.pdf"),
            "ReportLab canvas": ([sys.executable if sys.executable.startswith("/usr/bin") else "/usr/bin/python3",
                                  HERE / "reportlab_list.py", rows, folder / "reportlab.pdf", font],
                                 folder / "reportlab.pdf"),
            "cairo and pango": ([program, "pango", rows, folder / "pango.pdf"], folder / "pango.pdf"),
        }
        print(f"{rows} rows of 8 columns, 45 a page (GemeinK in its own layout: 10 columns and sums, 25 a page)")
        print(f"{'':18}{'seconds':>9}{'CPU':>8}{'MiB':>8}{'file MB':>9}{'ratio':>8}")
        base = None
        for name, (command, output) in ways.items():
            seconds, cpu, memory = measure(command)
            base = base or cpu
            print(f"{name:18}{seconds:9.2f}{cpu:8.2f}{memory:8.1f}{output.stat().st_size / 1e6:9.1f}{cpu / base:8.1f}",
                  flush=True)
        seconds, _, memory = measure(engine(1), 10)
        print(f"a document of one page with the engine: {seconds * 1000:.0f} ms, {memory:.1f} MiB")
        few, many = 2000, 12000
        per_row = (instructions(engine(many)) - instructions(engine(few))) / (many - few)
        print(f"instructions a row, engine alone: {per_row:.0f}")


main()
