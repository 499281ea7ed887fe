#!/usr/bin/env python3
"""check_packages.py BUILD: what the plain build tree, BUILD, reads of the system comes with the packages that ./run and ./test
install, whatever else this machine has: those of packages-run.txt and what they depend on, and for tests and benches those of
packages-test.txt as well. Fails with a line for each package that is not named. Programs that a build or a test starts are not
seen here: only a bare root shows them.
"""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
STATUS = pathlib.Path("/var/lib/dpkg/status")


def named_in(name):
    lines = (ROOT / "cmake" / name).read_text(encoding="utf-8").split("\n")
    return {line.split(":")[0] for line in lines if line and not line.startswith("#")}


def names_of(relation):
    """"a (>= 1) | b:any, c" are {a, b, c}: of several that will do, those that are installed count."""
    return {re.split(r"[ (:]", name.strip())[0] for name in re.split("[,|]", relation) if name.strip()}


def installed_packages():
    """What each installed package depends on; the packages that provide a name; and those that every Debian has."""
    needs, providers, essential = {}, {}, set()
    for entry in STATUS.read_text(encoding="utf-8").split("\n\n"):
        fields = dict(re.findall(r"^([A-Za-z-]+): (.*)$", entry, re.MULTILINE))
        if fields.get("Status") != "install ok installed":
            continue
        name = fields["Package"]
        relations = names_of(fields.get("Depends", "") + "," + fields.get("Pre-Depends", ""))
        needs[name] = needs.get(name, set()) | relations
        for provided in names_of(fields.get("Provides", "")) | {name}:
            providers.setdefault(provided, set()).add(name)
        if fields.get("Essential") == "yes":
            essential.add(name)
    return needs, providers, essential


def closure(names, needs, providers):
    reached, open_names = set(), set(names)
    while open_names:
        packages = providers.get(open_names.pop(), set()) - reached
        reached |= packages
        for package in packages:
            open_names |= needs[package]
    return reached


def system_files(build):
    """The system's files that the objects of src/ were made of, and those of all others."""
    answer = subprocess.run(["ninja", "-C", build, "-t", "deps"], check=True, capture_output=True, text=True).stdout
    program, others = set(), set()
    files = others
    for line in answer.split("\n"):
        if line.startswith("    /usr/"):
            files.add(line.strip())
        elif line and not line.startswith(" "):
            files = program if line.startswith("src/") else others
    return program, others


def owners_of(files):
    """Packages by file; what no package owns, by its own name."""
    owners = {file: file for file in files}
    answer = subprocess.run(["xargs", "dpkg", "-S"], input="\n".join(sorted(files)), capture_output=True, text=True).stdout
    for line in answer.split("\n"):
        packages, separator, file = line.partition(": ")
        if separator and file in owners:
            owners[file] = packages.split(",")[0].split(":")[0]
    return set(owners.values())


def main():
    needs, providers, essential = installed_packages()
    for_run = essential | named_in("packages-run.txt")
    breaches = []
    for files, names, where in zip(system_files(sys.argv[1]),
                                   (for_run, for_run | named_in("packages-test.txt")),
                                   ("packages-run.txt", "packages-test.txt")):
        if not files:
            breaches.append(f"{where}: nothing is known of what the build has read")
        breaches += [f"{where} does not lead to {owner}"
                     for owner in sorted(owners_of(files) - closure(names, needs, providers))]
    print("\n".join(breaches) if breaches else "every file of the system comes with a package that is named")
    sys.exit(bool(breaches))


if __name__ == "__main__":
    main()
