#!/usr/bin/env python3
"""The library for C shows what its header declares and nothing else, and every function of the list of exports is there.

usage: names_test.py LIBRARY HEADER EXPORTS READER

READER is nm for shared objects, objdump for DLLs.
"""

import collections
import pathlib
import re
import subprocess
import sys


def shown_by(reader, library):
    if library.endswith(".dll"):
        text = subprocess.run([reader, "-p", library], capture_output=True, text=True, check=True).stdout
        names = re.split(r"^\[Ordinal/Name Pointer\] Table.*$", text, flags=re.MULTILINE)[1]
        return set(re.findall(r"^\t\[ *\d+\] (?:\+base\[ *\d+\] +[0-9a-f]+ )?(\S+)$", names, flags=re.MULTILINE))
    command = [reader, "-D", "--defined-only", "--format=posix", library]
    text = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    # The linker's own marks, where a target has them.
    return {line.split()[0] for line in text.splitlines()} - {"_init", "_fini"}


def main():
    library, header, exports, reader = sys.argv[1:]
    text = pathlib.Path(header).read_text(encoding="utf-8")
    declared = re.findall(r"^Q_MUR_C_API [^(]*?(\w+)\(", text, re.MULTILINE)
    listed = re.findall(r"^[^# ].*[ *&](\w+)\(", pathlib.Path(exports).read_text(encoding="utf-8"), re.MULTILINE)
    shown = shown_by(reader, library)
    faults = [f"{name} is declared and not shown" for name in sorted(set(declared) - shown)]
    faults += [f"{name} is shown and not declared" for name in sorted(shown - set(declared))]
    if len(declared) != len(set(declared)) or len(declared) != len(listed):
        faults.append(f"{len(declared)} declarations, {len(listed)} functions in the list")
    # An overload begins with the name that it has in C++.
    for name, count in collections.Counter(listed).items():
        found = [plain for plain in declared if plain == name or (plain.startswith(name + "_") and plain not in listed)]
        if name not in declared or len(found) < count:
            faults.append(f"{name} has {len(found)} declarations instead of {count}")
    for fault in faults:
        print(fault)
    print(f"{len(declared)} functions")
    return 1 if faults or not declared else 0


if __name__ == "__main__":
    sys.exit(main())
