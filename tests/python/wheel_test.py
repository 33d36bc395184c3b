#!/usr/bin/env python3
"""Installs the wheel into an environment of its own, and looks at what it is.

usage: wheel_test.py WHEELS ENVIRONMENT VERSION
"""

import pathlib
import subprocess
import sys
import venv
import zipfile

FILES = {"__init__.py", "__init__.pyi", "py.typed", "_q_mur.abi3.so"}


def main():
    wheels, environment, version = sys.argv[1:]
    found = list(pathlib.Path(wheels).glob("*.whl"))
    if len(found) != 1 or not found[0].name.startswith(f"q_mur-{version}-cp311-abi3-linux_"):
        print(f"wheels: {[wheel.name for wheel in found]}")
        return 1
    held = {name.partition("/")[2] for name in zipfile.ZipFile(found[0]).namelist() if name.startswith("q_mur/")}
    if held != FILES:
        print(f"the wheel holds {sorted(held)}")
        return 1
    venv.create(environment, system_site_packages=True, clear=True, with_pip=True)
    python = f"{environment}/bin/python"
    install = [python, "-m", "pip", "install", "--quiet", "--no-index", "--no-deps", str(found[0])]
    subprocess.run(install, check=True)
    ask = "import q_mur; print(q_mur.__file__, q_mur.__version__)"
    answer = subprocess.run([python, "-c", ask], capture_output=True, text=True, check=True, cwd="/").stdout.split()
    print(*answer)
    return 0 if answer[0].startswith(environment) and answer[1] == version else 1


if __name__ == "__main__":
    sys.exit(main())
