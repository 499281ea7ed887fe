#!/usr/bin/python3
"""preflight.py FOLDER: the checker that PDFBox brings along, which knows PDF/A-1b only, finds nothing in a folder's files but
what PDF/A-3 allows and PDF/A-1 does not."""
import pathlib
import re
import subprocess
import sys

JARS = ("preflight", "pdfbox2", "fontbox2", "xmpbox", "commons-logging", "javax.activation", "jaxb-api")
ALLOWED = (
    r"7\.11\.[12] : Error on MetaData, (part must be 1|conformance level must be A or B)",
    r"3\.1\.11 : .*The CIDSet entry is missing for the Composite Subset",  # ISO 19005-3, 6.2.11.4.2 asks for none
    r"2\.1\.6 : .*Invalid version of the ICCProfile",  # up to version 4: ISO 19005-3, 6.2.3
    r"[24]\.[12]\.[1-4] : .*[Tt]ransparency.*",
)


def main(folder):
    path = ":".join(f"/usr/share/java/{jar}.jar" for jar in JARS)
    files = sorted(pathlib.Path(folder).glob("*.pdf"))
    failures = 0 if files else 1
    for file in files:
        run = subprocess.run(["java", "-Xshare:auto", "-XX:TieredStopAtLevel=1", "-cp", path,
                              "org.apache.pdfbox.preflight.Validator_A1b", file], capture_output=True, text=True)
        if f"The file {file.name} is not a valid PDF/A-1b file" not in run.stdout:
            failures += 1  # it has to find that the part is not 1
            print(f"{file.name}: {run.stdout}{run.stderr}")
        for line in run.stdout.splitlines()[1:]:
            if re.match(r"\d+(\.\d+)* : ", line) and not any(re.match(pattern, line) for pattern in ALLOWED):
                failures += 1
                print(f"{file.name}: {line}")
    print(f"{len(files)} files, {failures} failures")
    return failures


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]) > 0)
