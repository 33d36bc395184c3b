#!/usr/bin/env python3
"""Writes what the JavaScript package says of each function, from the catalogue.

usage: declarations.py CATALOGUE.json DIRECTORY

`signatures.js` tells the package how each argument is handed over, `functions.d.ts` tells an editor what it takes.
"""

import json
import pathlib
import sys
import textwrap

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "wasm"))
from exports import exports_of  # noqa: E402

# How an argument of a type is handed over, and what it is called in declarations.
NUMBERS = {
    "int": "number",
    "q_ulong": "number",
    "float": "number",
    "double": "number",
    "unsigned char": "byte",
    "unsigned short": "ushort",
}
ARRAYS = {
    "q_ulong": ("words", "Numbers<Uint32Array>"),
    "int": ("ints", "Numbers<Int32Array>"),
    "short": ("shorts", "Numbers<Int16Array>"),
    "unsigned char": ("bytes", "Numbers<Uint8Array>"),
    "float": ("floats", "Numbers<Float32Array>"),
    "_I3DMATRIX": ("floats", "Numbers<Float32Array>"),
}
RECORDS = {
    "tagRECT": "Rectangle",
    "tagPOINT": "Point",
    "_POINTINT": "Point",
    "_POINT3D": "Vector",
    "_POINT3DFLOAT": "Vector",
    "_I3DVECTOR": "Vector",
}
# Pixels are never copied.
PIXELS = {"destination", "source", "scratch", "plane"}
# What the library remembers beyond the call has to lie in the module's memory.
KEPT = {("bSetRegionFill", "planeRect"), ("SetRegionSrcFill", "planeRect")}
# Words that are no names of parameters in JavaScript.
RESERVED = {"in", "new", "function", "var", "with", "delete", "default"}


def pointee(type_name):
    """What a pointer or reference leads to; None for what is passed by value."""
    if type_name[-1] not in "*&":
        return None
    return type_name.rstrip("*& ").removeprefix("const ")


def passed(function, argument):
    """The word for signatures and the type for declarations of an argument."""
    type_name, kind = argument["type"], argument["kind"]
    if type_name in NUMBERS:
        return NUMBERS[type_name], "number"
    target = pointee(type_name)
    if target is None:
        return type_name, f"Records<{RECORDS[type_name]}>"
    if kind in PIXELS:
        word, declared = "memory", "Pixels" if target == "q_ulong" else "Memory"
    elif (function["name"], argument["name"]) in KEPT:
        word, declared = "memory", "Memory"
    elif kind == "text":
        word, declared = "text", "string | Memory"
    elif target in RECORDS:
        word, declared = target, f"Records<{RECORDS[target]}>"
    elif target in ARRAYS and kind != "unused":
        word, declared = ARRAYS[target]
    else:
        word, declared = "memory", "Memory"
    if kind == "unused" or argument.get("mayBeNull"):
        return f"{word}?", f"{declared} | null"
    return word, declared


def returned(type_name):
    if type_name == "void":
        return "void", "void"
    if type_name == "bool":
        return "bool", "boolean"
    if type_name == "q_ulong":
        return "uint", "number"
    if type_name in RECORDS:
        return type_name, f"Required<{RECORDS[type_name]}>"
    if type_name.endswith("*"):
        return "number", "Address"
    return "number", "number"


def signature(name, function):
    words = [f"{a['name']}:{passed(function, a)[0].replace(' ', '')}" for a in function["arguments"]]
    return f"    {name}: '{' '.join([returned(function['result'])[0], *words])}',\n"


def declaration(name, function):
    lines = [function["sentence"], *(["", *function["text"].splitlines()] if function["text"] else [])]
    comment = "".join(f"     * {line}".rstrip() + "\n" for line in lines).replace("*/", "* /").replace("\\", "@")
    parameters = ", ".join(f"{parameter_name(a)}: {passed(function, a)[1]}" for a in function["arguments"])
    head = "\n".join(
        textwrap.wrap(f"{name}({parameters}): {returned(function['result'])[1]};", 116, break_long_words=False,
                      initial_indent="    ", subsequent_indent="        ")
    )
    return f"\n    /**\n{comment}     */\n{head}\n"


def parameter_name(argument):
    return argument["name"] + ("_" if argument["name"] in RESERVED else "")


def main():
    source, directory = map(pathlib.Path, sys.argv[1:])
    catalogue = json.loads(source.read_text(encoding="utf-8"))
    exports = [(exported, function) for exported, _, function in exports_of(catalogue)]
    signatures = "".join(signature(*export) for export in exports)
    (directory / "signatures.js").write_text(
        f"// What each function returns and takes.\nexport const signatures = {{\n{signatures}}};\n", encoding="utf-8"
    )
    declarations = "".join(declaration(*export) for export in exports)
    imports = "import type { Address, Memory, Numbers, Pixels, Point, Records, Rectangle, Vector } from './index.js';\n"
    (directory / "functions.d.ts").write_text(
        f"{imports}\n/** The library's functions. An overload has a word behind its name. */\n"
        f"export interface Functions {{{declarations}}}\n",
        encoding="utf-8",
    )


if __name__ == "__main__":
    main()
