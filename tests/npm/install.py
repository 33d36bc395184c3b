#!/usr/bin/env python3
"""Installs the package for JavaScript into an empty directory, and puts programs that use it there.

usage: install.py ARCHIVE DIRECTORY PROGRAM...

Its own example becomes readme.js. By npm, without a network, where it is found; otherwise the archive is unpacked where
npm would do it.
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tarfile


def main():
    archive, directory, *programs = map(pathlib.Path, sys.argv[1:])
    shutil.rmtree(directory, ignore_errors=True)
    directory.mkdir(parents=True)
    (directory / "package.json").write_text('{ "name": "host", "private": true, "type": "module" }\n')
    installed = directory / "node_modules" / "q_mur"
    if npm := shutil.which("npm"):
        quiet = ["--no-audit", "--no-fund", "--no-update-notifier"]
        subprocess.run(
            [npm, "install", "--offline", "--ignore-scripts", *quiet, "--cache", directory / "cache", archive],
            cwd=directory, check=True,
        )
        listed = subprocess.run(
            [npm, "pack", "--dry-run", "--json", "--cache", directory / "cache"],
            cwd=installed, check=True, stdout=subprocess.PIPE, text=True,
        ).stdout
    else:
        print("without npm")
        with tarfile.open(archive) as packed:
            packed.extractall(directory / "unpacked")
        installed.parent.mkdir()
        (directory / "unpacked" / "package").rename(installed)
        listed = None
    files = sorted(path.name for path in installed.iterdir())
    print(*files)
    if listed is not None:
        wanted = [file for file in files if f'"path": "{file}"' in listed]
        if wanted != files:
            sys.exit(f"npm would leave out {set(files) - set(wanted)}")
    example = re.search(r"```js\n(.*?)```", (installed / "README.md").read_text(encoding="utf-8"), re.DOTALL)
    (directory / "readme.js").write_text(example[1], encoding="utf-8")
    for program in programs:
        shutil.copy(program, directory)


if __name__ == "__main__":
    main()
