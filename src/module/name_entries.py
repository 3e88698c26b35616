#!/usr/bin/env python3
"""Gives the functions of a type library's modules their own names as entries.

usage: name_entries.py TYPE_LIBRARY

The type library compiler of Debian's mingw-w64 tools writes one meaningless string as the entry of every function of a
module. This puts each function's name in its place, rewriting the library's string table (format "MSFT": a header, the
offsets of the type descriptions, a directory of 15 segments, the segments, the functions of each type).
"""
import struct
import sys

HEADER = 0x54
HAS_HELP_LIBRARY = 0x100
TYPE_DESCRIPTION_SIZE = 0x64
TYPES, NAMES, STRINGS = 0, 7, 8  # segments
SEGMENTS = 15
MODULE = 2
ENTRY = 0x20  # offset of the entry's string in a function's record
PARAMETER_SIZE = 12


class Library:
    def __init__(self, data):
        self.data = bytearray(data)
        if self.data[:4] != b"MSFT":
            raise SystemExit("not a type library of the expected format")
        self.types = self.integer(0x20)
        self.directory = HEADER + (4 if self.integer(0x14) & HAS_HELP_LIBRARY else 0) + 4 * self.types

    def integer(self, offset):
        return struct.unpack_from("<i", self.data, offset)[0]

    def set_integer(self, offset, value):
        struct.pack_into("<i", self.data, offset, value)

    def segment(self, index):
        """(offset, length)"""
        return self.integer(self.directory + 16 * index), self.integer(self.directory + 16 * index + 4)

    def type_offsets(self):
        start = self.segment(TYPES)[0]
        return [start + TYPE_DESCRIPTION_SIZE * i for i in range(self.types)]

    def functions(self, type_offset):
        """(name, offset of its record) of the functions of a type"""
        start = self.integer(type_offset + 4)
        size = self.integer(start)
        count = struct.unpack_from("<H", self.data, type_offset + 0x18)[0]
        elements = count + struct.unpack_from("<H", self.data, type_offset + 0x1A)[0]
        names = start + 4 + size + 4 * elements
        record = start + 4
        for i in range(count):
            name = self.segment(NAMES)[0] + self.integer(names + 4 * i)
            length = self.data[name + 8]
            yield self.data[name + 12:name + 12 + length].decode("ascii"), record
            record += struct.unpack_from("<H", self.data, record)[0]

    def insert_strings(self, addition):
        """Appends to the string table; everything behind it moves."""
        offset, length = self.segment(STRINGS)
        end = offset + length
        for type_offset in self.type_offsets():
            if self.integer(type_offset + 4) >= end:
                self.set_integer(type_offset + 4, self.integer(type_offset + 4) + len(addition))
        for i in range(SEGMENTS):
            start = self.integer(self.directory + 16 * i)
            if start >= end:
                self.set_integer(self.directory + 16 * i, start + len(addition))
        self.set_integer(self.directory + 16 * STRINGS + 4, length + len(addition))
        self.data[end:end] = addition


def encoded(text):
    """length, characters, filled up to at least 8 bytes and to a multiple of 4"""
    data = struct.pack("<H", len(text)) + text.encode("ascii")
    return data.ljust(max(8, (len(data) + 3) // 4 * 4), b"W")


def main(path):
    with open(path, "rb") as file:
        library = Library(file.read())
    next_string = library.segment(STRINGS)[1]
    addition = b""
    for type_offset in library.type_offsets():
        if library.integer(type_offset) & 0xF != MODULE:
            continue
        for name, record in library.functions(type_offset):
            size = struct.unpack_from("<H", library.data, record)[0]
            parameters = struct.unpack_from("<h", library.data, record + 0x14)[0]
            if size - PARAMETER_SIZE * parameters <= ENTRY:
                raise SystemExit(f"{name} has no entry")
            library.set_integer(record + ENTRY, next_string + len(addition))
            addition += encoded(name)
    library.insert_strings(addition)
    with open(path, "wb") as file:
        file.write(library.data)


if __name__ == "__main__":
    main(*sys.argv[1:])
