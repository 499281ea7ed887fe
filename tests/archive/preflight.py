#!/usr/bin/python3
"""preflight.py FOLDER: the checker that PDFBox brings along, which knows PDF/A-1b only, finds nothing in a folder's files but
what PDF/A-3 allows and PDF/A-1 does not."""
import pathlib
import re
import subprocess
import sys
import tempfile
from xml.etree import ElementTree

JARS = ("preflight", "pdfbox2", "fontbox2", "xmpbox", "commons-logging", "javax.activation", "jaxb-api")
ALLOWED = (
    r"7\.11\.[12] : Error on MetaData, (part must be 1|conformance level must be A or B)",
    r"3\.1\.11 : .*The CIDSet entry is missing for the Composite Subset",  # ISO 19005-3, 6.2.11.4.2 asks for none
    r"2\.1\.6 : .*Invalid version of the ICCProfile",  # up to version 4: ISO 19005-3, 6.2.3
    r"[24]\.[12]\.[1-4] : .*[Tt]ransparency.*",
)


def judged(files, scratch):
    """What the checker says of each file, from one start of it."""
    path = ":".join(f"/usr/share/java/{jar}.jar" for jar in JARS)
    wanted = scratch / "files"
    wanted.write_text("".join(f"{file.resolve()}\n" for file in files))
    subprocess.run(["java", "-Xshare:auto", "-XX:TieredStopAtLevel=1", "-cp", path, "org.apache.pdfbox.preflight.Validator_A1b",
                    "xml", "group", wanted], check=True)
    answers = ElementTree.parse(f"{wanted}.preflight.xml").getroot()
    return {answer.get("name"): answer for answer in answers.iter("preflight")}


def failures_of(answer):
    """Beside its errors only its time and whether the file is valid are told: an answer with more has met what it did not
    expect."""
    if answer is None:
        yield "is not judged"
        return
    yield from (f"{part.tag}: {''.join(part.itertext())}" for part in answer
                if part.tag not in ("executionTimeMS", "isValid", "errors"))
    if answer.findtext("isValid") != "false":
        yield "is valid"  # it has to find that the part is not 1
    errors = [f"{error.findtext('code')} : {error.findtext('details')}" for error in answer.iter("error")]
    if not any("part must be 1" in error for error in errors):
        yield "the part was not looked at"
    yield from (error for error in errors if not any(re.match(pattern, error) for pattern in ALLOWED))


def main(folder):
    files = sorted(pathlib.Path(folder).glob("*.pdf"))
    failures = 0 if files else 1
    with tempfile.TemporaryDirectory() as scratch:
        answers = judged(files, pathlib.Path(scratch))
    for file in files:
        for failure in failures_of(answers.get(file.name)):
            failures += 1
            print(f"{file.name}: {failure}")
    print(f"{len(files)} files, {failures} failures")
    return failures


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]) > 0)
