"""Writes workbooks as the texts of their parts, the form in which the reader's fuzzer can change what is inside.

Usage: unpack_seeds.py FOLDER WORKBOOK...
Each part is a line with a control character 1 and its name, followed by its content.
"""

import pathlib
import sys
import zipfile

folder = pathlib.Path(sys.argv[1])
for number, name in enumerate(sorted(sys.argv[2:]), 1):
    with zipfile.ZipFile(name) as archive:
        parts = [
            b"\1" + part.encode() + b"\n" + archive.read(part)
            for part in archive.namelist()
            if part.endswith((".xml", ".rels")) and "theme" not in part and "styles" not in part
        ]
    (folder / f"parts{number}").write_bytes(b"\n".join(parts))
