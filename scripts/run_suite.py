#!/usr/bin/env python3
"""Runs the tests of a built preset once in each time zone, and counts cases where ctest counts programs.

    scripts/run_suite.py PRESET ZONE...     a line "PRESET/ZONE: N passed, M failed" for each zone
    scripts/run_suite.py --total            "N passed, M failed" over all suites since the last total

Tests that compute digests of seeded results append lines "digest NAME HEX" to the file that TESSERA_DIGEST_FILE names;
they end, sorted, in build/PRESET/digests.txt.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).resolve().parent.parent
COUNTS = ROOT / "build" / "test_counts.txt"
KINDS = ("passed", "failed", "skipped")


def phrase(counts):
    text = f"{counts['passed']} passed, {counts['failed']} failed"
    return text + (f", {counts['skipped']} skipped" if counts["skipped"] else "")


def count_program(program, report):
    """The cases of one program: those of its own report, or the program itself where it wrote none."""
    failed = program.find("failure") is not None or program.get("status") not in ("run", "disabled")
    counts = dict.fromkeys(KINDS, 0)
    if report.exists():
        suites = xml.etree.ElementTree.parse(report).getroot()
        number = {key: int(suites.get(key, 0)) for key in ("tests", "failures", "errors", "disabled")}
        counts["skipped"] = number["disabled"] + sum(int(suite.get("skipped", 0)) for suite in suites)
        counts["failed"] = number["failures"] + number["errors"]
        counts["passed"] = number["tests"] - counts["failed"] - counts["skipped"]
    else:
        counts["failed" if failed else "passed"] = 1
    if failed and counts["failed"] == 0:  # a sanitizer's report at exit, say
        counts["failed"] = 1
    return counts


def run(preset, zone, digests):
    label = f"{preset}/{zone.split('/')[-1]}"
    results = ROOT / "build" / preset / "results" / zone.replace("/", "_")
    shutil.rmtree(results, ignore_errors=True)
    results.mkdir(parents=True)
    environment = dict(os.environ, TZ=zone, GTEST_OUTPUT=f"xml:{results}/", GTEST_BRIEF="1")
    environment.pop("TESSERA_DIGEST_FILE", None)
    if digests:
        digests.unlink(missing_ok=True)
        environment["TESSERA_DIGEST_FILE"] = str(digests)

    print(f"== tests {label}", flush=True)
    summary = results / "ctest.junit"
    command = ["ctest", "--preset", preset, "--output-junit", str(summary)]
    code = subprocess.run(command, cwd=ROOT, env=environment, stdin=subprocess.DEVNULL).returncode

    totals = dict.fromkeys(KINDS, 0)
    if summary.exists():
        for program in xml.etree.ElementTree.parse(summary).getroot().iter("testcase"):
            for kind, number in count_program(program, results / f"{program.get('name')}.xml").items():
                totals[kind] += number
    if totals["passed"] + totals["failed"] == 0 or (code != 0 and totals["failed"] == 0):
        totals["failed"] += 1
    if digests and digests.exists():
        digests.write_text("".join(sorted(digests.read_text().splitlines(keepends=True))))
    record(label, totals)
    return totals["failed"] == 0


def record(label, counts):
    print(f"{label}: {phrase(counts)}", flush=True)
    with COUNTS.open("a") as file:
        file.write(" ".join([label] + [str(counts[kind]) for kind in KINDS]) + "\n")


def total():
    """Sums what the suites left; a caller that wants one total over several scripts holds theirs back."""
    if os.environ.get("TESSERA_HOLD_TOTAL") or not COUNTS.exists():
        return True
    totals = dict.fromkeys(KINDS, 0)
    for line in COUNTS.read_text().splitlines():
        for kind, number in zip(KINDS, line.split()[1:]):
            totals[kind] += int(number)
    COUNTS.unlink()
    print(phrase(totals), flush=True)
    return totals["failed"] == 0


def main(arguments):
    if arguments == ["--total"]:
        return total()
    if arguments[:1] == ["--record"]:  # LABEL PASSED FAILED: for a suite that is no ctest run
        record(arguments[1], dict(zip(KINDS, map(int, arguments[2:] + ["0"]))))
        return True
    preset, *zones = arguments
    digests = ROOT / "build" / preset / "digests.txt"
    outcomes = [run(preset, zone, digests if zone == zones[0] else None) for zone in zones]
    return all(outcomes)


if __name__ == "__main__":
    sys.exit(0 if main(sys.argv[1:]) else 1)
