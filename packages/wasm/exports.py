#!/usr/bin/env python3
"""Writes the source that exports each function of the catalogue under a plain name.

usage: exports.py CATALOGUE.json OUTPUT.cpp

The name is the function's own; an overload has the catalogue's word behind it, as in iBltFast32_Add_scaled.
"""

import json
import pathlib
import re
import sys


def plain_name(function, name=None):
    """The name of a function of the catalogue, or of one of its further names."""
    return re.sub(r"\W", "_", "_".join(filter(None, [name or function["name"], function.get("overload")])))


def exports_of(catalogue):
    """Each exported name, the function that it calls, and what the catalogue says of it."""
    for subsystem in catalogue["subsystems"]:
        for function in subsystem["functions"]:
            for name in [function["name"], *function["aliases"]]:
                yield plain_name(function, name), name, function


def definition(exported, name, function):
    arguments = function["arguments"]
    parameters = ", ".join(f"{a['type']} {a['name']}" for a in arguments)
    call = f"{name}({', '.join(a['name'] for a in arguments)})"
    return (
        f'__attribute__((export_name("{exported}"))) {function["result"]} '
        f"q_MurExported_{exported}({parameters}) {{\n    return {call};\n}}\n"
    )


def main():
    source, output = map(pathlib.Path, sys.argv[1:])
    exports = list(exports_of(json.loads(source.read_text(encoding="utf-8"))))
    if len({exported for exported, _, _ in exports}) != len(exports):
        sys.exit("two functions would be exported under one name")
    definitions = "\n".join(definition(*export) for export in exports)
    output.write_text(f'#include <q_Mur.h>\n\nextern "C" {{\n\n{definitions}\n}}\n', encoding="utf-8")


if __name__ == "__main__":
    main()
