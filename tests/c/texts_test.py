#!/usr/bin/env python3
"""The header for C says what the subsystems' headers say at their beginnings, to the last line, and no line is longer
than theirs.

usage: texts_test.py HEADER HEADERS
"""

import pathlib
import re
import sys

COLUMNS = 120


def main():
    header, headers = map(pathlib.Path, sys.argv[1:])
    text = header.read_text(encoding="utf-8")
    said = "\n".join(line.lstrip("/ ") for line in text.split("\n"))
    faults = [f"longer than {COLUMNS}: {line}" for line in text.split("\n") if len(line) > COLUMNS]
    count = 0
    for subsystem in sorted(headers.glob("*.h")):
        if subsystem.stem in ("types", "checked"):  # the one is included, the other is of another library
            continue
        begin = re.match(r"/// \\file\n((?:///.*\n)+)", subsystem.read_text(encoding="utf-8"))[1]
        expected = f"{subsystem.stem}: " + "\n".join(line.lstrip("/ ") for line in begin.split("\n"))
        count += 1
        if expected not in said:
            faults.append(f"not in the header:\n{expected}")
    print("\n".join(faults))
    print(f"{count} subsystems")
    return 1 if faults or count < 10 else 0


if __name__ == "__main__":
    sys.exit(main())
