#!/usr/bin/env python3
"""Holds the catalogue against the list of exports: a row for each function and overload, in the header's order.

usage: catalogue_test.py Q_MUR_CATALOGUE
"""

import collections
import json
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
ARRAYS = ["iSin", "iCos", "iSqrt"]


def main():
    # Scenes that ask for private blocks leave them to the end of the process.
    environment = {**os.environ, "ASAN_OPTIONS": "detect_leaks=0"}
    command = [sys.argv[1], "--json"]
    printed = subprocess.run(command, env=environment, capture_output=True, text=True, check=True).stdout
    described = collections.Counter(ARRAYS)
    complaints = []
    for subsystem in json.loads(printed)["subsystems"]:
        header = (ROOT / "include" / "q_Mur" / f"{subsystem['name']}.h").read_text(encoding="utf-8")
        declared = re.findall(r"^Q_MUR_API [^;(]*?(\w+)\(", header, re.MULTILINE)
        rows = [function["name"] for function in subsystem["functions"]]
        aliases = [alias for function in subsystem["functions"] for alias in function["aliases"]]
        described.update(rows + aliases)
        if [name for name in declared if name not in aliases] != rows:
            complaints.append(f"{subsystem['name']}: the rows do not follow the header")
        for function in subsystem["functions"]:
            if not function["text"]:
                complaints.append(f"{function['name']} has no text in the header")
            if not re.match(r"[A-Z].*\.$", function["sentence"]):
                complaints.append(f"{function['name']} is not described by a sentence")

    signatures = re.findall(r"^(?![#\s]).*?(\w+)[(\[]", (ROOT / "exports" / "q_Mur.exports").read_text(), re.MULTILINE)
    exported = collections.Counter(signatures)
    complaints += [f"{name} is exported and has no row" for name in exported - described]
    complaints += [f"{name} has a row and is not exported" for name in described - exported]
    print("\n".join(complaints + [f"{sum(described.values())} exports, {len(complaints)} complaints"]))
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
