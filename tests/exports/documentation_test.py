#!/usr/bin/env python3
"""Reports every exported function and array whose declaration has no documentation of its own.

The text must stand directly above the declaration in `///` lines and hold at least one sentence: a section's head or a
mere list of parameters is none. The declarations found are held against the list of exports, so that none is missed.
"""

import collections
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]


def declarations(lines):
    """Line number and name of each exported declaration."""
    for number, line in enumerate(lines):
        if re.match(r"(extern )?Q_MUR_API ", line):
            name = re.search(r"(\w+)[(\[]", "".join(lines[number : number + 2]))
            yield number, name.group(1)


def documentation_above(lines, number):
    above = []
    while number > 0 and re.match(r"///(?!<)", lines[number - 1]):
        number -= 1
        above.insert(0, lines[number][3:].strip())
    return above


def has_a_sentence(text):
    commands = re.compile(r"@[{}]|[\\@](name|file|param|return)\b")
    return any(re.search(r"\w+ \w+", line) for line in text if not commands.match(line))


def main():
    found = collections.Counter()
    failures = []
    for header in sorted((ROOT / "include" / "q_Mur").glob("*.h")):
        lines = header.read_text(encoding="utf-8").splitlines()
        for number, name in declarations(lines):
            found[name] += 1
            if not has_a_sentence(documentation_above(lines, number)):
                failures.append(f"{header.relative_to(ROOT)}:{number + 1}: {name} has no documentation")

    signatures = re.findall(r"^(?![#\s]).*?(\w+)[(\[]", (ROOT / "exports" / "q_Mur.exports").read_text(), re.MULTILINE)
    listed = collections.Counter(signatures)
    failures += [f"{name} is in the list of exports but was not found in a header" for name in listed - found]
    failures += [f"{name} was found in a header but is not in the list of exports" for name in found - listed]
    print("\n".join(failures + [f"{sum(found.values())} declarations, {len(failures)} complaints"]))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
