#!/usr/bin/env python3
"""Python's calls leave the bytes that native ones leave, in seeded cases of every function.

usage: cases_test.py CASES_LIBRARY CATALOGUE.json [--cases N] [--shard I/N] [--only NAME] [--case NUMBER]

The cases are those of the test program. The library draws a case's arguments and makes the call on a copy; here they
become arrays, records and numbers, and what the call leaves in them is handed back and compared.
"""

import argparse
import ctypes
import json
import pathlib
import struct
import sys
import warnings

import numpy as np
import q_mur

NOTHING, NUMBER, RECT, POINT, PLANE, PIPELINE, TEXTURED, REGION, PHASE = range(9)
MAKERS = {
    PIPELINE: "GetPrivate_QMGL_Data",
    TEXTURED: "GetPrivate_QM3D_Data",
    REGION: "GetPrivate_QMGP_Data",
    PHASE: "GetPrivate_LUT_Data",
}
ROWS = {"destination", "source", "scratch", "plane"}
FLOATS = {"float", "_POINT3DFLOAT", "_I3DVECTOR", "_I3DMATRIX"}
RESULTS = {"int": "<i", "q_ulong": "<I", "float": "<f", "double": "<d", "bool": "<?"}

# What is the host's or the process's own.
LEFT_OUT = {
    "SetSpriteDir": "it changes where all later calls look",
    "LoadBitmap24": "it reads a file that another process would have to write",
}


class PlaneInfo(ctypes.Structure):
    _fields_ = [
        ("memory", ctypes.c_void_p),
        ("bytes", ctypes.c_size_t),
        ("origin", ctypes.c_ssize_t),
        ("elementBytes", ctypes.c_int),
        ("pitch", ctypes.c_int),
    ]


def load(path):
    library = ctypes.CDLL(path)
    library.rowName.restype = library.difference.restype = ctypes.c_char_p
    library.valueNumber.restype = ctypes.c_double
    library.valuePlane.restype = PlaneInfo
    return library


def dtype_of(written):
    pointed = written.replace("const ", "").rstrip("*& ")
    if pointed in FLOATS:
        return np.float32
    return {"q_ulong": np.uint32, "short": np.int16, "unsigned char": np.uint8, "char": np.uint8}.get(pointed, np.int32)


class Case:
    """One call, made on arrays of Python's own."""

    def __init__(self, library, function, seed):
        self.library, self.function, self.seed = library, function, seed
        self.memories = {}  # by the address of what they are copies of
        self.blocks = []

    def memory_of(self, info):
        found = self.memories.get(info.memory)
        if found is None:
            found = np.frombuffer(ctypes.string_at(info.memory, info.bytes), np.uint8).copy()
            self.memories[info.memory] = found
        return found

    def surface(self, info, argument):
        is_pixels = argument["type"] == "q_ulong *"
        pitch = info.pitch if is_pixels else info.pitch * info.elementBytes
        rows = self.memory_of(info).view(np.uint32 if is_pixels else np.uint8).reshape(-1, pitch)
        if is_pixels and self.seed % 2 == 1:
            rows = rows.view(np.uint8).reshape(len(rows), pitch, 4)
        top, left = divmod(info.origin // (4 if is_pixels else 1), pitch)
        return q_mur.Framed(rows, left, top) if left or top else rows

    def block(self, index, kind):
        shape = (ctypes.c_int * 4)()
        self.library.blockShape(index, shape)
        record = q_mur.Record(*shape)
        block = getattr(q_mur, MAKERS[kind])(record, 0)
        self.library.fillBlock(index, ctypes.c_void_p(block.address))
        self.blocks.append((index, block))
        return block

    def value(self, index, argument):
        kind = self.library.valueKind(index)
        if kind == NUMBER and "*" in argument["type"]:
            return None
        if kind == NUMBER:
            number = self.library.valueNumber(index)
            return number if argument["type"] in ("float", "double") else int(number)
        if kind in (RECT, POINT):
            words = (ctypes.c_int * 4)()
            self.library.valueWords(index, words)
            return tuple(words[: 4 if kind == RECT else 2])
        if kind == PLANE:
            info = self.library.valuePlane(index)
            if argument["kind"] == "text":
                return self.memory_of(info)[info.origin :].tobytes().split(b"\0")[0]
            if argument["kind"] in ROWS:
                return self.surface(info, argument)
            return self.memory_of(info)[info.origin :].view(dtype_of(argument["type"]))
        return None if kind == NOTHING else self.block(index, kind)

    def run(self):
        passed = {
            argument["name"]: self.value(index, argument)
            for index, argument in enumerate(self.function["arguments"])
            if argument["kind"] != "pitch"
        }
        result = getattr(q_mur, self.function["plain"])(**passed)
        for address, memory in self.memories.items():
            ctypes.memmove(address, memory.ctypes.data, memory.nbytes)
        for index, block in self.blocks:
            self.library.takeBlock(index, ctypes.c_void_p(block.address))
        expected = (ctypes.c_ubyte * 16)()
        count = self.library.returnedBytes(expected)
        returned = self.bytes_of(result)
        if returned != bytes(expected)[: len(returned)] or (count == 0) != (result is None):
            return f"the result is {result}"
        return self.library.difference().decode()

    def bytes_of(self, result):
        if result is None:
            return b""
        if isinstance(result, tuple):
            return struct.pack("<3i" if isinstance(result[0], int) else "<3f", *result)
        return struct.pack(RESULTS[self.function["result"]], result)


def functions_of(catalogue):
    """The rows in their order, each with its name here."""
    rows = [function for subsystem in catalogue["subsystems"] for function in subsystem["functions"]]
    for row in rows:
        row["plain"] = "_".join(filter(None, [row["name"], row.get("overload", "").replace(" ", "_")]))
    return rows


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("library")
    parser.add_argument("catalogue", type=pathlib.Path)
    parser.add_argument("--cases", type=int, default=2000)
    parser.add_argument("--shard", default="0/1")
    parser.add_argument("--only")
    parser.add_argument("--case", type=int)
    options = parser.parse_args()

    warnings.simplefilter("ignore", UserWarning)  # numbers that make no sense are tried as well
    library = load(options.library)
    functions = functions_of(json.loads(options.catalogue.read_text(encoding="utf-8")))
    assert library.rowCount() == len(functions)
    shard, shards = map(int, options.shard.split("/"))
    tried = drawing = failures = 0
    for row, function in enumerate(functions):
        name = function["plain"]
        takes_record = any(argument["kind"] == "host record" for argument in function["arguments"])
        if row % shards != shard or (options.only and name != options.only) or takes_record or name in LEFT_OUT:
            continue
        assert library.rowName(row).decode().split()[0] == function["name"]
        count = min(options.cases, library.rowCases(row))
        for seed in range(count) if options.case is None else [options.case]:
            library.openCase(row, seed)
            try:
                difference = Case(library, function, seed).run()
            except Exception as error:  # whatever is raised, the call was inside its contract
                difference = f"{type(error).__name__}: {error}"
            if difference:
                print(f"{name}, case {seed}: {difference}")
                failures += 1
                break
        tried += 1
        drawing += function["drawsPixels"]
    print(f"{tried} functions, of which {drawing} draw, {failures} failures")
    return 1 if failures or not tried else 0


if __name__ == "__main__":
    sys.exit(main())
