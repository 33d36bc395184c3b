#!/usr/bin/env python3
"""Checks the sources that people write: those under version control, and new ones that are not ignored.

usage: sources_test.py CHECK [--build DIRECTORY]

    format         clang-format would change nothing
    plain_text     line ends, white space and indentation as .editorconfig wants them
    links          links in Markdown files lead to files and headings that are there
    cmake, json, python, shell
                   files of each kind parse
    doc_comments   clang -Wdocumentation is silent about the headers
    reference      Doxygen makes pages of the headers without a warning, with every export on them
    tidy           clang-tidy is silent about the library's sources in the build in DIRECTORY
"""

import argparse
import ast
import concurrent.futures
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
SKIPPED = 77
NO_TEXT = {".png", ".jpg", ".jpeg", ".bmp", ".ico", ".gif", ".mp4", ".webp"}


class Skip(Exception):
    """Why a check cannot run here."""


def program(name):
    path = shutil.which(name)
    if not path:
        raise Skip(f"{name} is not installed")
    return path


def complaint_of(*command):
    """What a command says of a fault; nothing if it finds none."""
    run = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, cwd=ROOT, text=True)
    if run.returncode == 0:
        return ""
    return run.stdout.strip() or f"{command[0]} ended with status {run.returncode}"


def sources(*patterns):
    """The files that match one of the patterns, or all."""
    command = [program("git"), "-c", "safe.directory=*", "ls-files", "-z"]
    command += ["--cached", "--others", "--exclude-standard", "--", *patterns]
    run = subprocess.run(command, cwd=ROOT, stdout=subprocess.PIPE, text=True)
    if run.returncode != 0:
        raise Skip("the sources are not under version control here")
    return [ROOT / name for name in sorted(set(run.stdout.split("\0"))) if (ROOT / name).is_file()]


def scripts(interpreter, ending):
    """The scripts with an ending, and those that name their interpreter in the first line."""

    def names_it(path):
        with open(path, "rb") as file:
            return re.match(rb"#!.*\b" + interpreter + rb"\b", file.readline(80))

    return [path for path in sources() if path.suffix == ending or names_it(path)]


def format_faults():
    yield complaint_of(program("clang-format"), "--dry-run", "-Werror", *map(str, sources("*.cpp", "*.h", "*.hpp")))


def plain_text_faults():
    for path in sources():
        if path.suffix in NO_TEXT:
            continue
        text = path.read_bytes()
        lines = text.split(b"\n")
        if text and not text.endswith(b"\n"):
            yield f"{path}: does not end with a newline"
        if b"\r" in text:
            yield f"{path}: has carriage returns"
        if path.suffix != ".md" and any(line != line.rstrip() for line in lines):
            yield f"{path}: has trailing white space"
        if any(line.startswith(b"\t") for line in lines):
            yield f"{path}: is indented with tabs"


def anchors_of(text):
    """What headings are called in links to them."""
    headings = re.findall(r"^#+ (.*)$", text, re.MULTILINE)
    return {re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-") for heading in headings}


def links_faults():
    def prose(path):
        return re.sub(r"```.*?```", "", path.read_text(encoding="utf-8"), flags=re.DOTALL)

    for path in sources("*.md"):
        for target, anchor in re.findall(r"\]\(([^)#\s]*)#?([^)\s]*)", prose(path)):
            file = path.parent / target if target else path
            if "://" in target:
                continue
            if not file.exists():
                yield f"{path}: {target} is not there"
            elif anchor and anchor not in anchors_of(prose(file)):
                yield f"{path}: {target} has no heading {anchor}"


def cmake_faults():
    with tempfile.TemporaryDirectory() as directory:
        script = pathlib.Path(directory) / "script.cmake"
        for path in sources("*.cmake", "*CMakeLists.txt"):
            # As the body of a function it is read and not run.
            script.write_text(f"function(unused)\n{path.read_text()}\nendfunction()\n")
            complaint = complaint_of(program("cmake"), "-P", str(script))
            yield complaint and f"{path}: {complaint}"
    yield complaint_of(program("cmake"), "--list-presets")


def json_faults():
    for path in sources("*.json"):
        try:
            json.loads(path.read_text(encoding="utf-8"))
        except ValueError as error:
            yield f"{path}: {error}"


def python_faults():
    for path in scripts(rb"python3?", ".py"):
        try:
            ast.parse(path.read_text(encoding="utf-8"), str(path))
        except SyntaxError as error:
            yield f"{path}: {error}"


def shell_faults():
    for path in scripts(rb"(ba)?sh", ".sh"):
        yield complaint_of("bash", "-n", str(path))


def doc_comments_faults():
    for header in ("q_Mur.h", "q_Mur/surface.hpp"):
        yield complaint_of(program("clang++"), "-std=c++20", "-fsyntax-only", "-Wdocumentation", "-Werror", "-x", "c++",
                           "-Iinclude", f"include/{header}")


def reference_faults():
    with tempfile.TemporaryDirectory() as directory:
        settings = (ROOT / "docs" / "Doxyfile").read_text() + f"OUTPUT_DIRECTORY = {directory}\n"
        run = subprocess.run([program("doxygen"), "-"], input=settings, cwd=ROOT, stdout=subprocess.PIPE,
                             stderr=subprocess.STDOUT, text=True)
        if run.returncode or run.stdout:
            yield run.stdout.strip() or f"doxygen ended with status {run.returncode}"
        pages = "".join(page.read_text(encoding="utf-8") for page in pathlib.Path(directory).glob("*_8h.html"))
    shown = set(re.findall(r'<h2 class="memtitle">.*?</span>(\w+)', pages))
    exports = (ROOT / "exports" / "q_Mur.exports").read_text()
    for name in sorted(set(re.findall(r"^(?![#\s]).*?(\w+)[(\[]", exports, re.MULTILINE)) - shown):
        yield f"{name} is on no page"


def tidy_faults(build):
    tidy = program("clang-tidy")
    compiled = json.loads((build / "compile_commands.json").read_text())
    files = sorted({entry["file"] for entry in compiled if pathlib.Path(entry["file"]).is_relative_to(ROOT / "src")})
    if not files:
        yield f"{build} compiles nothing of src"
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        yield from pool.map(lambda file: complaint_of(tidy, "--quiet", "-p", str(build), file), files)


CHECKS = {
    "format": format_faults,
    "plain_text": plain_text_faults,
    "links": links_faults,
    "cmake": cmake_faults,
    "json": json_faults,
    "python": python_faults,
    "shell": shell_faults,
    "doc_comments": doc_comments_faults,
    "reference": reference_faults,
    "tidy": tidy_faults,
}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("check", choices=CHECKS)
    parser.add_argument("--build", type=pathlib.Path)
    arguments = parser.parse_args()
    try:
        check = CHECKS[arguments.check]
        faults = [fault for fault in (check(arguments.build) if arguments.build else check()) if fault]
    except Skip as reason:
        print(reason)
        return SKIPPED
    print("\n".join(faults) or "no faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
