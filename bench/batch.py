#!/usr/bin/env python3
"""batch.py BUILD [COMPANIES]: how many reports a second a batch prints with 1, 2 and 4 workers.

The sample company is multiplied to COMPANIES (1000) in a PostgreSQL server of the script's own, and in an SQLite file; each
prints the imputed costs of all companies for one year, one file a company, with `--prozesse N`, and once more as N calls of
`--teil K/N` at once, as a scheduler would make them. Prints a table in Markdown; needs postgresql and odbc-postgresql. Says
how busy the machine was before: figures of a busy one are worth nothing."""
import glob
import os
import pathlib
import shutil
import socket
import subprocess
import sys
import tempfile
import time

WORKERS = (1, 2, 4)


class Server:
    """A PostgreSQL server on loopback, as nobody where this runs as root."""

    def __init__(self, folder):
        self.folder = folder / "server"
        self.folder.mkdir()
        self.user = []
        if os.geteuid() == 0:
            folder.chmod(0o711)
            shutil.chown(self.folder, "nobody")
            self.user = ["runuser", "-u", "nobody", "--"]
        self.programs = pathlib.Path(sorted(glob.glob("/usr/lib/postgresql/*/bin"))[-1])
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            self.port = free.getsockname()[1]
        self.run("initdb", "-D", self.folder / "data", "-U", "kvt", "--auth=trust", "-E", "UTF8", "--locale=C.UTF-8")

    def run(self, program, *arguments, **more):
        subprocess.run([*self.user, self.programs / program, *arguments], check=True, cwd="/", stdout=subprocess.DEVNULL, **more)

    def __enter__(self):
        self.run("pg_ctl", "-D", self.folder / "data", "-w", "-l", self.folder / "log", "-o",
                 f"-p {self.port} -k {self.folder} -c listen_addresses=127.0.0.1", "start")
        return self

    def __exit__(self, *error):
        self.run("pg_ctl", "-D", self.folder / "data", "-m", "fast", "-w", "stop")

    def execute(self, sql):
        self.run("psql", "-h", "127.0.0.1", "-p", str(self.port), "-U", "kvt", "-q", "-v", "ON_ERROR_STOP=1", "postgres",
                 input=sql, text=True)

    def connection(self):
        return f"Driver={{PostgreSQL Unicode}};Server=127.0.0.1;Port={self.port};Database=postgres;UID=kvt"


def sample(companies):
    demo = pathlib.Path(__file__).resolve().parent.parent / "demo"
    more = f"""
INSERT INTO firma SELECT fnr + n.i, name1, name2, name3, kurzbez, strasse, postfach, plz, ort, land, bundesland, telefon1,
    telefon2, fax, waehrung FROM firma, (WITH RECURSIVE n(i) AS (SELECT 100 UNION ALL SELECT i + 1 FROM n
    WHERE i < {98 + companies}) SELECT i FROM n) AS n WHERE fnr = 1;
INSERT INTO kosten SELECT firma.fnr, jahr, dafa, dsons, dwag, qm, qmpreis, mmietemon, mmietejahr, priv, upausch, zek, zpzins,
    zdmzins FROM kosten, firma WHERE kosten.fnr = 1 AND firma.fnr > 100;
DELETE FROM kosten WHERE fnr = 2;
"""
    return (demo / "schema.sql").read_text() + (demo / "daten.sql").read_text() + more


def printed(program, folder, source, calls):
    """Reports a second of `calls`, which run at once, each with further options."""
    target = folder / "out"
    command = [program, "drucken", "KalkKo", *source, "--firma", "alle", "--jahr", "2024", "--nach", target]
    environment = {**os.environ, "XDG_DATA_HOME": str(folder)}
    begin = time.monotonic()
    running = [subprocess.Popen([*command, *call], env=environment, stderr=subprocess.DEVNULL) for call in calls]
    for process in running:
        process.wait()
    seconds = time.monotonic() - begin
    count = len(list(target.iterdir()))
    shutil.rmtree(target)
    return count / seconds


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    companies = int(sys.argv[2]) if len(sys.argv) > 2 else 1000
    program = build / "src" / "cli" / "kvtdruck"
    print(f"{companies} companies, {os.cpu_count()} processors, load before: {os.getloadavg()[0]:.1f}\n")
    print("| workers | SQLite, one call | PostgreSQL, one call | PostgreSQL, a call each |\n|---|---|---|---|")
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        database = folder / "firma.sqlite"
        subprocess.run(["sqlite3", "-bail", database], input=sample(companies), text=True, check=True)
        with Server(folder) as server:
            server.execute(sample(companies))
            for workers in WORKERS:
                one = [["--prozesse", str(workers)]]
                parts = [["--prozesse", "1", "--teil", f"{part}/{workers}"] for part in range(1, workers + 1)]
                rates = [printed(program, folder, ["--datenbank", database], one),
                         printed(program, folder, ["--verbindung", server.connection()], one),
                         printed(program, folder, ["--verbindung", server.connection()], parts)]
                print(f"| {workers} | " + " | ".join(f"{rate:.0f}" for rate in rates) + " |", flush=True)


if __name__ == "__main__":
    main()
