#!/usr/bin/env python3
"""Counts the instructions of each case of the guard under callgrind and compares them with those kept.

instructions.py PROGRAM EXPECTED.json [--update]: fails when a case costs more than it did, by more than the
tolerance; --update keeps the counts found. A count is the difference of two runs, so starting up is no part of it.
"""
import json
import re
import subprocess
import sys

TOLERANCE = 0.03
REPETITIONS = {"scenario": (1, 3)}
USUAL_REPETITIONS = (200, 1200)


def collected(program, case, repetitions):
    command = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", program, case, str(repetitions)]
    run = subprocess.run(command, capture_output=True, text=True, check=True)
    return int(re.search(r"Collected : (\d+)", run.stderr).group(1))


def count(program, case):
    few, many = REPETITIONS.get(case.split("_")[0], USUAL_REPETITIONS)
    return round((collected(program, case, many) - collected(program, case, few)) / (many - few), 1)


def main():
    program, kept_file = sys.argv[1:3]
    update = "--update" in sys.argv
    try:
        with open(kept_file, encoding="utf-8") as file:
            kept = json.load(file)
    except FileNotFoundError:
        kept = {}
    names = subprocess.run([program], capture_output=True, text=True, check=True).stdout.split()
    found = {}
    dearer = []
    print(f"{'case':28} {'instructions':>14} {'kept':>14}  ratio")
    for name in names:
        found[name] = count(program, name)
        ratio = found[name] / kept[name] if kept.get(name) else 1.0
        print(f"{name:28} {found[name]:14.1f} {kept.get(name, 0):14.1f}  {ratio:5.3f}", flush=True)
        if ratio > 1.0 + TOLERANCE:
            dearer.append(name)
    if update:
        with open(kept_file, "w", encoding="utf-8") as file:
            json.dump(found, file, indent=2)
            file.write("\n")
        return 0
    for name in sorted(set(found) ^ set(kept)):
        print(f"instructions.py: {name} is not in both the program and {kept_file}", file=sys.stderr)
    for name in dearer:
        print(f"instructions.py: {name} costs more than it did", file=sys.stderr)
    return 1 if dearer or set(found) != set(kept) else 0


if __name__ == "__main__":
    sys.exit(main())
