#!/usr/bin/env python3
"""Times this library beside others that do the same work.

usage: peers.py [--set sse2|v3|v4]... [--check] [--rounds N] [--seconds S] [--picture FILE] DIRECTORY [REGEX]

DIRECTORY holds the workers, a program for each library; one that does not run is left out. A REGEX selects workloads.
With --set this library runs on those instruction sets, the first being the one that others are compared with. First
every worker's picture is compared with ours; --check stops there. Then each round takes the workloads in a random
order, and in each the libraries in a random order several times, each time after as long a time that is not counted.
What is counted is the time on a processor, of all threads of a worker, so that what else runs does little harm. Written
are JSON (--json) and bars (--picture).
"""

import argparse
import json
import math
import pathlib
import random
import re
import statistics
import subprocess
import sys
import tempfile
from xml.sax.saxutils import escape

TURNS = 3  # of each library with a workload in a round
TRAFFIC = "traffic alone"  # the note of what draws no picture


class Worker:
    """A library's program, which answers a line to a line."""

    def __init__(self, program, *arguments):
        self.process = subprocess.Popen(
            [program, *arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1
        )
        self.name = self.process.stdout.readline().strip()  # empty if it does not run
        self.jobs = {}
        if not self.name:
            return
        self.process.stdin.write("jobs\n")
        for line in iter(self.process.stdout.readline, "\n"):
            name, unit, count, tolerance, functions, note = line.rstrip("\n").split("\t")
            self.jobs[name] = {
                "unit": unit,
                "count": int(count),
                "tolerance": float(tolerance),
                "by": functions,
                "note": note,
            }

    def ask(self, *words):
        self.process.stdin.write("\t".join(map(str, words)) + "\n")
        answer = self.process.stdout.readline()
        if not answer:
            sys.exit(f"{self.name} has ended: {' '.join(map(str, words))}")
        return answer.strip()


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return "unknown"


def check(ours, others, names):
    """How far pictures are from ours, by workload and library, and whether all are near enough."""
    differences, faults = {name: {} for name in names}, 0
    with tempfile.NamedTemporaryFile() as picture:
        for name in names:
            ours.ask("picture", name, picture.name)
            for other in others:
                if name not in other.jobs or other.jobs[name]["note"] == TRAFFIC:
                    continue
                mean, percentile = map(float, other.ask("compare", name, picture.name).split("\t"))
                differences[name][other.name] = {"mean": round(mean, 4), "percentile99": int(percentile)}
                is_ours = other.name.startswith("q_Mur")
                if mean > (0 if is_ours else ours.jobs[name]["tolerance"]):
                    print(f"{name}: the picture of {other.name} is another one, by {mean:.2f} levels on the average")
                    faults += 1
    return differences, faults


def measure(workers, names, rounds, seconds):
    """Nanoseconds of a run, by workload and library: all that were taken."""
    taken = {name: {worker.name: [] for worker in workers if name in worker.jobs} for name in names}
    for done in range(rounds):
        for name in random.sample(names, len(names)):
            able = [worker for worker in workers if name in worker.jobs]
            for worker in able:
                worker.ask("prepare", name)
            for _ in range(TURNS):
                for worker in random.sample(able, len(able)):
                    taken[name][worker.name].append(float(worker.ask("time", seconds)))
        print(f"round {done + 1} of {rounds}", file=sys.stderr)
    return taken


def results(workers, names, differences, taken):
    """A row for each workload: what each library takes for a unit, and how many times ours that is."""
    ours, sets = workers[0], [worker.name for worker in workers if worker.name.startswith("q_Mur")]
    rows = []
    for name in names:
        job = ours.jobs[name]
        medians = {who: statistics.median(times) for who, times in taken[name].items()}
        row = {"workload": name, "unit": job["unit"], "count": job["count"], "libraries": []}
        for worker in workers:
            if worker.name not in medians:
                continue
            median = medians[worker.name]
            row["libraries"].append(
                {
                    "name": worker.name,
                    "functions": worker.jobs[name]["by"],
                    "note": worker.jobs[name]["note"],
                    "nanoseconds": round(median / job["count"], 4),
                    "ratios": {which: round(median / medians[which], 3) for which in sets},
                    **differences[name].get(worker.name, {}),
                }
            )
        rows.append(row)
    return rows


def print_table(rows, sets):
    heads = "".join(f"{which.split()[-1]:>8}" for which in sets)
    print(f"\n{'':60}{'ns':>10}{heads}{'mean':>8}{'99th':>6}")
    for row in rows:
        print(f"{row['workload']}, by the {row['unit']}")
        for library in row["libraries"]:
            ratios = "".join(f"{ratio:8.2f}" for ratio in library["ratios"].values())
            off = f"{library['mean']:8.2f}{library['percentile99']:6}" if "mean" in library else f"{'':14}"
            note = f"  {library['note']}" if library["note"] else ""
            functions = library["functions"]
            head = f"    {functions:<39.39} {library['name']:<16}{library['nanoseconds']:10.3f}"
            print(f"{head}{ratios}{off}{note}".rstrip())
    print("\nns is for one of the units. Then follows how many times our time it is: above 1 we are faster.")
    print("mean and 99th percentile are of the differences between the channels of its picture and ours.")


def best_peer(row):
    others = [one for one in row["libraries"] if not one["name"].startswith(("q_Mur", "memory"))]
    return min(others, key=lambda one: one["nanoseconds"], default=None)


def memory_of(row):
    """What the bare memory takes for the work: one or none."""
    return [one for one in row["libraries"] if one["name"] == "memory"]


def print_losses(rows, which):
    pairs = [(row, best_peer(row)) for row in rows]
    pairs = [(row, best) for row, best in pairs if best]
    lost = [(row, best) for row, best in pairs if best["ratios"][which] < 1]
    print(f"{which} leads in {len(pairs) - len(lost)} of {len(pairs)}; lost:")
    for row, best in lost:
        limit = "".join(f"; memory alone: {memory['ratios'][which]:.2f}" for memory in memory_of(row))
        print(f"    {row['workload']}: {best['ratios'][which]:.2f} x {best['name']} {best['note']}".rstrip() + limit)


def write_picture(path, rows, sets, about):
    """Bars: how many times our time the fastest other library takes, in powers of two; dots for the further sets."""
    line, left, octave, top, lowest = 21, 282, 56, 92, -3
    shown = [(row, best_peer(row)) for row in rows if best_peer(row)]
    highest = max([3.0] + [math.log2(ratio) for _, best in shown for ratio in best["ratios"].values()])
    one = left + 10 - lowest * octave
    width, height = int(one + highest * octave + 210), top + line * len(shown) + 18

    def along(ratio):
        return one + max(math.log2(ratio), lowest) * octave

    def text(x, y, content, more=""):
        return f'<text x="{x:.1f}" y="{y}" {more}>{escape(content)}</text>'

    def stroke(x, y):
        return f'<path d="M{x:.1f} {y}v19" stroke="#36c" stroke-width="2"/>'

    grey = 'fill="#666"'
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" height="{height}" '
        'font-family="sans-serif" font-size="13" fill="#222">',
        f'<rect width="{width}" height="{height}" rx="8" fill="#fcfcf8"/>',
        text(16, 26, "What the fastest other library takes, where q_Mur takes 1", 'font-size="16" font-weight="bold"'),
        text(16, 46, about, grey),
    ]
    x = 16
    for index, name in enumerate(sets):
        bar = f'<rect x="{x}" y="56" width="12" height="12" fill="#2f7d5b"/>'
        parts += [dot(x + 6, 62, index) if index else bar, text(x + 18, 67, name, grey)]
        x += 110
    parts += [stroke(x + 6, 53), text(x + 18, 67, "if it took as long as memory alone", grey)]
    for power in range(lowest, math.floor(highest) + 1):
        x = along(2**power)
        parts.append(f'<path d="M{x} {top - 6}V{height - 12}" stroke="{"#222" if power == 0 else "#ddd"}"/>')
        label = f"{2**power}" if power >= 0 else f"1/{2**-power}"
        parts.append(text(x, top - 10, label, f'text-anchor="middle" font-size="11" {grey}'))
    for index, (row, best) in enumerate(shown):
        y, ratios = top + index * line, list(best["ratios"].values())
        begin, end = sorted([one, along(ratios[0])])
        colour = "#2f7d5b" if ratios[0] >= 1 else "#c4572e"
        note = f" ({best['note']})" if best["note"] else ""
        limits = [along(best["nanoseconds"] / memory["nanoseconds"]) for memory in memory_of(row)]
        parts += [
            text(left, y + 15, row["workload"], 'text-anchor="end"'),
            f'<rect x="{begin:.1f}" y="{y + 3}" width="{end - begin:.1f}" height="15" fill="{colour}"/>',
            *(dot(along(ratio), y + 10.5, number) for number, ratio in enumerate(ratios) if number),
            *(stroke(limit, y + 1) for limit in limits),
            text(max(one, *limits, *map(along, ratios)) + 10, y + 15, f"{ratios[0]:.2f}  {best['name'].split()[0]}{note}"),
        ]
    path.write_text("\n".join([*parts, "</svg>"]) + "\n")


def dot(x, y, number):
    """The mark of a further set."""
    fill = ["#fcfcf8", "#222"][(number - 1) % 2]
    return f'<circle cx="{x:.1f}" cy="{y}" r="4" fill="{fill}" stroke="#222"/>'


def main():
    parser = argparse.ArgumentParser(usage=__doc__.split("usage: ")[1].split("\n")[0])
    parser.add_argument("directory", type=pathlib.Path)
    parser.add_argument("regex", nargs="?", default="")
    parser.add_argument("--set", action="append", default=[], dest="sets")
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--seconds", type=float, default=0.02)
    parser.add_argument("--compiler", default="unknown")
    parser.add_argument("--json", type=pathlib.Path)
    parser.add_argument("--picture", type=pathlib.Path)
    options = parser.parse_intermixed_args()

    programs = sorted(options.directory.glob("q_Mur_peer_*"))
    workers = [Worker(options.directory / "q_Mur_peer_ours", which) for which in options.sets or [""]]
    if not all(worker.name for worker in workers):
        sys.exit("q_Mur_peer_ours does not run")
    sets = [worker.name for worker in workers]
    for program in programs:
        if program.name == "q_Mur_peer_ours":
            continue
        worker = Worker(program)
        if worker.name:
            workers.append(worker)
        else:
            print(f"{program.name} does not run and is left out")
    names = [name for name in workers[0].jobs if re.search(options.regex, name)]
    if not names:
        sys.exit(f"no workload is called {options.regex}")

    about = {
        "processor": processor(),
        "compiler": options.compiler,
        "libraries": [worker.name for worker in workers],
        "rounds": options.rounds,
        "turns": TURNS,
        "seconds": options.seconds,
    }
    for key in ("processor", "compiler"):
        print(f"{key:<10} {about[key]}")
    print(f"{'libraries':<10} {', '.join(about['libraries'])}", flush=True)
    differences, faults = check(workers[0], workers[1:], names)
    compared = sum(map(len, differences.values()))
    print(f"{compared - faults} pictures are ours within their tolerance, {faults} are not.", flush=True)
    if options.check:
        sys.exit(faults != 0 or compared == 0)

    rows = results(workers, names, differences, measure(workers, names, options.rounds, options.seconds))
    print_table(rows, sets)
    for which in sets:
        print_losses(rows, which)
    if options.json:
        options.json.write_text(json.dumps({"about": about, "workloads": rows}, indent=1) + "\n")
    if options.picture:
        machine = f"{about['processor']}, {about['compiler']}, one thread; right of 1 q_Mur is faster"
        write_picture(options.picture, rows, sets, machine)
    sys.exit(faults != 0)


if __name__ == "__main__":
    main()
