#!/usr/bin/env python3
"""Builds and runs a program with no more than what pkg-config says about the installed library, shared and static.

usage: pkg_config_test.py PKG_CONFIG PACKAGE PREFIX SOURCE PROGRAM VERSION COMPILER_AND_FLAGS [EMULATOR...]
"""

import os
import pathlib
import shutil
import subprocess
import sys

SKIPPED = 77


def main():
    pkg_config, name, prefix, source, program, version, compiler, *emulator = sys.argv[1:]
    if not shutil.which(pkg_config):
        print("pkg-config is not installed")
        return SKIPPED

    package = next(pathlib.Path(prefix).rglob(f"{name}.pc"))
    environment = {**os.environ, "PKG_CONFIG_PATH": str(package.parent)}

    def ask(*question):
        command = [pkg_config, *question, name]
        return subprocess.run(command, env=environment, stdout=subprocess.PIPE, text=True, check=True).stdout.split()

    if ask("--modversion") != [version]:
        print(f"pkg-config speaks of version {ask('--modversion')}")
        return 1
    subprocess.run([*compiler.split(), *ask("--cflags"), source, *ask("--libs"), "-o", program], check=True)
    libraries = [f"-l:lib{word[2:]}.a" if word.startswith("-lq_Mur") else word for word in ask("--static", "--libs")]
    subprocess.run([*compiler.split(), *ask("--cflags"), source, *libraries, "-o", program + "_static"], check=True)
    if subprocess.run([*emulator, program + "_static"]).returncode != 0:
        return 1
    environment["LD_LIBRARY_PATH"] = ask("--variable=libdir")[0]
    return subprocess.run([*emulator, program], env=environment).returncode


if __name__ == "__main__":
    sys.exit(main())
