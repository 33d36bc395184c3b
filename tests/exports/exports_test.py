#!/usr/bin/env python3
"""Compares a built library with the list of exports.

usage: exports_test.py symbols LIBRARY SCHEME... --reader PROGRAM [--further NAME...]
           the library shows the list, further names, and nothing else
       exports_test.py defined ARCHIVE SCHEME... --reader PROGRAM [--prefix CHARACTER]
           the static library defines all of the list; symbols of the platform may begin with a character more
       exports_test.py one-body LIBRARY SCHEME... --reader PROGRAM --names NAME... [--apart NAME...]
           all the names are one function, and those named apart are others
       exports_test.py imports LIBRARY --reader PROGRAM
           the DLL needs no other DLLs but the system's
       exports_test.py count LIBRARY SCHEME... --reader PROGRAM
           the library shows the whole interface: so many functions and so many arrays

PROGRAM is nm for shared objects and archives, objdump for DLLs. A NAME stands for all overloads of it unless its
parameters stand behind it, as in the list.
"""

import argparse
import importlib.machinery
import importlib.util
import pathlib
import re
import subprocess
import sys

FUNCTIONS, ARRAYS = 257, 3
SYSTEM_DLLS = {"kernel32.dll", "msvcrt.dll", "user32.dll", "gdi32.dll"}


def load_tool():
    sys.dont_write_bytecode = True
    path = pathlib.Path(__file__).resolve().parents[2] / "tools" / "exports"
    loader = importlib.machinery.SourceFileLoader("exports", str(path))
    tool = importlib.util.module_from_spec(importlib.util.spec_from_loader("exports", loader))
    loader.exec_module(tool)
    return tool


def output_of(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def dll_addresses(reader, library):
    """The address of each exported name, from objdump's picture of the export tables."""
    text = output_of(reader, "-p", library)
    _, table, names = re.split(r"^Export Address Table.*$|^\[Ordinal/Name Pointer\] Table.*$", text, flags=re.MULTILINE)
    addresses = dict(re.findall(r"\[ *(\d+)\] \+base\[ *\d+\] +([0-9a-f]+) Export RVA", table))
    # Newer versions print ordinal and hint before the name.
    named = re.findall(r"^\t\[ *(\d+)\] (?:\+base\[ *\d+\] +[0-9a-f]+ )?(\S+)$", names, flags=re.MULTILINE)
    return {name: addresses[index] for index, name in named}


def object_addresses(reader, library):
    """The address of each name that a shared object shows."""
    lines = output_of(reader, "-D", "--defined-only", "--format=posix", library).splitlines()
    return {name: address for name, _, address, *_ in map(str.split, lines)}


def shown_addresses(arguments):
    read = dll_addresses if arguments.library.endswith(".dll") else object_addresses
    addresses = read(arguments.reader, arguments.library)
    if not addresses:
        sys.exit(f"{arguments.library} shows no names at all")
    return addresses


def check_symbols(arguments, exports):
    shown = set(shown_addresses(arguments))
    listed = {export.decorated[scheme] for export in exports for scheme in arguments.schemes} | set(arguments.further)
    for name in sorted(listed - shown):
        print(f"not shown: {name}")
    for name in sorted(shown - listed):
        print(f"shown but not in the list: {name}")
    print(f"{len(shown)} names shown, {len(listed)} in the list")
    return 0 if shown == listed else 1


def check_defined(arguments, exports):
    lines = output_of(arguments.reader, "--defined-only", "--format=posix", arguments.library).splitlines()
    defined = {line.split()[0] for line in lines if len(line.split()) > 2}
    listed = {arguments.prefix + export.decorated[scheme] for export in exports for scheme in arguments.schemes}
    for name in sorted(listed - defined):
        print(f"not defined: {name}")
    print(f"{len(listed & defined)} names defined, {len(listed)} in the list")
    return 0 if listed <= defined else 1


def check_one_body(arguments, exports):
    addresses = shown_addresses(arguments)

    def bodies_of(name):
        """The addresses of all overloads of a name, by signature."""
        bodies = {}
        for export in exports:
            if name == export.name or re.search(rf"\b{re.escape(name)}$", export.signature):
                found = {addresses.get(export.decorated[scheme]) for scheme in arguments.schemes}
                if len(found) != 1 or None in found:
                    sys.exit(f"{export.signature} is not at one address under all its decorations")
                bodies[export.signature] = found.pop()
        return bodies

    found = {name: bodies_of(name) for name in arguments.names + arguments.apart}
    for bodies in found.values():
        for signature, address in bodies.items():
            print(f"{address} {signature}")
    one = {address for name in arguments.names for address in found[name].values()}
    if len(one) > 1:
        print(f"not one function: {', '.join(arguments.names)}")
        return 1
    for name in arguments.apart:
        if not one.isdisjoint(found[name].values()):
            print(f"not a function of its own: {name}")
            return 1
    absent = [name for name, bodies in found.items() if not bodies]
    if absent:
        print(f"not in the list: {', '.join(absent)}")
        return 1
    return 0


def check_imports(arguments):
    needed = re.findall(r"DLL Name: (\S+)", output_of(arguments.reader, "-p", arguments.library))
    print("needs", *needed)
    if not needed:
        sys.exit("no imports found, which no DLL of ours is without")
    return 0 if {name.lower() for name in needed} <= SYSTEM_DLLS else 1


def check_count(arguments, exports, is_array):
    """Each entry of the list is one thing at one address, whatever number of decorations it bears there."""
    addresses = shown_addresses(arguments)
    shown = [export for export in exports if all(export.decorated[scheme] in addresses for scheme in arguments.schemes)]
    arrays = sum(map(is_array, shown))
    functions = len(shown) - arrays
    print(f"{functions} functions and {arrays} arrays shown, of {FUNCTIONS} and {ARRAYS}")
    print(f"{len(exports)} names in the list")
    return 0 if (functions, arrays, len(exports)) == (FUNCTIONS, ARRAYS, FUNCTIONS + ARRAYS) else 1


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("check", choices=["symbols", "defined", "one-body", "imports", "count"])
    parser.add_argument("library")
    parser.add_argument("schemes", nargs="*")
    parser.add_argument("--reader", required=True)
    parser.add_argument("--prefix", default="")
    parser.add_argument("--further", nargs="+", default=[])
    parser.add_argument("--names", nargs="+", default=[])
    parser.add_argument("--apart", nargs="+", default=[])
    arguments = parser.parse_args()
    if arguments.check == "imports":
        return check_imports(arguments)
    tool = load_tool()
    if arguments.check == "count":
        return check_count(arguments, tool.read_list(), tool.is_array)
    checks = {"symbols": check_symbols, "defined": check_defined, "one-body": check_one_body}
    return checks[arguments.check](arguments, tool.read_list())


if __name__ == "__main__":
    sys.exit(main())
