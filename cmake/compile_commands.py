"""How each source of a build tree is compiled."""
import json
import pathlib
import re


def compile_commands(build):
    """The entries of the tree's compile_commands.json. Where a dozen sources are compiled as one, each as if it were
    compiled alone."""
    for entry in json.loads(pathlib.Path(build, "compile_commands.json").read_text(encoding="utf-8")):
        batch = entry["file"]
        if "/Unity/unity_" not in batch:
            yield entry
            continue
        for source in re.findall(r'^#include "(.+)"$', pathlib.Path(batch).read_text(encoding="utf-8"), re.MULTILINE):
            yield {**entry, "file": source, "command": entry["command"].replace(batch, source)}
