#!/usr/bin/env python3
"""Checks what a built module exports and imports.

usage: check_module.py exports|imports MODULE TOOL SOURCE_FOLDER

exports: exactly the names of the export list, in which every declared function is.
imports: Windows: XLCall32.dll by ordinal 3 alone, and otherwise only libraries that every 64-bit Windows has. Linux:
only the system's libraries, and Excel4v as the one name left to the process. TOOL is the target's objdump.
"""
import re
import subprocess
import sys

WINDOWS_LIBRARIES = {"kernel32.dll", "msvcrt.dll", "oleaut32.dll"}
LINUX_LIBRARIES = {"libstdc++.so.6", "libm.so.6", "libgcc_s.so.1", "libc.so.6", "libtbb.so.12",
                   "ld-linux-x86-64.so.2", "libasan.so.8", "libubsan.so.1"}
DECLARATIONS = ("include/quorva/front_end.h", "include/quorva/add_in.h", "include/quorva/automation.h",
                "src/numerics/law_table.h", "src/engine/field_registry.h", "src/engine/correlation_groups.h",
                "src/engine/latin_hypercube.h", "src/engine/correlated_draw.h", "src/control/checks.h",
                "src/stats/running_moments.h", "src/stats/descriptive.h", "src/results/summary.h",
                "src/results/matrices.h", "src/results/tornado.h", "src/results/sensitivity.h")


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def read(folder, name):
    with open(f"{folder}/{name}", encoding="utf-8") as file:
        return file.read()


def export_lists(folder, windows):
    """(exported on this target, every name in the file)"""
    catalogue = read(folder, "include/quorva/catalogue.h")
    lists = {"exported": [], "exported on Linux": []}
    for line in read(folder, "src/module/exports.txt").splitlines():
        if not line or line.startswith("#"):
            continue
        if line.startswith("["):
            section = lists[line.strip("[]")]
        elif line.startswith("worksheet functions of "):
            table = re.search(r" %s\{\{(.*?)\n\}\};" % line.split()[-1], catalogue, re.S).group(1)
            section += re.findall(r'"(QUORVA_\w+)"', table)
        else:
            section.append(line)
    names = [name for section in lists.values() for name in section]
    assert len(names) == len(set(names)), "a name is listed twice"
    exported = lists["exported"] + ([] if windows else lists["exported on Linux"])
    return set(exported), set(names)


def declared(folder):
    names = set()
    for header in DECLARATIONS:
        text = re.sub(r"//.*", "", read(folder, header))
        block = text[text.index('extern "C"'):]
        names |= set(re.findall(r"(\w+)\([^;{}]*\);", block))
    for line in read(folder, "tests/module/registrations.txt").splitlines():
        if not line.startswith("#"):
            names.add(line.split("|")[0])
    return names


def actual_exports(module, tool, windows):
    if windows:
        table = run(tool, "-p", module).split("[Ordinal/Name Pointer] Table")[1].split("\n\n")[0]
        return set(re.findall(r"\[ *\d+\](?: \+base\[ *\d+\] +\w+)? (\w+)", table))
    names = set()
    for line in run(tool, "-T", module).splitlines():
        if re.match(r"[0-9a-f]{16} ", line) and "*UND*" not in line:
            names.add(line.split()[-1])
    return names


def check_exports(module, tool, folder, windows):
    exported, listed = export_lists(folder, windows)
    actual = actual_exports(module, tool, windows)
    problems = [f"listed as exported but missing: {name}" for name in sorted(exported - actual)]
    problems += [f"exported but in no list: {name}" for name in sorted(actual - exported)]
    problems += [f"declared but in no list: {name}" for name in sorted(declared(folder) - listed)]
    print(f"{len(actual)} exported")
    return problems


def check_windows_imports(module, tool):
    problems = []
    text = run(tool, "-p", module)
    tables = re.split(r"DLL Name: ", text.split("The Import Tables")[1].split("The Export Tables")[0])[1:]
    names = [table.split("\n", 1)[0].strip() for table in tables]
    for name, table in zip(names, tables):
        if name.lower() == "xlcall32.dll":
            entries = [line.split() for line in table.split("\n\n")[0].splitlines()[2:]]
            if entries != [["8000000000000003", "000000003", "<none>"]]:
                problems.append(f"{name}: expected ordinal 3 alone, found {entries}")
        elif name.lower() not in WINDOWS_LIBRARIES:
            problems.append(f"imports {name}")
    if sum(name.lower() == "xlcall32.dll" for name in names) != 1:
        problems.append("does not import XLCall32.dll")
    print("imports", ", ".join(names))
    return problems


def check_linux_imports(module, tool):
    libraries = set(re.findall(r"NEEDED +(\S+)", run(tool, "-p", module)))
    problems = [f"needs {name}" for name in sorted(libraries - LINUX_LIBRARIES)]
    undefined = set()
    for line in run(tool, "-T", module).splitlines():
        fields = line.split()
        # A name without a version comes from no library.
        if "*UND*" in fields and " w " not in line and "(" not in line:
            undefined.add(fields[-1])
    # Neither have the names of TBB and of the sanitizers' libraries.
    undefined = {name for name in undefined if not name.startswith("_ZN3tbb")}
    sanitized = any("san.so" in name for name in libraries)
    if "Excel4v" not in undefined or (undefined != {"Excel4v"} and not sanitized):
        problems.append(f"left to the process: {', '.join(sorted(undefined)) or 'nothing'}; expected Excel4v")
    print("needs", ", ".join(sorted(libraries)))
    return problems


def main(what, module, tool, folder):
    windows = module.endswith(".xll")
    if what == "exports":
        problems = check_exports(module, tool, folder, windows)
    elif windows:
        problems = check_windows_imports(module, tool)
    else:
        problems = check_linux_imports(module, tool)
    print("\n".join(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
