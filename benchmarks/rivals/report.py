#!/usr/bin/env python3
"""Keeps what a comparison measured, and makes the report of it.

    report.py add RESULTS_FOLDER LINES_FILE... --command TEXT --commit TEXT [--afresh]
                                          adds a run's lines to results.json, or begins it anew, and renders
    report.py render RESULTS_FOLDER       writes results.md and ratios.svg from results.json
    report.py check RESULTS_FOLDER        fails where results.md is not what results.json gives
    report.py own GOOGLE_BENCHMARK_FILE --version TEXT
                                          prints lines like the rivals' of what Google Benchmark wrote

A line is JSON: {"system", "version", "workload", "seconds", "check"}, seconds being the median of one pass. Of several
passes the lowest median counts, since other programs can only add to a time.
"""

import argparse
import csv
import datetime
import json
import math
import os
import pathlib
import platform
import statistics
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
OWN = "tessera"
LIMIT = "limit_"


def workloads():
    with open(HERE / "workloads.csv", newline="") as file:
        return list(csv.DictReader(file))


# --- what was measured: runs, versions, and measured[workload][system] = {"seconds": [pass, ...], "check"}


def own_lines(report, version):
    """The medians of repetitions, and the checks, out of Google Benchmark's report."""
    nanoseconds = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
    for benchmark in json.loads(report.read_text())["benchmarks"]:
        if benchmark.get("error_occurred"):
            print(f"{benchmark['name']}: {benchmark['error_message']}", file=sys.stderr)
        elif benchmark.get("aggregate_name") == "median":
            seconds = benchmark["real_time"] * nanoseconds[benchmark["time_unit"]] / 1e9
            yield {"system": OWN, "version": version, "workload": benchmark["run_name"].split("/")[0],
                   "seconds": seconds, "check": benchmark.get("check")}


def machine():
    def field(file, name):
        lines = (line.partition(":") for line in pathlib.Path(file).read_text().splitlines())
        return next((value.strip() for key, _, value in lines if key.strip() == name), "unknown")

    memory = int(field("/proc/meminfo", "MemTotal").split()[0]) / 2**20
    system = platform.freedesktop_os_release().get("PRETTY_NAME", "Linux")
    kernel = ".".join(platform.release().split(".")[:2])
    return (f"{field('/proc/cpuinfo', 'model name')}, {os.cpu_count()} processors, {memory:.0f} GiB of memory, "
            f"{system}, Linux {kernel}")


def add(results, files, command, commit):
    lines = [json.loads(line) for file in files for line in file.read_text().splitlines()]
    results.setdefault("runs", []).append({
        "date": datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%d %H:%M UTC"),
        "command": command, "commit": commit, "machine": machine()})
    for line in lines:
        results.setdefault("versions", {})[line["system"]] = line["version"]
        entry = results.setdefault("measured", {}).setdefault(line["workload"], {}).setdefault(
            line["system"], {"seconds": []})
        entry["seconds"].append(float(f"{line['seconds']:.4g}"))
        if line.get("check") is not None:
            entry["check"] = line["check"]


def store(results, file):
    """One line for each workload, so that a change of the figures reads well."""
    parts = [f'"{key}": {json.dumps(results[key], indent=1)}' for key in ("runs", "versions")]
    measured = ",\n".join(f'"{name}": {json.dumps(systems)}' for name, systems in results["measured"].items())
    file.write_text("{" + ",\n".join(parts) + ',\n"measured": {\n' + measured + "\n}}\n")


# --- the report


class Row:
    """A workload: the time of each system that has it, in seconds."""

    def __init__(self, workload, measured):
        entries = measured[workload["id"]]
        self.name, self.family, self.limitName = workload["id"], workload["family"], workload["limit"]
        self.times = {system: min(entry["seconds"]) for system, entry in entries.items()}
        self.passes = {len(entry["seconds"]) for entry in entries.values()}
        self.own = self.times.pop(OWN, None)
        self.best = min(self.times, key=self.times.get, default=None)
        self.ratio = self.own / self.times[self.best] if self.own and self.best else None
        limit = measured.get(self.limitName, {}).get(OWN)
        self.limit = min(limit["seconds"]) if limit else None
        self.odd = self.systems_that_differ({system: entry.get("check") for system, entry in entries.items()})

    @staticmethod
    def systems_that_differ(checks):
        """Those whose check is not the one that most have; of equally many, the one met first."""
        checks = {system: check for system, check in checks.items() if check is not None}
        same = {system: [other for other in checks if math.isclose(checks[system], checks[other], rel_tol=1e-9,
                                                                   abs_tol=1e-6)] for system in checks}
        most = max(same.values(), key=len, default=[])
        return [system for system in checks if system not in most]


def geometric_mean(values):
    return statistics.geometric_mean(values) if values else None


def shown(seconds):
    return "" if seconds is None else f"{seconds * 1000:.3g}" if seconds < 1 else f"{seconds * 1000:.0f}"


def shown_ratio(ratio):
    return "" if ratio is None else f"{ratio:.2f}"


def markdown_table(header, rows):
    lines = [header, ["---"] + ["---:"] * (len(header) - 1), *rows]
    return "".join("| " + " | ".join(cells) + " |\n" for cells in lines)


def workload_table(rows, rivals):
    def cells(row):
        times = [f"**{shown(row.times[rival])}**" if rival == row.best else shown(row.times.get(rival))
                 for rival in rivals]
        return [row.name, shown(row.own), *times, row.best or "", shown_ratio(row.ratio)]

    return markdown_table(["workload", OWN, *rivals, "best rival", "ratio"], map(cells, rows))


def family_table(rows):
    families = dict.fromkeys(row.family for row in rows)
    groups = [(family, [row for row in rows if row.family == family]) for family in families] + [("**all**", rows)]

    def cells(name, group):
        ratios = [row.ratio for row in group if row.ratio]
        ahead = f"{sum(ratio < 1 for ratio in ratios)} of {len(ratios)}"
        return [name, shown_ratio(geometric_mean(ratios)), shown_ratio(max(ratios, default=None)), ahead]

    return markdown_table(["family", "geometric mean of ratios", "highest ratio", "ahead of every rival"],
                          [cells(*group) for group in groups])


def limit_table(rows):
    return markdown_table(
        ["workload", OWN, "limit", "time over limit", "ratio to the best rival", "limit measured as"],
        [[row.name, shown(row.own), shown(row.limit), shown_ratio(row.own / row.limit), shown_ratio(row.ratio),
          f"`{row.limitName}`"] for row in rows if row.own and row.limit])


def markdown(results, rows, rivals):
    passes = sorted(set().union(*(row.passes for row in rows)))
    text = "# Results of the comparison\n\n"
    text += "Made by `scripts/compare.sh` from `results.json`; [the page beside it](../benchmarks/README.md) tells what is measured. "
    text += "Times are\nmedians in milliseconds, on one thread. A ratio is Tessera's time over the best rival's: below 1, "
    text += "Tessera is ahead.\n\n![Ratios](ratios.svg)\n\n## By family\n\n" + family_table(rows)
    text += "\n## By workload\n\n" + workload_table(rows, rivals)
    odd = [f"- `{row.name}`: {', '.join(row.odd)}" for row in rows if row.odd]
    text += "\n" + ("Results that differ from what most systems have, by the sum over all cells:\n\n" + "\n".join(odd)
                    if odd else "All systems had the same results, by the sum over all cells.") + "\n"
    limited = limit_table(rows)
    if limited.count("\n") > 2:
        text += "\n## Where the order of additions is laid down\n\n"
        text += "The limit is what this machine needs for the additions alone, over data in its cache.\n\n" + limited
    text += "\n## How it was measured\n\n"
    text += f"Passes over each workload, of which the lowest median counts: {' or '.join(map(str, passes))}.\n\n"
    text += "".join(f"- {run['date']}, commit {run['commit']}, `{run['command']}`\n" for run in results["runs"])
    text += "".join(f"- {machine}\n" for machine in dict.fromkeys(run["machine"] for run in results["runs"]))
    return text + "".join(f"- {system} {version}\n" for system, version in sorted(results["versions"].items()))


def rows_and_rivals(results):
    rows = [Row(workload, results["measured"]) for workload in workloads() if workload["id"] in results["measured"]]
    return rows, sorted(set().union(*(row.times for row in rows)))


# --- the chart


def draw(rows, rivals, file):
    """Has gnuplot draw a bar for Tessera and a dot for each rival, all over the best rival's time."""
    rows = [row for row in rows if row.ratio]
    blocks = [[(row.ratio, -i) for i, row in enumerate(rows)]]
    blocks += [[(row.times[rival] / row.times[row.best], -i) for i, row in enumerate(rows) if rival in row.times]
               for rival in rivals]
    names = ", ".join(f'"{row.name}" {-i}' for i, row in enumerate(rows)).replace("_", r"\\_")
    data = "".join(f"$block{k} << EOD\n" + "".join(f"{x:.4f} {y}\n" for x, y in block) + "EOD\n"
                   for k, block in enumerate(blocks))
    settings = f"rows = {len(rows)}\nrivals = '{' '.join(rivals)}'\nset ytics ({names})\n"
    drawn = subprocess.run(["gnuplot", "-"], input=data + settings + (HERE / "ratios.gp").read_text(), text=True,
                           stdout=subprocess.PIPE, check=True).stdout
    file.write_text(adapt_to_darkness(drawn))


def adapt_to_darkness(svg):
    """Exchanges ground, letters and lines for a reader who prefers dark pages; the drawing itself is for light ones."""
    exchanges = [("fill", "#ffffff", "#17191d"), ("fill", "rgb(32,33,36)", "#e4e4e6"),
                 ("stroke", "rgb( 32,  33,  36)", "#e4e4e6"), ("stroke", "rgb(208, 208, 208)", "#4a4d52")]
    rules = "\n".join(f'[{what}="{light}"] {{ {what}: {dark} }}' for what, light, dark in exchanges)
    start = svg.index(">", svg.index("<svg")) + 1
    return f"{svg[:start]}\n<style>@media (prefers-color-scheme: dark) {{\n{rules}\n}}</style>{svg[start:]}"


# --- commands


def render(results, folder):
    rows, rivals = rows_and_rivals(results)
    (folder / "results.md").write_text(markdown(results, rows, rivals))
    if rivals:
        draw(rows, rivals, folder / "ratios.svg")
    ratios = [row.ratio for row in rows if row.ratio]
    if ratios:
        print(f"{len(ratios)} workloads, geometric mean of the ratios {geometric_mean(ratios):.2f}, "
              f"highest {max(ratios):.2f}: {folder / 'results.md'}")


def check(results, folder):
    rows, rivals = rows_and_rivals(results)
    missing = [workload["id"] for workload in workloads() if workload["id"] not in results["measured"]]
    if missing:
        sys.exit(f"results.json lacks {', '.join(missing)}")
    if (folder / "results.md").read_text() != markdown(results, rows, rivals):
        sys.exit("results.md is not what results.json gives; scripts/compare.sh --render writes it")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("action", choices=("add", "render", "check", "own"))
    parser.add_argument("place", type=pathlib.Path)
    parser.add_argument("lines", type=pathlib.Path, nargs="*")
    parser.add_argument("--command", default="")
    parser.add_argument("--commit", default="")
    parser.add_argument("--version", default="")
    parser.add_argument("--afresh", action="store_true")
    options = parser.parse_args()
    if options.action == "own":
        lines = list(own_lines(options.place, options.version))
        print(*map(json.dumps, lines), sep="\n")
        sys.exit(None if lines else "no benchmark gave a result")
    file = options.place / "results.json"
    results = {} if options.afresh or not file.exists() else json.loads(file.read_text())
    if options.action == "check":
        check(results, options.place)
        return
    if options.action == "add":
        add(results, options.lines, options.command, options.commit)
        options.place.mkdir(parents=True, exist_ok=True)
        store(results, file)
    render(results, options.place)


if __name__ == "__main__":
    main()
