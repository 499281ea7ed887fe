#!/usr/bin/env python3
"""Compiles an IDL file whose identifiers may bear umlauts.

    typelib.py --widl WIDL --idl FILE --tlb OUT --header OUT [widl arguments …]

The IDL compiler takes ASCII identifiers alone. So each umlaut gives way to its base letter (the same length, and the same
hash class), the library is compiled, and the names are put back into its name table in CP1252, with its hash chains
rebuilt. A rebuild without any change must give the compiler's own bytes; if it does not, the format has changed and the
build stops. The header for C++ keeps the base letters.

Layout of a type library of kind MSFT: header, offsets of the type infos, 15 segment descriptors of 16 bytes; segment 6 is
the hash table of names (128 chains), segment 7 the names: {int hash link; int next in chain; byte length; byte flags;
ushort hash; characters, padded to 4}. Source: the IDL compiler's own writer, wine's tools/widl/write_msft.c.
"""
import argparse
import os
import re
import struct
import subprocess
import sys
import tempfile

BASE_LETTERS = str.maketrans("äöüÄÖÜ", "aouAOU")
IDENTIFIER = re.compile(r"[^\W\d]\w*")


def renamed_identifiers(idl):
    """The identifiers with umlauts, keyed by their ASCII forms."""
    code = re.sub(r"/\*.*?\*/|//[^\n]*", " ", idl, flags=re.S)
    identifiers = set(IDENTIFIER.findall(re.sub(r'"[^"\n]*"', '""', code)))
    renamed = {name.translate(BASE_LETTERS): name for name in identifiers if not name.isascii()}
    taken = {name.lower() for name in identifiers if name.isascii()}
    for ascii_name in renamed:
        if ascii_name.lower() in taken:
            sys.exit(f"typelib.py: {ascii_name} stands for {renamed[ascii_name]}, but exists already")
    return renamed


class NameTable:
    """The names of a compiled library, which can be overwritten in place."""

    SEGMENT_NAME_HASH, SEGMENT_NAMES = 6, 7

    def __init__(self, image):
        self.image = image
        if image[:4] != b"MSFT":
            sys.exit("typelib.py: not a type library of kind MSFT")
        flags, type_count = self.integer(0x14), self.integer(0x20)
        segments = 0x54 + (4 if flags & 0x100 else 0) + 4 * type_count
        self.hash_offset = self.integer(segments + 16 * self.SEGMENT_NAME_HASH)
        self.offset = self.integer(segments + 16 * self.SEGMENT_NAMES)
        length = self.integer(segments + 16 * self.SEGMENT_NAMES + 4)
        self.entries, position = [], 0
        while position < length:
            size = image[self.offset + position + 8]
            self.entries.append((position, size))
            position += 12 + ((size + 3) & ~3)

    def integer(self, offset):
        return struct.unpack_from("<i", self.image, offset)[0]

    def characters(self, position, size):
        start = self.offset + position + 12
        return slice(start, start + size)

    def rename(self, names):
        done = set()
        for position, size in self.entries:
            where = self.characters(position, size)
            name = names.get(self.image[where].decode("ascii"))
            if name:
                self.image[where] = name.encode("cp1252")
                done.add(name)
        return done

    def rehash(self):
        chains = [-1] * 128
        for position, size in self.entries:
            value = hash_of(bytes(self.image[self.characters(position, size)]))
            entry = self.offset + position
            struct.pack_into("<H", self.image, entry + 10, value)
            struct.pack_into("<i", self.image, entry + 4, chains[value & 0x7F])
            chains[value & 0x7F] = position
        struct.pack_into("<128i", self.image, self.hash_offset, *chains)


def hash_of(name):
    """The hash of a name in the Latin locales (LHashValOfNameSys, English and German)."""
    special = {0x57: 0x56, 0x59: 0x55, 0x2F: 0}
    umlauts = {0xE4: 0x41, 0xC4: 0x41, 0xF6: 0x4F, 0xD6: 0x4F, 0xFC: 0x55, 0xDC: 0x55}
    value = 0x0DEADBEE
    for character in name:
        upper = character - 32 if 97 <= character <= 122 else character
        value = (37 * value + umlauts.get(upper, special.get(upper, upper))) & 0xFFFFFFFF
    return (value % 65599) & 0xFFFF


def compile_ascii(options, idl):
    """Works in a folder of its own, whose name the header does not tell: it is the same wherever it is made."""
    with tempfile.TemporaryDirectory() as folder:
        source = os.path.basename(options.idl)
        with open(os.path.join(folder, source), "w", encoding="ascii", errors="replace") as file:
            file.write(IDENTIFIER.sub(lambda match: match[0].translate(BASE_LETTERS), idl))
        subprocess.check_call([options.widl, *options.arguments, "-t", "-o", options.tlb, source], cwd=folder)
        subprocess.check_call([options.widl, *options.arguments, "-h", "-o", options.header, source], cwd=folder)


def main():
    parser = argparse.ArgumentParser()
    for name in ("--widl", "--idl", "--tlb", "--header"):
        parser.add_argument(name, required=True)
    parser.add_argument("arguments", nargs="*")
    options = parser.parse_args()
    with open(options.idl, encoding="utf-8") as file:
        idl = file.read()
    names = renamed_identifiers(idl)
    compile_ascii(options, idl)

    with open(options.tlb, "rb") as file:
        compiled = file.read()
    table = NameTable(bytearray(compiled))
    table.rehash()
    if table.image != compiled:
        sys.exit("typelib.py: rebuilding the hash chains changed the compiler's own output")
    if table.rename(names) != set(names.values()):
        sys.exit("typelib.py: not every name with an umlaut was found in the library")
    table.rehash()
    with open(options.tlb, "wb") as file:
        file.write(table.image)


main()
