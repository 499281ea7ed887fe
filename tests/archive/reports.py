#!/usr/bin/python3
"""A report is what its metadata promise: with the sample company's data, with long texts, with none, and with characters
that no font has.

usage: reports.py PROGRAM LAYOUTS SAMPLE_DATABASE SAMPLE_VALUES SCHEMA LIST
"""
import itertools
import pathlib
import subprocess
import sys
import tempfile

sys.path.append(str(pathlib.Path(__file__).resolve().parent.parent / "cli"))

import hostile_data  # noqa: E402
from check import findings_of, level_of  # noqa: E402
from pdf_file import PdfFile  # noqa: E402

# Scripts from both sides, joined letters, a picture, a character of nobody's, no character at all, markup, addresses.
STRANGE = "Müller & <Söhne> שלום مرحبا हिन्दी ไทยกำ 漢字 👍 \U000f1234 \ufeff \ufffe \x07 e\u0301 info@muster.de, www.muster.de/a?b=1&c."

LEVELS = (([], "PDF/A-3u"), (["--barrierefrei"], "PDF/A-3a, PDF/UA-1"))


def strange_case(report, values, schema, scratch):
    own = hostile_data.Database(scratch / "own.sqlite", schema)
    own.fill("MitUeber" if report in hostile_data.ARRAYS else report, STRANGE, 3)
    own.connection.close()
    path = scratch / "own.csv"
    if report in hostile_data.ARRAYS:
        hostile_data.array_file(path, pathlib.Path(values) / f"{report}.csv", STRANGE.replace("\x07", ""), 3)
    return hostile_data.Case("strange characters", own.path, hostile_data.array_options(report, path))


def main():
    program, layouts, database, values, schema, report = sys.argv[1:]
    failures, files = [], 0
    with tempfile.TemporaryDirectory() as scratch:
        scratch = pathlib.Path(scratch)
        folder = scratch / "folder" / "DB" / "BerichteLLVT"
        folder.mkdir(parents=True)
        (folder / f"{report}.svg").write_bytes((pathlib.Path(layouts) / f"{report}.svg").read_bytes())
        usual = hostile_data.cases(report, database, values, schema, scratch, lambda case: 0)
        strange = (strange_case(report, values, schema, scratch) for _ in "1")
        for case in itertools.chain(itertools.islice(usual, 4), strange):
            for options, level in LEVELS:
                pdf = scratch / "out.pdf"
                subprocess.run([program, "drucken", report, "--datenbank", case.database, "--firma", "1", "--ordner",
                                scratch / "folder", "--ausgabe", pdf, *case.options, *options], check=True,
                               capture_output=True)
                name = " ".join([case.name, *options])
                check = subprocess.run(["qpdf", "--check", pdf], capture_output=True, text=True)
                if check.returncode != 0:
                    failures.append(f"{name}: {check.stdout}{check.stderr}")
                file = PdfFile(pdf)
                failures += [f"{name}: {finding.clause}: {finding.text}" for finding in findings_of(file)]
                if level_of(file) != level:
                    failures.append(f"{name}: the level is „{level_of(file)}“")
                files += 1
    print("\n".join(failures) or f"{report}: {files} files as they say")
    return len(failures)


if __name__ == "__main__":
    sys.exit(main() > 0)
