#!/usr/bin/env python3
"""Fails when a folder of src/ sees another that the picture in ARCHITECTURE.md does not let it see.

usage: check_arrows.py SOURCE_DIR LISTING NM

The picture is the code block that starts with the line "sees". Its lines:
  FOLDER: FOLDER...             the folder sees these, and what those see
  FOLDER => FOLDER...           the folder calls functions of these that include/quorva declares, resolved when the
                                module is loaded; a name stands for the rooms below it, too
  FOLDER | HEADER...            these are all that others than the folder's own rooms include of it
LISTING is what the build says: "folder NAME: FOLDER..." with the folders that a target links, then a line "object FILE"
for each of its objects. Compared with the picture are the arrows of the build, the includes of every file, and the
calls: the undefined symbols of a folder's objects that another folder's objects define. NM is the target's nm.
"""
import pathlib
import re
import subprocess
import sys


def read(path):
    return path.read_text(encoding="utf-8", errors="replace")


def closure(arrows):
    """All that each folder sees, directly or not."""
    seen = {}
    for folder in arrows:
        found, left = set(), list(arrows[folder])
        while left:
            other = left.pop()
            if other not in found:
                found.add(other)
                left += arrows.get(other, [])
        seen[folder] = found
    return seen


class Picture:
    def __init__(self, text):
        block = re.search(r"^```\nsees\n(.*?)^```", text, re.S | re.M)
        if not block:
            raise SystemExit('ARCHITECTURE.md has no code block that starts with "sees"')
        self.arrows = {}
        self.edges = []  # (from, to)
        self.faces = {}  # the headers that a folder shows to others
        for line in block.group(1).splitlines():
            if not line.strip() or line.startswith("#"):
                continue
            edge = re.fullmatch(r"(\S+)\s*=>\s*(.+)", line)
            arrow = re.fullmatch(r"([^\s:]+)\s*:\s*(.*)", line)
            face = re.fullmatch(r"(\S+)\s*\|\s*(.+)", line)
            if face:
                self.faces[face.group(1)] = face.group(2).split()
            elif edge:
                self.edges += [(edge.group(1), to) for to in edge.group(2).split()]
            elif arrow:
                self.arrows[arrow.group(1)] = arrow.group(2).split()
            else:
                raise SystemExit(f"ARCHITECTURE.md: cannot read the picture's line {line!r}")
        self.seen = closure(self.arrows)

    def problems(self):
        unknown = {other for others in self.arrows.values() for other in others} - set(self.arrows)
        unknown |= {name for edge in self.edges for name in edge
                    if not any(within(folder, name) for folder in self.arrows)}
        circles = [folder for folder in self.arrows if folder in self.seen[folder]]
        return [f"ARCHITECTURE.md: the picture has no folder {name}" for name in sorted(unknown)] + [
            f"ARCHITECTURE.md: {folder} sees itself in the picture" for folder in circles]

    def may_see(self, folder, other):
        return folder == other or other in self.seen.get(folder, ())

    def hides(self, folder, header):
        """Whether the header belongs to a folder that does not show it to this one."""
        return any(within(header, owner) and not within(folder, owner) and header not in shown
                   for owner, shown in self.faces.items())

    def may_call_over_the_edge(self, folder, other):
        return any(within(folder, source) and within(other, target) for source, target in self.edges)


def within(folder, name):
    return folder == name or folder.startswith(name + "/")


def build_listing(path):
    """(what each folder links, the objects of each folder)"""
    arrows, objects = {}, {}
    for line in read(path).splitlines():
        kind, _, rest = line.partition(" ")
        if kind == "folder":
            folder, _, sees = rest.partition(":")
            arrows[folder], objects[folder] = sees.split(), []
        elif kind == "object":
            objects[folder].append(rest)
    return arrows, objects


def check_build(picture, arrows):
    problems = []
    seen = closure(arrows)
    for folder in arrows:
        if folder not in picture.arrows:
            problems.append(f"ARCHITECTURE.md: the picture lacks the folder {folder}")
            continue
        for other in sorted(seen[folder] - picture.seen[folder]):
            problems.append(f"CMakeLists.txt: {folder} links {other}, which the picture does not let it see")
        for other in sorted((picture.seen[folder] & set(arrows)) - seen[folder]):
            problems.append(f"ARCHITECTURE.md: the picture lets {folder} see {other}, which it does not link")
    return problems


def owner_of(path, folders):
    """The folder or room that a path below src/ belongs to; None for a file of none."""
    owners = [folder for folder in folders if path.startswith(folder + "/")]
    return max(owners, key=len, default=None)


def check_includes(picture, root):
    problems = []
    files = sorted(path for top in ("src", "include") for path in (root / top).rglob("*")
                   if path.suffix in (".cpp", ".h"))
    for path in files:
        name = path.relative_to(root).as_posix()
        folder = owner_of(name.removeprefix("src/"), picture.arrows) if name.startswith("src/") else "include/quorva"
        if folder is None and path.name == "main.cpp":  # a program's start, beside the rooms that it is made of
            folder = max((room for room in picture.arrows if within(room, name.split("/")[1])),
                         key=lambda room: len(picture.seen[room]), default=None)
        if folder is None:
            problems.append(f"{name}: lies in no folder of the picture")
            continue
        for number, line in enumerate(read(path).splitlines(), 1):
            include = re.match(r'\s*#\s*include\s*"([^"]+)"', line)
            if not include or include.group(1).startswith("quorva/"):
                continue
            other = owner_of(include.group(1), picture.arrows)
            if other is None:
                problems.append(f'{name}:{number}: "{include.group(1)}" is named by no folder of the picture')
            elif not picture.may_see(folder, other):
                problems.append(f'{name}:{number}: {folder} includes "{include.group(1)}", but may not see {other}')
            elif picture.hides(folder, include.group(1)):
                problems.append(f'{name}:{number}: {folder} includes "{include.group(1)}", which is not for others')
    return problems


def symbols(nm, objects):
    """(defined for others to call, defined at all, {undefined: object})"""
    strong, defined, undefined = set(), set(), {}
    current = None
    listing = subprocess.run([nm, "-P", "-A", *objects], check=True, capture_output=True, text=True).stdout
    for line in listing.splitlines():
        current, _, rest = line.partition(": ")
        fields = rest.split()
        if len(fields) < 2:
            continue
        name, kind = fields[:2]
        if kind in "Uwv":
            undefined.setdefault(name, current)
        elif kind.isupper() or kind == "u":
            defined.add(name)
            if kind in "TDBRCSG":
                strong.add(name)
    return strong, defined, undefined


def declared_at_the_edge(root):
    """The names that the headers of include/quorva call functions or list as worksheet functions."""
    names = set()
    for path in (root / "include/quorva").glob("*.h"):
        text = re.sub(r"//.*", "", read(path))
        names |= set(re.findall(r"\b(\w+)\(", text)) | set(re.findall(r'"(QUORVA_\w+)"', text))
    return names


def check_calls(picture, objects, nm, root):
    missing = [name for folder in objects for name in objects[folder] if not pathlib.Path(name).exists()]
    if missing:
        return [f"not built, so its calls cannot be checked: {name}" for name in missing]
    table = {folder: symbols(nm, names) for folder, names in objects.items() if names}
    owner = {}
    for folder, (strong, _, _) in table.items():
        for name in strong:
            owner.setdefault(name, folder)
    edge = declared_at_the_edge(root)
    problems = []
    for folder, (_, defined, undefined) in table.items():
        for name, where in sorted(undefined.items()):
            other = owner.get(name)
            if other is None or name in defined or picture.may_see(folder, other):
                continue
            if name in edge and picture.may_call_over_the_edge(folder, other):
                continue
            source = pathlib.Path(where).name.removesuffix(".o").removesuffix(".obj")
            problems.append(f"src/{folder}/{source}: calls {readable(name)}, which {other} defines and {folder} may not see")
    return problems


def readable(name):
    return subprocess.run(["c++filt", name], check=False, capture_output=True, text=True).stdout.strip() or name


def main(source, listing, nm):
    root = pathlib.Path(source)
    picture = Picture(read(root / "ARCHITECTURE.md"))
    arrows, objects = build_listing(pathlib.Path(listing))
    problems = picture.problems() + check_build(picture, arrows) + check_includes(picture, root)
    problems += check_calls(picture, objects, nm, root)
    print("\n".join(problems))
    print(f"{len(arrows)} folders, {sum(map(len, objects.values()))} objects, {len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
