#!/usr/bin/python3
"""A document is signed as the guide says, and the signature holds until a byte is changed.

usage: signing.py DOCUMENT
"""
import pathlib
import subprocess
import sys
import tempfile


def run(*command):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True)


def main(document):
    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)
        store = folder / "nss"
        store.mkdir()
        (folder / "noise").write_bytes(bytes(range(64)))
        signed = folder / "signed.pdf"
        for command in (("certutil", "-N", "-d", store, "--empty-password"),
                        ("certutil", "-S", "-d", store, "-n", "buchhaltung", "-s", "CN=Buchhaltung", "-x", "-t", "u,u,u",
                         "-z", folder / "noise"),
                        ("pdfsig", "-nssdir", store, "-nick", "buchhaltung", "-add-signature", "-reason", "Freigabe", document,
                         signed)):
            done = run(*command)
            if done.returncode != 0:
                return f"{command[0]}: {done.stdout}{done.stderr}"
        shown = run("pdfsig", "-nssdir", store, "-nocert", signed).stdout
        if "Signature is Valid" not in shown or "Total document signed" not in shown:
            return f"the signature does not hold: {shown}"
        data = bytearray(signed.read_bytes())
        at = data.index(b"/Producer") + 14
        data[at] ^= 1
        signed.write_bytes(data)
        shown = run("pdfsig", "-nssdir", store, "-nocert", signed).stdout
        if "Signature is Valid" in shown or "Digest Mismatch" not in shown:
            return f"a changed document passes: {shown}"
    return None


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
