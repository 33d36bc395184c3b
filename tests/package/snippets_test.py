#!/usr/bin/env python3
"""What README.md and docs/ show in C++ and C compiles against the installed library and runs, and the first host of
README.md is short and draws a picture of many colours. docs/guide.md quotes hosts that are built elsewhere.

usage: snippets_test.py ROOT PREFIX C++_COMPILER_AND_FLAGS C_COMPILER_AND_FLAGS|none [EMULATOR ...]
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import textwrap

WIDTH = HEIGHT = 480
WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Werror"]

# Where parts of hosts stand, and what is to be seen then.
HOSTS_OF_PARTS = {
    "README.md": """#include <q_Mur/surface.hpp>
int main() {
    q_Mur::prepare();
{PART}
    const bool isFramed = page.at(20, 20) == 0xC08040 && page.at(419, 319) == 0xC08040 && page.at(420, 319) == 0x204060;
    return isFramed && page.at(0, 0) == 0x204060 && page.at(639, 479) == 0x204060 ? 0 : 1;
}
""",
    # A row more than is told of.
    "docs/checked.md": """#include <q_Mur.h>
static q_ulong pixels[640 * 481];
int main() {
    const int pitch = 640, height = 480;
{PART}
    tagRECT rect = {0, 0, 640, 481};
    Init_qMur_GlobalData(nullptr, nullptr);
    iFillRect(pixels, &rect, pitch, 0);
}
""",
}


def snippets(root, languages):
    for document in [root / "README.md", *sorted((root / "docs").glob("*.md"))]:
        name = document.relative_to(root).as_posix()
        if name == "docs/guide.md":
            continue
        text = document.read_text(encoding="utf-8")
        for language, code in re.findall(r"^```(cpp|c)\n(.*?)^```", text, re.DOTALL | re.MULTILINE):
            if language in languages:
                yield name, language, code


def whole(name, code):
    if "int main(" in code:
        return code
    includes = "".join(re.findall(r"^#include.*\n", code, re.MULTILINE))
    part = re.sub(r"^#include.*\n", "", code, flags=re.MULTILINE)
    return includes + HOSTS_OF_PARTS[name].replace("{PART}\n", textwrap.indent(part, "    "))


def picture_faults(path):
    picture = path.read_bytes()
    head = f"P6 {WIDTH} {HEIGHT} 255\n".encode()
    pixels = picture.removeprefix(head)
    if len(pixels) != WIDTH * HEIGHT * 3 or len(picture) == len(pixels):
        return [f"{len(picture)} bytes, which begin with {picture[:20]}"]
    colours = {pixels[i : i + 3] for i in range(0, len(pixels), 3)}
    return [] if len(colours) > 50 else [f"{len(colours)} colours"]


def main():
    root, prefix, cxx, cc, *emulator = sys.argv[1:]
    languages = ("cpp",) if cc == "none" else ("cpp", "c")
    library = next(pathlib.Path(prefix).rglob("libq_Mur.so")).parent
    # The system's fonts are not given back.
    environment = {**os.environ, "LD_LIBRARY_PATH": str(library), "ASAN_OPTIONS": "detect_leaks=0"}
    compilers = {"cpp": [*cxx.split(), "-std=c++20"], "c": [*cc.split(), "-std=c11"]}
    libraries = {"cpp": ["q_Mur"], "c": ["q_Mur_c", "q_Mur"]}
    faults = []
    seen = []
    with tempfile.TemporaryDirectory() as directory:

        def run(name, language, code, linked):
            (pathlib.Path(directory) / f"host.{language}").write_text(whole(name, code), encoding="utf-8")
            command = [*compilers[language], *WARNINGS, f"-I{prefix}/include", f"host.{language}", "-o", "host"]
            subprocess.run([*command, f"-L{library}", *(f"-l{one}" for one in linked)], cwd=directory, check=True)
            return subprocess.run([*emulator, "./host"], cwd=directory, env=environment, capture_output=True, text=True)

        for name, language, code in snippets(pathlib.Path(root), languages):
            seen.append(name)
            ended = run(name, language, code, libraries[language])
            if ended.returncode:
                faults.append(f"{name} ended with {ended.returncode}: {ended.stderr}\n{code}")
            if len(seen) == 1:
                faults += picture_faults(pathlib.Path(directory) / "rose.ppm")
                faults += ["30 lines or more"] if code.count("\n") >= 30 else []
            if name == "docs/checked.md" and (library / "libq_Mur_checked.so").exists():
                ended = run(name, language, code, ["q_Mur_checked"])
                if not ended.returncode or "iFillRect: " not in ended.stderr:
                    faults.append(f"{name} tells of no surface: {ended.returncode}, {ended.stderr}")
    expected = ["README.md", "README.md", *(["docs/c.md"] if "c" in languages else []), "docs/checked.md"]
    if seen != expected:
        faults.append(f"code stands in {seen}, and not in {expected}")
    print("\n".join(faults or seen))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
