#!/usr/bin/env python3
"""Changes library sources in one place at a time and tells which changes no test notices.

    scripts/mutate.py [--limit N] [--seed S] FILE...

A comparison, an arithmetic or logical operator or a number is changed in a copy of the tree (build/mutants), and the
test program of the file's room is built and run; where that notices nothing, so are those of the rooms that build on
it. With --limit, N of all possible changes are drawn by the seed. A survivor is a test that is missing, or a change
that alters no result: each is looked at by a person.
"""

import argparse
import collections
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
COPY = ROOT / "build" / "mutants"
ROOMS = ("platform", "core", "functors", "operations", "numeric", "grouping")  # each builds on those before it
SECONDS = 120  # a run of a room's tests takes some ten; a change may make a loop endless

# clang-format puts blanks around binary operators, and none around template brackets, references and pointers.
SWAPS = {
    " < ": [" <= "], " <= ": [" < "], " > ": [" >= "], " >= ": [" > "], " == ": [" != "], " != ": [" == "],
    " && ": [" || "], " || ": [" && "], " + ": [" - "], " - ": [" + "], " * ": [" / "], " / ": [" * "], " % ": [" / "],
    " += ": [" -= "], " -= ": [" += "],
}
OPERATOR = re.compile("|".join(re.escape(text) for text in sorted(SWAPS, key=len, reverse=True)))
NUMBER = re.compile(r"(?<![\w.])(\d+)(?=U?L{0,2}\b)(?![\w.]*\.)")
# Texts, comments, and what is settled when the program is built.
HIDDEN = re.compile(r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])*\'|//.*|/\*.*?\*/|\[\[.*?\]\]')
SKIPPED = re.compile(r"^\s*(#|static_assert|template|using|namespace|\*|/\*)")

Change = collections.namedtuple("Change", "file line column old new")


def changes_of(file):
    for number, text in enumerate(file.read_text().splitlines()):
        if SKIPPED.match(text):
            continue
        shown = HIDDEN.sub(lambda match: "~" * len(match.group()), text)
        for match in OPERATOR.finditer(shown):
            for new in SWAPS[match.group()]:
                yield Change(file, number, match.start(), match.group(), new)
        for match in NUMBER.finditer(shown):
            for value in {int(match.group()) + 1, max(0, int(match.group()) - 1)} - {int(match.group())}:
                yield Change(file, number, match.start(), match.group(), str(value))


def shell(command, **options):
    """The exit code, or None after too long a time."""
    environment = dict(os.environ, CCACHE_BASEDIR=str(COPY), CCACHE_NOHASHDIR="1", GTEST_BRIEF="1", GTEST_FAIL_FAST="1")
    try:
        return subprocess.run(command, cwd=COPY, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, **options).returncode
    except subprocess.TimeoutExpired:
        return None


def build(room):
    return shell(["cmake", "--build", "build/release", "--target", f"{room}_tests"]) == 0


def passes(room):
    return shell([f"build/release/tests/{room}_tests"], timeout=SECONDS) == 0


def outcome_of(change, room):
    path = COPY / change.file.relative_to(ROOT)
    original = path.read_text()
    lines = original.splitlines(keepends=True)
    text = lines[change.line]
    lines[change.line] = text[:change.column] + change.new + text[change.column + len(change.old):]
    path.write_text("".join(lines))
    try:
        for tested in ROOMS[ROOMS.index(room):]:
            if not build(tested):
                return "refused by the compiler"
            if not passes(tested):
                return "noticed" if tested == room else "noticed by another room"
        return "survived"
    finally:
        path.write_text(original)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--limit", type=int)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("files", nargs="+", type=pathlib.Path)
    arguments = parser.parse_args()
    files = [file.resolve() for file in arguments.files]
    changes = [change for file in files for change in changes_of(file)]
    if arguments.limit is not None and arguments.limit < len(changes):
        changes = sorted(random.Random(arguments.seed).sample(changes, arguments.limit))

    for folder in ("tessera", "tests", "cmake", "examples"):
        shutil.copytree(ROOT / folder, COPY / folder, dirs_exist_ok=True)
    for file in ("CMakeLists.txt", "CMakePresets.json"):
        shutil.copy2(ROOT / file, COPY)
    if shell(["cmake", "--preset", "release"]) != 0:
        sys.exit("mutate: the copy can't be configured")
    rooms = {file: file.relative_to(ROOT).parts[1] for file in files}
    for room in sorted(set(rooms.values())):
        if not build(room) or not passes(room):
            sys.exit(f"mutate: {room}_tests fail without any change")

    counts = collections.Counter()
    for change in changes:
        outcome = outcome_of(change, rooms[change.file])
        counts[outcome] += 1
        if outcome == "survived":
            text = change.file.read_text().splitlines()[change.line].strip()
            print(f"{change.file.relative_to(ROOT)}:{change.line + 1}: "
                  f"'{change.old.strip()}' to '{change.new.strip()}' survived: {text}", flush=True)
    print(f"{len(changes)} changes: " + ", ".join(f"{number} {outcome}" for outcome, number in counts.most_common()))


if __name__ == "__main__":
    main()
