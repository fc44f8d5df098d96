#!/usr/bin/env python3
"""Makes the data that the benchmarks read: benchmarks/make_data.py [FOLDER]

Without an argument they go where the benchmarks look for them: the folder that TESSERA_BENCH_DATA names, else
tessera-bench-data in the temporary folder. They are the same each time. A folder that is complete is left as it is, and
so is each file that is there. They take 400 MB.

All tables have a million rows. A raw file holds the values of a column one after the other, little-endian, and those
of a table of one type column after column.
"""

import os
import pathlib
import sys
import tempfile

import numpy

ROWS = 1_000_000
COLUMNS = 10
MINUTE, WEEK = 60, 7 * 24 * 3600
COMPLETE = "complete-v1"


def generator(file):
    """Numbers of its own for each file, so that none depends on which others are written."""
    return numpy.random.default_rng([2026, *file.encode()])


def numbered(prefix, digits, numbers):
    """ASCII strings of one width: the prefix, and each number with leading zeros."""
    powers = 10 ** numpy.arange(digits - 1, -1, -1)
    text = numpy.empty((len(numbers), len(prefix) + digits), numpy.uint8)
    text[:, :len(prefix)] = numpy.frombuffer(prefix, numpy.uint8)
    text[:, len(prefix):] = numbers[:, numpy.newaxis] // powers % 10 + ord("0")
    return text


def whole(file, least, most, size=ROWS):
    return generator(file).integers(least, most, size, numpy.int32, endpoint=True)


def g1():
    """Three keys of strings, three of numbers, two small numbers and one with 6 decimals."""
    return {
        "id1": numbered(b"id", 3, whole("id1", 1, 100)),
        "id2": numbered(b"id", 3, whole("id2", 1, 100)),
        "id3": numbered(b"id", 10, whole("id3", 1, 10_000)),
        "id4": whole("id4", 1, 100),
        "id5": whole("id5", 1, 100),
        "id6": whole("id6", 1, 10_000),
        "v1": whole("v1", 1, 5),
        "v2": whole("v2", 1, 15),
        "v3": generator("v3").uniform(0, 100, ROWS).round(6),
    }


def join_side(side):
    """Keys that are distinct within a side, in no order; a tenth of the right ones is not on the left."""
    keys = numpy.arange(ROWS, dtype=numpy.int32)
    if side == "join_right":
        keys[generator("strangers").permutation(ROWS)[:ROWS // 10]] += ROWS
    keys = generator(side).permutation(keys)
    return {"key": keys, "skey": numbered(b"k", 8, keys), "value": generator(side + "/value").standard_normal(ROWS)}


def times():
    """Moments of a week in no order; the week begins with a whole minute."""
    stamps = 1_700_000_000 // MINUTE * MINUTE + generator("stamp").integers(0, WEEK, ROWS)
    return {"stamp": stamps.astype(numpy.int32), "a": generator("a").standard_normal(ROWS),
            "b": generator("b").standard_normal(ROWS)}


def num():
    return generator("num").standard_normal((COLUMNS, ROWS))


def numnan():
    """num with gaps. The ends stay, since systems differ in how they fill a gap without a neighbour."""
    values = num()
    isMissing = generator("numnan").random((COLUMNS, ROWS)) < 0.05
    isMissing[:, [0, -1]] = False
    values[isMissing] = numpy.nan
    return values


def write_csv(path, table):
    texts = [[bytes(cell).decode() for cell in column] if column.ndim == 2 else
             [f"{cell:.6f}" for cell in column] if column.dtype.kind == "f" else
             [str(cell) for cell in column] for column in table.values()]
    with open(path, "w", newline="") as file:
        file.write(",".join(table) + "\n")
        file.writelines(",".join(row) + "\n" for row in zip(*texts))


def make(path, write):
    """Writes a file that is not there, under its name only when it is whole."""
    if path.exists():
        return
    print("making", path.name, file=sys.stderr)
    path.parent.mkdir(parents=True, exist_ok=True)
    partial = path.with_name(path.name + ".partial")
    write(partial)
    partial.replace(path)


def make_raw(path, values):
    make(path, lambda partial: numpy.ascontiguousarray(values()).tofile(partial))


def main():
    temporary = os.path.join(tempfile.gettempdir(), "tessera-bench-data")
    folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else os.environ.get("TESSERA_BENCH_DATA", temporary))
    if (folder / COMPLETE).exists():
        return
    tables = {"g1": g1(), "join_left": join_side("join_left"), "join_right": join_side("join_right"), "times": times()}
    for name, table in tables.items():
        for column, values in table.items():
            make_raw(folder / name / f"{column}.bin", lambda values=values: values)
    make(folder / "g1.csv", lambda partial: write_csv(partial, tables["g1"]))
    make_raw(folder / "num.bin", num)
    make_raw(folder / "numnan.bin", numnan)
    make_raw(folder / "i32.bin", lambda: whole("i32", -1_000_000, 1_000_000, (COLUMNS, ROWS)))
    make_raw(folder / "perm.bin", lambda: generator("perm").permutation(ROWS).astype(numpy.int32))
    make_raw(folder / "many_key.bin", lambda: whole("many_key", 0, 199_999))
    (folder / COMPLETE).touch()


if __name__ == "__main__":
    main()
