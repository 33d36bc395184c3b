#!/usr/bin/env python3
"""Reads what the library is made of where it holds several instruction sets.

usage: objects_test.py OBJECT... --once OBJECT... --library LIBRARY --scheme SCHEME --nm PROGRAM --objdump PROGRAM

Each of the first objects, q_Mur_<set>, holds a set:
  - every name that it shows to the linker ends in the set's name, and without that is an exported one; where names cannot
    be hidden, in objects for Windows, it may be any other;
  - nothing in it is weak, common or in a group, any of which could be replaced by what another set defines;
  - it asks for nothing of another set;
  - it holds no state: nothing in it can be written, and nothing runs on load.
In the library, the functions of a set and those that are there once use no wider registers than they may.
"""

import argparse
import pathlib
import re
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "exports"))
from exports_test import load_tool, output_of  # noqa: E402

SETS = ["sse2", "v3", "v4"]
# What a set must not use. The words stand for registers; masks are called k0 to k7.
TOO_WIDE = {"sse2": r"%[yz]mm|%k[0-7]\b", "v3": r"%zmm|%k[0-7]\b", "v4": None}


class Symbols:
    """What nm says of an object: (letter, name) of each symbol that is no file's own."""

    def __init__(self, nm, path):
        fields = [line.split() for line in output_of(nm, "--extern-only", "--format=posix", path).splitlines()]
        self.all = [(field[1], field[0]) for field in fields if len(field) > 1]
        self.defined = [(letter, name) for letter, name in self.all if letter not in "Uw"]
        self.wanted = [name for letter, name in self.all if letter in "Uw"]


def set_of(path):
    return re.fullmatch(r"q_Mur_(\w+)\.o(bj)?", pathlib.Path(path).name).group(1)


def sections(objdump, path):
    """(name, size, flags) of each section."""
    text = output_of(objdump, "-h", path)
    found = re.findall(r"^ *\d+ (\S+) +([0-9a-f]{8,}) .*\n +(.*)$", text, re.MULTILINE)
    return [(name, int(size, 16), flags) for name, size, flags in found]


def complaints_about_object(arguments, path, exported):
    own = set_of(path)
    windows = path.endswith(".obj")
    symbols = Symbols(arguments.nm, path)
    shown = 0
    for letter, name in symbols.defined:
        base, _, suffix = name.rpartition(".")
        if suffix != own:
            yield f"{name} does not end in .{own}"
        if base in exported:
            shown += 1
        elif not windows:
            yield f"{name} is shown and not exported"
        if letter.upper() != letter or letter in "VWC":
            yield f"{name} is weak, unique or common ({letter})"
    if shown < 200:
        yield f"only {shown} exported functions"
    defined = {name for _, name in symbols.defined}
    for name in symbols.wanted:
        if name.rpartition(".")[2] in SETS and name not in defined:
            yield f"{name} is asked for and not here"
    for name, size, flags in sections(arguments.objdump, path):
        if "LINK_ONCE" in flags or "GROUP" in flags or name == ".group":
            yield f"{name} can be replaced: {flags}"
        writable = "ALLOC" in flags and "READONLY" not in flags
        if size and writable and not name.startswith(".data.rel.ro"):
            yield f"{name} can be written: {size} bytes"
        if size and re.match(r"\.(init|fini|ctors|dtors|tls|tdata|tbss|CRT)", name):
            yield f"{name} runs on load or belongs to a thread"


def complaints_about_code(objdump, path, every_set):
    """Of a set's object, or a library in which the functions bear their set's name, or none where they are there once."""
    function, own = None, None
    counts = dict.fromkeys(SETS, 0)
    told = set()
    text = output_of(objdump, "-d", "--no-show-raw-insn", path)
    for line in text.splitlines():
        if head := re.match(r"[0-9a-f]+ <(.+)>:$", line):
            function = head.group(1)
            suffix = re.search(r"\.(sse2|v3|v4)(\.|$)", function)
            own = suffix.group(1) if suffix else "sse2"
            counts[own] += 1
        elif own and TOO_WIDE[own] and function not in told and re.search(TOO_WIDE[own], line):
            told.add(function)
            yield f"{function} is wider than {own}: {line.strip()}"
    for name, count in counts.items():
        if every_set and count < 200:
            yield f"{path} has only {count} functions of {name}"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("objects", nargs="+")
    parser.add_argument("--once", nargs="+", required=True)
    parser.add_argument("--library", required=True)
    parser.add_argument("--scheme", required=True)
    parser.add_argument("--nm", required=True)
    parser.add_argument("--objdump", required=True)
    arguments = parser.parse_args()

    exported = {export.decorated[arguments.scheme] for export in load_tool().read_list()}
    exported |= {"_" + name for name in exported}
    faults = []
    if sorted(map(set_of, arguments.objects)) != SETS:
        faults.append(f"not the objects of {SETS}")
    names = {}
    for path in arguments.objects:
        faults += [f"{pathlib.Path(path).name}: {fault}" for fault in complaints_about_object(arguments, path, exported)]
        symbols = Symbols(arguments.nm, path)
        names[set_of(path)] = {name.rpartition(".")[0] for _, name in symbols.defined} & exported
    faults += [f"{own} does not define what sse2 does" for own in names if names[own] != names["sse2"]]
    for path in arguments.once:
        for _, name in Symbols(arguments.nm, path).defined:
            if name.rpartition(".")[2] in SETS:
                faults.append(f"{path}: {name} bears the name of a set")
        faults += [f"{pathlib.Path(path).name}: {fault}" for fault in complaints_about_code(arguments.objdump, path, False)]
    faults += list(complaints_about_code(arguments.objdump, arguments.library, True))

    print("\n".join(faults + [f"{len(names['sse2'])} functions for {len(names)} sets, {len(faults)} complaints"]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
