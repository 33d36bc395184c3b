"""Makes the gallery for tests."""

import copy
import importlib.util
import json
import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
SYSTEM_PYTHON = "/usr/bin/python3"


def need(**modules):
    """Goes on under the system's own Python where that alone has what is packaged, or skips the test."""
    missing = [title for name, title in modules.items() if not importlib.util.find_spec(name)]
    if not missing:
        return
    look = "import " + ", ".join(modules)
    if sys.executable != SYSTEM_PYTHON and pathlib.Path(SYSTEM_PYTHON).exists() and not subprocess.run(
            [SYSTEM_PYTHON, "-c", look], check=False, capture_output=True).returncode:
        os.execv(SYSTEM_PYTHON, [SYSTEM_PYTHON, *sys.argv])
    skip(f"no {missing[0]} for Python")


def skip(reason):
    print(f"skipped: {reason}")
    sys.exit(77)


need(jinja2="Jinja", tomllib="Python 3.11")
sys.path.insert(0, str(ROOT / "site"))
import pages  # noqa: E402


def printed_by(*command):
    environment = {**os.environ, "ASAN_OPTIONS": "detect_leaks=0"}
    return subprocess.run(command, env=environment, stdout=subprocess.PIPE, text=True, check=True).stdout


def make(programs, directory, frames, module=None):
    """What the catalogue and the pictures say, once the pages are written."""
    catalogue = json.loads(printed_by(programs[0], "--json"))
    pictures = json.loads(printed_by(programs[1], str(directory / "pictures"), "--frames", str(frames)))
    pages.write_pages(copy.deepcopy(catalogue), pictures, directory, module)
    return catalogue, pictures
