"""What the program kvtdruck knows: the lists, their variables and fields, and what is wrong with a layout."""
import json
import pathlib
import shutil
import subprocess


class Refused(Exception):
    """What was asked for can't be done; the text is German and for the user."""


def _program():
    """The program that this extension was installed with, otherwise the one in the search path."""
    own = pathlib.Path(__file__).resolve().parents[4] / "bin" / "kvtdruck"
    found = str(own) if own.is_file() else shutil.which("kvtdruck")
    if found is None:
        raise Refused("Das Programm kvtdruck ist nicht zu finden.")
    return found


def _call(*arguments):
    result = subprocess.run([_program(), *arguments], capture_output=True, encoding="utf-8", stdin=subprocess.DEVNULL,
                            check=False)
    return result.returncode, result.stdout, result.stderr


def _answer(*arguments):
    code, output, errors = _call(*arguments, "--format", "json")
    if code != 0:
        raise Refused(errors.strip())
    return json.loads(output)


def reports():
    """The names of all lists."""
    return [report["name"] for report in _answer("listen")]


def fields(report):
    """The variables and fields of a list, in its order: name, art, typ, wert, bedeutung, muster."""
    return _answer("felder", report)["felder"]


def findings(report, layout):
    """What `pruefen` says about a layout file, a line for each; nothing where it is in order."""
    code, _, errors = _call("pruefen", report, "--layout", str(layout))
    lines = [line for line in errors.splitlines() if line]
    return lines if code == 0 or lines else ["Die Prüfung wurde vorzeitig beendet."]
