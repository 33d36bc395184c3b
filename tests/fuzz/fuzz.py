#!/usr/bin/env python3
"""Runs the fuzz targets side by side, each from its corpus, and says how far they have come.

usage: fuzz.py DIRECTORY [--seconds N] [--seed N] [--only TARGET] [--accept]

DIRECTORY holds the programs. An input that fails is left in out/fuzz. --accept writes what has been found into the
corpora: as few inputs as come to the same places.
"""

import argparse
import base64
import hashlib
import os
import pathlib
import random
import re
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
FINDINGS = pathlib.Path("out/fuzz")
MEMORY = "/dev/shm"
PIECE, MOST_PIECES = 64, 8  # of calls, as input.h has them
LONGEST = {"calls": PIECE * MOST_PIECES, "mistakes": PIECE * MOST_PIECES, "bitmap": 1200}
# Inputs are as long as they may be from the start: a second call begins behind the first one's piece. Records lose
# blocks where hosts make mistakes. What the system's fonts keep is not the library's.
OPTIONS = {"calls": ["-len_control=0"], "mistakes": ["-len_control=0", "-detect_leaks=0"], "bitmap": []}
SUPPRESSED = "leak:libfontconfig\n"


def can_run(command):
    """Returns the words before another command if they may stand there, else none."""
    try:
        return command if subprocess.run([*command, "true"], stderr=subprocess.DEVNULL).returncode == 0 else []
    except OSError:
        return []


def chains(inputs):
    """Yields inputs of several calls each: the first pieces of others, in an order of no meaning and filled up."""
    numbers = random.Random(0)
    order = sorted(inputs)
    numbers.shuffle(order)
    for first in range(0, len(order), MOST_PIECES):
        pieces = [data[:PIECE] for data in order[first:first + MOST_PIECES]]
        yield b"".join(piece + numbers.randbytes(PIECE - len(piece)) for piece in pieces)


class Target:
    def __init__(self, name, programs, scratch):
        self.name = name
        self.program = programs.resolve() / f"q_Mur_{name}_fuzz"
        self.kept = HERE / f"{name}.corpus"
        self.scratch = scratch / name
        self.inputs = self.scratch / "inputs"
        self.log = self.scratch / "log"
        self.found = self.scratch / "found"
        self.inputs.mkdir(parents=True)
        self.found.mkdir()
        kept = [base64.b64decode(line) for line in self.kept.read_text().splitlines()] if self.kept.exists() else []
        for data in kept + list(chains(kept) if LONGEST[name] == PIECE * MOST_PIECES else []):
            (self.inputs / hashlib.sha1(data).hexdigest()).write_bytes(data)
        suppressions = self.scratch / "suppressions"
        suppressions.write_text(SUPPRESSED)
        self.environment = {**os.environ, "TMPDIR": str(scratch), "LSAN_OPTIONS": f"suppressions={suppressions}"}

    def command(self, *arguments):
        options = [f"-max_len={LONGEST[self.name]}", "-timeout=60", "-print_final_stats=1", "-verbosity=1"]
        return [str(self.program), *options, *OPTIONS[self.name], *map(str, arguments)]

    def start(self, seconds, seed):
        FINDINGS.mkdir(parents=True, exist_ok=True)
        arguments = [f"-max_total_time={seconds}", f"-seed={seed}", f"-artifact_prefix={FINDINGS}/{self.name}-"]
        fixed = []
        if seed:
            # Neither the order of a directory, nor when it is looked at again, nor where memory lies decides anything.
            kept = self.scratch / "kept"
            kept.write_text(",".join(str(path) for path in sorted(self.inputs.iterdir())))
            arguments += ["-reload=0", f"-seed_inputs=@{kept}", self.found]
            fixed = can_run(["setarch", "-R"])
        else:
            arguments.append(self.inputs)
        with open(self.log, "wb") as log:
            self.process = subprocess.Popen(fixed + self.command(*arguments), env=self.environment, stdout=log, stderr=log)

    def end(self):
        """Waits for the end and prints a line. Returns whether nothing was found."""
        status = self.process.wait()
        text = self.log.read_text(errors="replace")

        def last(pattern):
            found = re.findall(pattern, text)
            return int(found[-1]) if found else 0

        executions = last(r"number_of_executed_units: (\d+)")
        edges, all_edges = last(r"cov: (\d+)"), last(r"PC tables \((\d+) PCs\)")
        print(f"{self.name:8} {executions:>12,} executions  {edges:>7,} of {all_edges:,} edges  "
              f"{last(r'corp: ([0-9]+)'):>6,} inputs{'' if status == 0 else '  A FINDING'}", flush=True)
        if status != 0:
            print("\n".join(line for line in text.splitlines() if not line.startswith(("#", "\tNEW_FUNC")))[-6000:])
            print(f"replay it: Q_MUR_FUZZ_TELL=1 {self.program} {FINDINGS}/{self.name}-...")
        return status == 0 and executions > 0

    def accept(self):
        """Keeps as few inputs as come to the same places."""
        fewest = self.scratch / "fewest"
        fewest.mkdir()
        subprocess.run(self.command("-set_cover_merge=1", fewest, self.inputs, self.found), env=self.environment, check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        lines = sorted(base64.b64encode(path.read_bytes()).decode() for path in fewest.iterdir())
        self.kept.write_text("".join(line + "\n" for line in lines))
        print(f"{self.name}: {len(lines)} inputs kept")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("programs", type=pathlib.Path)
    parser.add_argument("--seconds", type=int, default=60)
    parser.add_argument("--seed", type=int, default=0, help="0: another one each time")
    parser.add_argument("--only", choices=LONGEST)
    parser.add_argument("--accept", action="store_true")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory(dir=MEMORY if os.access(MEMORY, os.W_OK) else None) as scratch:
        names = [arguments.only] if arguments.only else list(LONGEST)
        targets = [Target(name, arguments.programs, pathlib.Path(scratch)) for name in names]
        for target in targets:
            target.start(arguments.seconds, arguments.seed)
        is_clean = all([target.end() for target in targets])
        if arguments.accept:
            for target in targets:
                target.accept()
        return 0 if is_clean else 1


if __name__ == "__main__":
    sys.exit(main())
