#!/usr/bin/env python3
"""Counts the instructions that benchmarks take on SSE2, and compares them with those of counts.txt.

usage: counts.py [--accept] PROGRAM

PROGRAM is q_Mur_bench. What it runs from other files, memory functions and mathematics, is not counted: it depends on
the processor. A count that is further off than a tenth is a fault, a lower one, too, so that what is gained is not lost
unseen. --accept writes the counts down instead.
"""

import argparse
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

COUNTS = pathlib.Path(__file__).resolve().parent / "counts.txt"
BOUND = 0.1
SKIPPED = 77


def read_counts():
    """The lines before the counts, by what compiler and flags they were taken, and the counts by benchmark."""
    head, build, counts = [], "", {}
    for line in COUNTS.read_text(encoding="utf-8").splitlines():
        first, _, rest = line.strip().partition(" ")
        if first == "#":
            head.append(line)
        elif first == "built":
            build = rest
        else:
            counts[rest] = int(first)
    return head, build, counts


def build_of(program):
    """The compiler without its minor version, and its flags."""
    info = subprocess.run([program, "--info"], stdout=subprocess.PIPE, check=True, text=True).stdout
    said = dict(line.split(maxsplit=1) for line in info.splitlines() if " " in line)
    return re.sub(r"^(\S+ \d+)[\d.]*", r"\1", said["compiler"]) + " " + said["flags"]


def own_instructions(profile, program):
    """The benchmark that callgrind wrote a profile of, and the instructions that lie in the program's own file."""
    trigger, objects, is_own, is_inclusive, total = "", {}, False, False, 0
    for line in profile.read_text(encoding="utf-8").splitlines():
        if line.startswith("desc: Trigger: Client Request: "):
            trigger = line.split(": ", 3)[3]
        elif line.startswith(("ob=", "cob=")):
            number, _, name = line.split("=", 1)[1].partition(" ")
            if name:
                objects[number] = name
            if line.startswith("ob="):
                is_own = objects[number] == program
        elif line.startswith("calls="):
            is_inclusive = True  # the next line is the cost of what was called
        elif re.match(r"[\d+*-]", line):
            if is_own and not is_inclusive:
                total += int(line.split()[1])
            is_inclusive = False
    return trigger, total


def count(program, names):
    """Instructions by benchmark."""
    with tempfile.TemporaryDirectory() as directory:
        run = subprocess.run(
            [
                "valgrind",
                "--tool=callgrind",
                "--instr-atstart=no",
                f"--callgrind-out-file={directory}/profile",
                program,
                "--set",
                "sse2",
                "--count",
            ],
            input="\n".join(names) + "\n",
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
        )
        if run.returncode != 0:
            sys.exit(run.stdout)
        profiles = sorted(pathlib.Path(directory).glob("profile.*"))
        counts = dict(own_instructions(profile, program) for profile in profiles)
    for name in names:
        if not counts.get(name):
            sys.exit(f"nothing was counted of {name}")
    return counts


def main():
    parser = argparse.ArgumentParser(usage=__doc__.split("usage: ")[1].split("\n")[0])
    parser.add_argument("--accept", action="store_true")
    parser.add_argument("program", type=pathlib.Path)
    options = parser.parse_args()
    program = str(options.program.resolve())

    head, expected_build, expected = read_counts()
    build = build_of(program)
    if not shutil.which("valgrind"):
        print("valgrind is not installed")
        sys.exit(SKIPPED)
    if build != expected_build and not options.accept:
        print(f"the counts are of {expected_build}, and this is {build}")
        sys.exit(SKIPPED)
    counted = count(program, expected)

    width = max(map(len, expected))
    print(f"{'benchmark':<{width}} {'expected':>11} {'counted':>11} {'ratio':>7}")
    faults = 0
    for name, before in expected.items():
        ratio = counted[name] / before if before else float("inf")
        is_off = abs(ratio - 1) > BOUND
        faults += is_off
        print(f"{name:<{width}} {before:>11,} {counted[name]:>11,} {ratio:>7.3f}{'  <--' if is_off else ''}")
    if options.accept:
        lines = [f"{counted[name]:>10} {name}" for name in expected]
        COUNTS.write_text("\n".join([*head, f"built {build}", *lines]) + "\n", encoding="utf-8")
        print(f"written: {COUNTS}")
        return
    print(f"{len(expected) - faults} counts are within a tenth, {faults} are not.")
    if faults:
        print("If that is meant, ./bench --counts --accept writes them down.")
        sys.exit(1)


if __name__ == "__main__":
    main()
