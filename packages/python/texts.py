#!/usr/bin/env python3
"""Writes what Python says of each function: the texts that the module carries, and the types for those who check them.

usage: texts.py CATALOGUE.json TEXTS.inc STUBS.pyi
"""

import json
import pathlib
import re
import sys
import textwrap

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "wasm"))
from exports import exports_of  # noqa: E402

ROWS = {"destination", "source", "scratch", "plane"}
BLOCKS = {"_PRIVATE_QMGL_DATA", "_PRIVATE_QM3D_DATA", "_PRIVATE_QMGP_DATA", "_PRIVATE_LUT_DATA"}
ARRAYS = {
    "q_ulong": "_UInt32Array",
    "int": "_Int32Array",
    "_POINTINT": "_Int32Array",
    "_POINT3D": "_Int32Array",
    "float": "_Float32Array",
    "_POINT3DFLOAT": "_Float32Array",
    "_I3DVECTOR": "_Float32Array",
    "_I3DMATRIX": "_Float32Array",
    "short": "_Int16Array",
    "unsigned char": "_UInt8Array",
}
RECORDS = {"_POINT3DFLOAT": "float", "_I3DVECTOR": "float", "_POINT3D": "int"}

STUBS = '''\
"""q_Mur: functions that draw into NumPy arrays. This file is generated."""

from typing import Any, Sequence, Tuple, Union, final

import numpy as np
from numpy.typing import NDArray

__version__: str
iSin: memoryview
iCos: memoryview
iSqrt: memoryview

@final
class Framed:
    """A surface whose pixel (0, 0) is array[top, left]. What lies around it may be read and written."""

    def __init__(self, array: Union[NDArray[np.uint32], NDArray[np.uint8]], left: int, top: int) -> None: ...

@final
class Record:
    """The host's record. Its blocks live as long as it does."""

    def __init__(
        self,
        planeElements: int = ...,
        originElement: int = ...,
        vertexArrayEntries: int = ...,
        matrixStackDepth: int = ...,
    ) -> None: ...

@final
class Block:
    """A block of a Record."""

    @property
    def address(self) -> int: ...

_Surface = Union[NDArray[np.uint32], NDArray[np.uint8], Framed]
_Plane = Union[NDArray[np.uint8], Framed]
_Rect = Union[Tuple[int, int, int, int], Sequence[int], NDArray[np.integer[Any]]]
_Point = Union[Tuple[int, int], Sequence[int], NDArray[np.integer[Any]]]
_UInt32Array = NDArray[np.uint32]
_Int32Array = NDArray[np.int32]
_Float32Array = NDArray[np.float32]
_Int16Array = NDArray[np.int16]
_UInt8Array = NDArray[np.uint8]
'''


def type_of(argument):
    written = re.sub(r"\bconst\b", "", argument["type"]).strip()
    pointed = written.rstrip("*& ")
    if written in ("float", "double"):
        return "float"
    if pointed == "tagRECT":
        return "_Rect"
    if pointed == "tagPOINT":
        return "_Point"
    if written == pointed:
        return "int"
    if pointed == "_TRANSFERDATA":
        return "Record"
    if pointed in BLOCKS:
        return "Block"
    if pointed == "char":
        return "Union[str, bytes]"
    if pointed == "HINSTANCE__":
        return "None"
    if argument["kind"] in ROWS:
        return "_Surface" if pointed == "q_ulong" else "_Plane"
    return ARRAYS[pointed]


def result_of(function):
    result = function["result"]
    if result.endswith("*"):
        return "Block"
    if result in RECORDS:
        return f"Tuple[{', '.join([RECORDS[result]] * 3)}]"
    return {"void": "None", "bool": "bool", "float": "float", "double": "float"}.get(result, "int")


def is_optional(argument):
    return argument["kind"] == "unused" or argument.get("mayBeNull", False)


def parameters_of(function):
    """Names, types and whether they may be left out. Pitches are those of the arrays."""
    visible = [a for a in function["arguments"] if a["kind"] != "pitch"]
    for index, argument in enumerate(visible):
        kind = type_of(argument)
        # Only what has nothing but optional arguments behind it has a value in the signature.
        ends = all(is_optional(each) for each in visible[index:])
        if is_optional(argument) and kind != "None":
            kind = f"Union[{kind}, None]"
        yield argument["name"], kind, ends


def text_of(function):
    """The header's text in words of Python."""
    text = re.sub(r"\\param (\w+)", r"\1:", function["text"])
    text = re.sub(r"\\return ", "Returns ", text)
    return re.sub(r"#(\w+)", r"\1", text).replace("\\", "\\\\")


def stub(name, function):
    parameters = ", ".join(f"{n}: {kind}{' = ...' if ends else ''}" for n, kind, ends in parameters_of(function))
    text = textwrap.indent(text_of(function).replace('"""', "'''"), "    ").strip()
    return f'\ndef {name}({parameters}) -> {result_of(function)}:\n    """{text}"""\n'


def text(name, function):
    signature = ", ".join(f"{n}=None" if ends else n for n, _, ends in parameters_of(function))
    whole = json.dumps(f"{name}({signature})\n--\n\n{text_of(function)}", ensure_ascii=False)
    return f'{{"{name}", {whole}}},\n'


def main():
    source, texts, stubs = map(pathlib.Path, sys.argv[1:])
    catalogue = json.loads(source.read_text(encoding="utf-8"))
    exports = [(exported, function) for exported, _, function in exports_of(catalogue)]
    texts.write_text("".join(text(*each) for each in exports), encoding="utf-8")
    stubs.write_text(STUBS + "".join(stub(*each) for each in exports), encoding="utf-8")


if __name__ == "__main__":
    main()
