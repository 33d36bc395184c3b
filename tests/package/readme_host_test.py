#!/usr/bin/env python3
"""The host that README.md shows is short, compiles against the installed library and draws a picture of many colours.

usage: readme_host_test.py README PREFIX COMPILER_AND_FLAGS EMULATOR
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

WIDTH = HEIGHT = 480


def main():
    readme, prefix, compiler, *emulator = sys.argv[1:]
    text = pathlib.Path(readme).read_text(encoding="utf-8")
    host = re.search(r"^```cpp\n(.*?)^```", text, re.DOTALL | re.MULTILINE)[1]
    if host.count("\n") >= 30:
        print("30 lines or more")
        return 1
    library = next(pathlib.Path(prefix).rglob("libq_Mur.so")).parent
    with tempfile.TemporaryDirectory() as directory:
        (pathlib.Path(directory) / "host.cpp").write_text(host, encoding="utf-8")
        command = [*compiler.split(), "-std=c++20", "-Wall", "-Wextra", "-Werror", f"-I{prefix}/include", "host.cpp"]
        subprocess.run([*command, f"-L{library}", "-lq_Mur", "-o", "host"], cwd=directory, check=True)
        environment = {**os.environ, "LD_LIBRARY_PATH": str(library)}
        subprocess.run([*emulator, "./host"], cwd=directory, check=True, env=environment)
        picture = (pathlib.Path(directory) / "rose.ppm").read_bytes()
    head = f"P6 {WIDTH} {HEIGHT} 255\n".encode()
    pixels = picture.removeprefix(head)
    if len(pixels) != WIDTH * HEIGHT * 3 or len(picture) == len(pixels):
        print(f"{len(picture)} bytes, which begin with {picture[:20]}")
        return 1
    colours = {pixels[i : i + 3] for i in range(0, len(pixels), 3)}
    print(f"{len(colours)} colours")
    return 0 if len(colours) > 50 else 1


if __name__ == "__main__":
    sys.exit(main())
