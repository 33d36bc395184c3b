#!/usr/bin/env python3
"""Writes the header for C and the source of the functions that it declares.

usage: bindings.py CATALOGUE.json HEADERS HEADER SOURCE

The names are those that the module for WebAssembly exports. HEADERS is where the public headers stand: what is no
function comes from there, the records' names and the tables.
"""

import json
import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "wasm"))
from exports import plain_name  # noqa: E402

COLUMNS = 120

BEGIN = """\
/// \\file
/// The interface for C: each function of q_Mur under a plain name. A function has its own name; an overload has a word
/// behind it that tells it from the others: `iBltFast32_Add` and `iBltFast32_Add_scaled`. Where C++ takes a reference,
/// a pointer stands here. A host links this library and q_Mur itself. C++ has `q_Mur.h`; the two headers do not go
/// together.
///
/// This file is generated.
#ifndef Q_MUR_C_H
#define Q_MUR_C_H

#ifndef __cplusplus
#include <stdbool.h>

// C knows a record by its tag alone.
RECORDS
#endif

#include "q_Mur/types.h"

#if defined(_WIN32) && defined(Q_MUR_C_BUILDS_ITSELF) && !defined(Q_MUR_STATIC)
#define Q_MUR_C_API __declspec(dllexport)
#else
#define Q_MUR_C_API Q_MUR_API
#endif

#ifdef __cplusplus
extern "C" {
#endif
"""

END = """
#ifdef __cplusplus
}
#endif

#endif
"""


def c_type(written):
    return written.replace("&", "*")


def declaration(result, name, parameters):
    """A declaration that is broken where a line is full."""
    head = f"Q_MUR_C_API {result}{'' if result.endswith('*') else ' '}{name}("
    lines, line = [], head
    for index, parameter in enumerate(parameters or ["void"]):
        last = index + 1 >= len(parameters)
        piece = parameter + (");" if last else ",")
        joined = line + piece if line.endswith("(") or not line.strip() else f"{line} {piece}"
        if len(joined) > COLUMNS and not line.endswith("("):
            lines.append(line)
            joined = " " * min(len(head), 40) + piece
        line = joined
    return "\n".join([*lines, line])


def comment(text, slashes="///"):
    return "\n".join(f"{slashes} {line}".rstrip() for line in text.split("\n"))


def tables(frame):
    """The tables' texts and declarations."""
    for text, declared in re.findall(r"((?:^///.*\n)+)^extern Q_MUR_API (.+;)", frame, re.MULTILINE):
        yield f"{text}extern Q_MUR_API {declared}"


def joined(kind, name):
    return f"{kind}{'' if kind.endswith('*') else ' '}{name}"


def records(types):
    for name in dict.fromkeys(re.findall(r"^struct (\w+)", types, re.MULTILINE)):
        yield f"typedef struct {name} {name};"


def header_of(catalogue, types, frame):
    pieces = [BEGIN.replace("RECORDS", "\n".join(records(types)))]
    for subsystem in catalogue["subsystems"]:
        pieces.append(f"{comment(subsystem['name'] + ': ' + subsystem['about'], '//')}\n")
        group = None
        for function in subsystem["functions"]:
            if function["group"] != group:
                group = function["group"]
                about = f"\n{comment(function['groupText'])}" if function["groupText"] else ""
                pieces.append(f"/// \\name {group}{about}\n")
                if group == "Tables":
                    pieces += ["#ifndef Q_MUR_C_BUILDS_ITSELF", *tables(frame), "#endif\n"]
            parameters = [joined(c_type(a["type"]), a["name"]) for a in function["arguments"]]
            declared = declaration(function["result"], plain_name(function), parameters)
            pieces.append(f"{comment(function['text'])}\n{declared}\n")
            for alias in function["aliases"]:
                declared = declaration(function["result"], plain_name(function, alias), parameters)
                pieces.append(f"/// Same as {plain_name(function)}().\n{declared}\n")
    return "\n".join(pieces) + END


def definitions(catalogue):
    for subsystem in catalogue["subsystems"]:
        for function in subsystem["functions"]:
            for name in [function["name"], *function["aliases"]]:
                arguments = function["arguments"]
                parameters = ", ".join(joined(c_type(a["type"]), a["name"]) for a in arguments)
                passed = ", ".join(("*" if "&" in a["type"] else "") + a["name"] for a in arguments)
                yield (
                    f"{joined(function['result'], plain_name(function, name))}({parameters}) {{\n"
                    f"    return ::{name}({passed});\n}}\n"
                )


def source_of(catalogue):
    body = "\n".join(definitions(catalogue))
    return (
        "#include <q_Mur.h>\n\n"
        "// The plain names and the exported ones meet nowhere but here.\n"
        "namespace plainNames {\n\n#include \"q_Mur_c.h\"\n\n"
        f'extern "C" {{\n\n{body}\n}}\n\n}} // namespace plainNames\n'
    )


def main():
    catalogue, headers, header, source = map(pathlib.Path, sys.argv[1:])
    described = json.loads(catalogue.read_text(encoding="utf-8"))
    header.parent.mkdir(parents=True, exist_ok=True)
    types, frame = ((headers / name).read_text(encoding="utf-8") for name in ("types.h", "frame.h"))
    header.write_text(header_of(described, types, frame), encoding="utf-8")
    source.write_text(source_of(described), encoding="utf-8")


if __name__ == "__main__":
    main()
