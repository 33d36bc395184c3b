#!/usr/bin/env python3
"""Holds the sources to the floors of the house: arrows go down only.

`base` includes public headers and itself, `walks` also `base`, and a subsystem of exported functions also `walks` and
its own headers. None of them calls the exported functions of another subsystem, but for the calls in ALLOWED.

With `--self-test` it is held against sources that break each of these rules.
"""

import pathlib
import re
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]

SUBSYSTEMS = "frame blit warp draw region filter math3d pipeline textured sprite".split()
FLOORS = {"base": ["base"], "walks": ["base", "walks"]}
FLOORS.update({subsystem: ["base", "walks", subsystem] for subsystem in SUBSYSTEMS})

PRIVATE_BLOCK = "the contract has a private block be one block of the manager's"
ONE_BODY = "a further name of the empty function, defined there"

# (file, exported function of another subsystem): the reason
ALLOWED = {
    ("frame/empty.cpp", "Blur_Parallelogram"): ONE_BODY,
    ("frame/empty.cpp", "Blur_Ring"): ONE_BODY,
    ("frame/empty.cpp", "i3DBltNear32"): ONE_BODY,
    ("pipeline/private_data.cpp", "FindNotUsedMemory"): PRIVATE_BLOCK,
    ("textured/private_data.cpp", "FindNotUsedMemory"): PRIVATE_BLOCK,
}

NOT_CODE = re.compile(
    r"""//[^\n]* | /\*.*?\*/ | "(?:\\.|[^"\\\n])*" | '(?:\\.|[^'\\\n])*'""", re.VERBOSE | re.DOTALL
)


def exported_functions(root):
    """The subsystem of each exported function, by its name."""
    subsystem_of = {}
    for subsystem in SUBSYSTEMS:
        header = (root / "include" / "q_Mur" / f"{subsystem}.h").read_text(encoding="utf-8")
        for name in re.findall(r"^Q_MUR_API [^;({]*?(\w+)\(", header, re.MULTILINE):
            subsystem_of[name] = subsystem
    return subsystem_of


def includes(text):
    """Line number and path of each header of the project that is included."""
    for number, line in enumerate(text.splitlines(), 1):
        if found := re.match(r'\s*#\s*include\s*(["<])([^">]+)[">]', line):
            if found[1] == '"' or found[2].split("/")[0] in FLOORS:
                yield number, found[2]


def calls(text, subsystem_of):
    """Line number and name wherever the code names an exported function."""
    code = NOT_CODE.sub(lambda match: re.sub(r"[^\n]", " ", match.group()), text)
    for number, line in enumerate(code.splitlines(), 1):
        for name in re.findall(r"\w+", line):
            if name in subsystem_of:
                yield number, name


def complaints(root, allowed):
    subsystem_of = exported_functions(root)
    source = root / "src"
    unused = set(allowed)
    for path in sorted(p for p in source.rglob("*") if p.suffix in (".cpp", ".h")):
        name = path.relative_to(source).as_posix()
        here = name.split("/")[0]
        if here not in FLOORS:
            yield f"{name}: there is no floor of that name"
            continue
        text = path.read_text(encoding="utf-8")
        for number, included in includes(text):
            own = (path.parent / included).is_file()
            target = here if own else included.split("/")[0]
            if ".." in included or (target not in FLOORS[here] and target != "q_Mur"):
                yield f"{name}:{number}: includes {included}, which is not below {here}"
        for number, function in calls(text, subsystem_of):
            if subsystem_of[function] == here:
                continue
            if (name, function) in allowed:
                unused.discard((name, function))
            else:
                yield f"{name}:{number}: calls {function} of {subsystem_of[function]}"
    for name, function in sorted(unused):
        yield f"{name} may call {function} and does not: take it off the list"


def self_test():
    """Each fault is found, and nothing else is."""
    sources = {
        "include/q_Mur/draw.h": "Q_MUR_API void drawn(int x,\n                     int y);\n",
        "include/q_Mur/warp.h": "Q_MUR_API int *warped(int x);\n",
        "src/base/low.h": '#include "walks/middle.h"\n#include "q_Mur/draw.h"\n',
        "src/walks/middle.h": '#include "base/low.h"\n#include "draw/own.h"\n',
        "src/draw/own.h": '#include <vector>\n#include <warp/own.h>\n#include "walks/middle.h"\n',
        "src/draw/calls.cpp": '#include "own.h"\n// warped(1)\nvoid drawn(int, int) { warped(\n"warped(2)"); }\n',
        "src/warp/reaches.cpp": '#include "draw/own.h"\n#include "../draw/own.h"\nint *warped(int) { drawn(1, 2); }\n',
        "src/warp/allowed.cpp": "auto f = drawn;\n",
        "src/attic/lost.cpp": "\n",
    }
    expected = [
        "attic/lost.cpp: there is no floor of that name",
        "base/low.h:1: includes walks/middle.h, which is not below base",
        "draw/calls.cpp:3: calls warped of warp",
        "draw/own.h:2: includes warp/own.h, which is not below draw",
        "walks/middle.h:2: includes draw/own.h, which is not below walks",
        "warp/reaches.cpp:1: includes draw/own.h, which is not below warp",
        "warp/reaches.cpp:2: includes ../draw/own.h, which is not below warp",
        "warp/reaches.cpp:3: calls drawn of draw",
        "warp/unused.cpp may call drawn and does not: take it off the list",
    ]
    with tempfile.TemporaryDirectory() as directory:
        root = pathlib.Path(directory)
        for name, text in sources.items():
            (root / name).parent.mkdir(parents=True, exist_ok=True)
            (root / name).write_text(text, encoding="utf-8")
        for subsystem in SUBSYSTEMS:
            (root / "include" / "q_Mur" / f"{subsystem}.h").touch()
        allowed = {("warp/allowed.cpp", "drawn"): "", ("warp/unused.cpp", "drawn"): ""}
        found = list(complaints(root, allowed))
    for line in sorted(set(expected) ^ set(found)):
        print(("found: " if line in found else "not found: ") + line)
    return found == expected


def main():
    if sys.argv[1:] == ["--self-test"]:
        return 0 if self_test() else 1
    functions = exported_functions(ROOT)
    listed = re.findall(r"^(?![#\s]).*?(\w+)\(", (ROOT / "exports" / "q_Mur.exports").read_text(), re.MULTILINE)
    found = list(complaints(ROOT, ALLOWED))
    undeclared = sorted(set(listed) - set(functions))
    found += [f"{name} is exported, but no header of a subsystem declares it" for name in undeclared]
    print("\n".join(found + [f"{len(found)} complaints"]))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
