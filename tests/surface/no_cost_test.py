#!/usr/bin/env python3
"""Compiles calls through q_Mur/surface.hpp and the flat ones beside them, and compares the instructions of both.

usage: no_cost_test.py COMPILER [FLAG ...]

What counts is how many instructions of each kind there are, and what is called: their order and the places on the stack
are the compiler's to choose, and whether 16 bytes of a constant lie aligned. With checks the code must differ: a
comparison that finds no difference there would find none anywhere.
"""

import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
SOURCE = ROOT / "tests" / "surface" / "no_cost.cpp"
NAMES = ("fill", "copy", "enlarge")


def assembly(compiler, *more):
    command = [*compiler, "-std=c++20", "-O2", f"-I{ROOT / 'include'}", "-S", "-o", "-", *more, str(SOURCE)]
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout


def instructions(text, name):
    """The kinds of those between a function's label and the next function's, and the names that are called."""
    body = re.search(rf"^_?{name}:.*?\n(.*?)(?=^[^\s.#][^\n]*:|\Z)", text, re.DOTALL | re.MULTILINE)
    lines = [re.split(r"\s[#@]|//", line)[0] for line in body[1].splitlines()]
    kinds = []
    for line in lines:
        if re.match(r"\s+[a-z]", line):
            kind, *operands = line.split()
            if re.match(r"mov[qlx]?$|lea", kind) and re.search(r"%[er]sp, %|%[er]bp, %", line):
                kind = "the address of a place on the stack"
            is_call = re.match(r"call|jmp|bl?$", kind)
            kinds.append(line.strip() if is_call else re.sub(r"mov[au]p[sd]|movdq[au]", "16 bytes", kind))
    return sorted(kinds)


def main():
    compiler = sys.argv[1:]
    complaints = []
    for option, are_equal in (("-DNDEBUG", True), ("-DQ_MUR_SURFACE_CHECKED=1", False)):
        text = assembly(compiler, option)
        for name in NAMES:
            comfortable, flat = (instructions(text, f"{name}_{kind}") for kind in ("comfortable", "flat"))
            print(f"{name} with {option}: {len(comfortable)} instructions, and {len(flat)} of the flat call")
            # an empty body compares with anything
            if len(flat) < 5 or (comfortable == flat) != are_equal:
                complaints.append(f"{name} with {option}:\n" + "\n".join(comfortable + ["", *flat]))
    print("\n".join(complaints))
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
