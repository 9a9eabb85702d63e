#!/usr/bin/env python3
"""Merges the runs of the benchmarks to one table of times and ratios.

    report.py RUNS TARGETS... [--stages STAGES] --json RESULTS.json --markdown RESULTS.md

RUNS is a folder of files that Google Benchmark wrote, any number per peer: a figure is the median over all of
them. STAGES is such a folder too, of our library built to count which stage makes each decision. TARGETS are lists of rows {"row": text, "of": workload, "peer": name, "against": workload, "must": x,
"aim": x}: the time of our library on `of` divided by the time of the peer (our own when not named) on `against`
(`of` when not named) is to be at most `must`; or {"row", "of", "must", "aim"} with "per_second": true, for at
least so many items a second. Ends with 1, and a line that tells why, when exact peers disagree in an answer.
"""

import argparse
import json
import pathlib
import re
import statistics
import sys

OURS = "zulmrs"
# What Google Benchmark adds to a name for the way in which it was timed.
SUFFIX = re.compile(r"/(manual_time|real_time|process_time|iterations:\d+|repeats:\d+|min_time:[\d.]+)")
# What it writes beside our own counters.
OWN_FIELDS = {
    "name", "family_index", "per_family_instance_index", "run_name", "run_type", "repetitions",
    "repetition_index", "threads", "iterations", "real_time", "cpu_time", "time_unit", "items_per_second",
    "bytes_per_second", "label", "error_occurred", "error_message", "aggregate_name", "aggregate_unit",
}


class Figure:
    """What all runs of one peer say of one workload."""

    def __init__(self):
        self.times = []
        self.counters = {}

    def add(self, entry):
        if "items_per_second" in entry:
            self.times.append(1e9 / entry["items_per_second"])
        else:
            unit = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[entry["time_unit"]]
            self.times.append(entry["real_time"] * unit)
        for name, value in entry.items():
            if name not in OWN_FIELDS:
                self.counters.setdefault(name, []).append(value)

    @property
    def ns(self):
        return statistics.median(self.times)

    def counter(self, name):
        return statistics.median(self.counters[name]) if name in self.counters else None


class Results:
    def __init__(self):
        self.workloads = {}  # group -> workload -> peer -> Figure
        self.exact = {}  # peer -> whether its answers count
        self.context = {}

    def read(self, path):
        data = json.loads(path.read_text())
        context = data["context"]
        group, peer = context["group"], context["peer"]
        self.exact[group, peer] = context["exact"] == "yes"
        self.context = {key: context[key] for key in ("date", "num_cpus", "mhz_per_cpu")}
        for entry in data["benchmarks"]:
            if entry.get("run_type") == "aggregate":
                continue
            if entry.get("error_occurred"):
                raise SystemExit(f"report.py: {peer}, {entry['name']}: {entry.get('error_message')}")
            workload = SUFFIX.sub("", entry["name"])
            peers = self.workloads.setdefault(group, {}).setdefault(workload, {})
            peers.setdefault(peer, Figure()).add(entry)

    def find(self, workload, peer):
        for workloads in self.workloads.values():
            if peer in workloads.get(workload, {}):
                return workloads[workload][peer]
        return None

    def disagreements(self):
        """Lines that tell which exact peers that decide everything give different answers to one workload."""
        lines = []
        for group, workloads in self.workloads.items():
            for workload, peers in workloads.items():
                sums = {}
                for peer, figure in peers.items():
                    if self.exact[group, peer] and not figure.counter("undecided"):
                        for value in figure.counters.get("answers", []):
                            sums.setdefault(value, set()).add(peer)
                if len(sums) > 1:
                    sides = " against ".join(", ".join(sorted(side)) for side in sums.values())
                    lines.append(f"exact peers disagree in the answers of {workload}: {sides}")
        return lines


def read_folder(folder):
    results = Results()
    for path in sorted(folder.glob("*.json")):
        results.read(path)
    return results


def number(value):
    if value >= 1000:
        return f"{value:,.0f}"
    return f"{value:.3g}" if value < 1 else f"{value:.1f}"


def peer_order(peers):
    """Ours first, then by name."""
    return sorted(peers, key=lambda peer: (peer != OURS, peer))


def time_cell(results, group, workload, peer):
    figure = results.workloads[group][workload].get(peer)
    if figure is None:
        return ""
    cell = number(figure.ns)
    undecided = figure.counter("undecided")
    if undecided:
        cell += f" ({number(undecided)} undecided)"
    elif not results.exact[group, peer]:
        ours = results.workloads[group][workload].get(OURS)
        if ours and ours.counter("answers") != figure.counter("answers"):
            cell += " (wrong)"
    return cell


def by_workload(names):
    """Names "workload/kind" with the kinds of a workload side by side, otherwise in the order of the runs."""
    first = {}
    for name in names:
        first.setdefault(name.split("/")[0], len(first))
    return sorted(names, key=lambda name: first[name.split("/")[0]])


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "---|" * len(head)]
    lines += ["| " + " | ".join(row) + " |" for row in rows]
    return lines


def times_tables(results):
    lines = []
    for group, workloads in sorted(results.workloads.items()):
        timed = {name: peers for name, peers in workloads.items() if not name.startswith("bytes/")}
        if not timed:
            continue
        peers = peer_order({peer for figures in timed.values() for peer in figures})
        rows = [[name] + [time_cell(results, group, name, peer) for peer in peers]
                for name in by_workload(timed)]
        lines += [f"## {group}: ns per item", ""] + table(["workload"] + peers, rows) + [""]
    return lines


def counters_table(results):
    """Our own counters: bytes and what else a workload tells of itself."""
    rows = []
    for _, workloads in sorted(results.workloads.items()):
        for workload, peers in workloads.items():
            for peer in peer_order(peers):
                figure = peers[peer]
                told = [f"{name} {number(figure.counter(name))}" for name in figure.counters
                        if name not in ("answers", "undecided")]
                if told:
                    rows.append([workload, peer, ", ".join(told)])
    return ["## Counters", ""] + table(["workload", "peer", "counters"], rows) + [""] if rows else []


def stages_table(results):
    """Which share of the decisions each stage has made, where the library counts them."""
    stages = ["stage_shortcut", "stage_filter", "stage_interval", "stage_exact"]
    rows = []
    for _, workloads in sorted(results.workloads.items()):
        for workload in by_workload(workloads):
            figure = workloads[workload].get(OURS)
            counts = [figure.counter(stage) or 0 for stage in stages] if figure else []
            if sum(counts) > 0:
                shares = [f"{100 * count / sum(counts):.3g} %" if count else "" for count in counts]
                rows.append([workload, number(sum(counts))] + shares)
    if not rows:
        return []
    head = ["workload", "decisions", "identity and signs", "bounded integers and doubles", "intervals", "exact"]
    return ["## Stages: who decides", ""] + table(head, rows) + [""]


def judge(results, target):
    """The measured value of a target, and how it stands."""
    of = results.find(target["of"], OURS)
    if of is None:
        return None, "not measured"
    if target.get("per_second"):
        value = 1e9 / of.ns
        reached = lambda limit: value >= limit
    else:
        against = results.find(target.get("against", target["of"]), target.get("peer", OURS))
        if against is None:
            return None, "not measured"
        value = of.ns / against.ns
        reached = lambda limit: value <= limit
    if not reached(target["must"]):
        return value, "NOT MET"
    return value, "met, and the aim" if "aim" in target and reached(target["aim"]) else "met"


def targets_table(judged):
    rows = []
    for target, value, standing in judged:
        sign = ">=" if target.get("per_second") else "<="
        rows.append([target["row"], "" if value is None else number(value), f"{sign} {number(target['must'])}",
                     number(target["aim"]) if "aim" in target else "", standing])
    head = ["target", "measured", "must", "aim", "standing"]
    return ["## Targets: our time over the peer's", ""] + table(head, rows) + [""]


def as_json(results, judged):
    workloads = {
        group: {
            name: {peer: {"ns": figure.ns, "runs": figure.times,
                          **{counter: figure.counter(counter) for counter in figure.counters}}
                   for peer, figure in peers.items()}
            for name, peers in of_group.items()}
        for group, of_group in results.workloads.items()}
    targets = [{**target, "measured": value, "standing": standing} for target, value, standing in judged]
    return {"context": results.context, "workloads": workloads, "targets": targets}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("runs", type=pathlib.Path)
    parser.add_argument("targets", type=pathlib.Path, nargs="*")
    parser.add_argument("--stages", type=pathlib.Path)
    parser.add_argument("--json", type=pathlib.Path, required=True)
    parser.add_argument("--markdown", type=pathlib.Path, required=True)
    arguments = parser.parse_args()

    results = read_folder(arguments.runs)
    stages = read_folder(arguments.stages) if arguments.stages else Results()
    judged = [(target, *judge(results, target))
              for path in arguments.targets for target in json.loads(path.read_text())]

    context = ", ".join(f"{key} {value}" for key, value in results.context.items())
    lines = ["# Benchmarks", "", f"{context}. Medians. An empty cell: the peer cannot do it or takes no part.", ""]
    lines += targets_table(judged) + times_tables(results) + stages_table(stages) + counters_table(results)
    arguments.markdown.write_text("\n".join(lines))
    arguments.json.write_text(json.dumps({**as_json(results, judged), "stages": as_json(stages, [])["workloads"]},
                                         indent=1) + "\n")

    disagreements = results.disagreements()
    for line in disagreements:
        print(f"report.py: {line}", file=sys.stderr)
    return 1 if disagreements else 0


if __name__ == "__main__":
    sys.exit(main())
