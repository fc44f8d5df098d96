#!/usr/bin/env python3
"""Measures pandas: pandas_workloads.py DATA_FOLDER ID,ID,...

Prints a line of JSON for each workload; docs/benchmarks/README.md tells the rules. A workload is what sets its inputs
up, once for all that share it, and what is timed.
"""

import csv
import functools
import gc
import json
import pathlib
import statistics
import sys
import time
import traceback

import numpy
import pandas

DATA = pathlib.Path(sys.argv[1])
WRITTEN = pathlib.Path("written.csv")
ROWS = 1_000_000
TYPES = dict.fromkeys(["id1", "id2", "id3"], str) | dict.fromkeys(["id4", "id5", "id6", "v1", "v2"], numpy.int32)
TYPES |= {"v3": numpy.float64}
LISTED = range(1, 10_000, 10)

# --- inputs

shared = functools.cache


def raw(file, dtype, count=-1):
    return numpy.fromfile(DATA / f"{file}.bin", dtype, count)


def columns(file, dtype=numpy.float64):
    return raw(file, dtype).reshape(10, ROWS)


def named(rows):
    return pandas.DataFrame(rows.T, columns=[f"c{i}" for i in range(len(rows))])


@shared
def num():
    return named(columns("num"))


@shared
def pair():
    return num(), named(columns("num")[::-1].copy())


@shared
def numnan():
    return named(columns("numnan"))


@shared
def i32():
    return named(columns("i32", numpy.int32))


@shared
def four():
    return named(columns("num")[:4].copy())


def g1_csv():
    return DATA / "g1.csv"


def read_g1(path):
    return pandas.read_csv(path, dtype=TYPES)


@shared
def g1():
    return read_g1(g1_csv())


def marked():
    return g1(), g1()["v3"] > 50


def shuffled():
    return g1(), raw("perm", numpy.int32)


@shared
def many():
    return num()[["c0", "c1"]].assign(key=raw("many_key", numpy.int32))


def side(name, key):
    types = {"key": numpy.int32, "skey": "S9"}
    keys = raw(f"{name}/{key}", types[key])
    keys = keys.astype(str).astype(object) if key == "skey" else keys
    return pandas.DataFrame({key: keys, "value": raw(f"{name}/value", numpy.float64)})


def sides(key):
    return shared(lambda: (side("join_left", key), side("join_right", key)))


NUMBER_SIDES, STRING_SIDES = sides("key"), sides("skey")


def times():
    stamps = pandas.to_datetime(raw("times/stamp", numpy.int32), unit="s")
    return pandas.DataFrame({name: raw(f"times/{name}", numpy.float64) for name in "ab"}, index=stamps)


def text_of(column):
    return lambda: pandas.read_csv(g1_csv(), usecols=[column], dtype=str)[column]


def square():
    return named(raw("num", numpy.float64, ROWS).reshape(1000, 1000))


# --- workloads

def grouped(keys, **outputs):
    return g1, lambda t: t.groupby(keys, as_index=False, sort=False).agg(outputs)


def joined(inputs, how):
    def merge(both):
        left, right = both
        return left.merge(right, how=how, on=left.columns[0])
    return inputs, merge


def sorted_by(*keys):
    return g1, lambda t: t.sort_values(list(keys), kind="stable")


WORKLOADS = {
    "read_csv": (g1_csv, read_g1),
    "write_csv": (g1, lambda t: t.to_csv(WRITTEN, index=False)),
    "sum_f64": (num, lambda t: t.sum()),
    "mean_f64": (num, lambda t: t.mean()),
    "max_f64": (num, lambda t: t.max()),
    "var_f64": (num, lambda t: t.var()),
    "std_f64": (num, lambda t: t.std()),
    "skew_f64": (num, lambda t: t.skew()),
    "kurt_f64": (num, lambda t: t.kurt()),
    "sum_i32": (i32, lambda t: t.sum()),
    "mean_nan_f64": (numnan, lambda t: t.mean()),
    "add_f64": (pair, lambda p: p[0] + p[1]),
    "mul_f64": (pair, lambda p: p[0] * p[1]),
    "div_f64": (pair, lambda p: p[0] / p[1]),
    "greater_f64": (pair, lambda p: p[0] > p[1]),
    "filter_half": (marked, lambda p: p[0][p[1]]),
    "take_perm": (shuffled, lambda p: p[0].take(p[1])),
    "sort_i32": sorted_by("id6"),
    "sort_f64": sorted_by("v3"),
    "sort_str": sorted_by("id3"),
    "sort_two": sorted_by("id4", "v3"),
    "group_q1": grouped(["id1"], v1="sum"),
    "group_q2": grouped(["id1", "id2"], v1="sum"),
    "group_q3": grouped(["id3"], v1="sum", v3="mean"),
    "group_q4": grouped(["id4"], v1="mean", v2="mean", v3="mean"),
    "group_q5": grouped(["id6"], v1="sum", v2="sum", v3="sum"),
    "group_std": grouped(["id4", "id5"], v3="std"),
    "group_transform_mean": (g1, lambda t: t.groupby("id6", sort=False)["v3"].transform("mean")),
    "group_many": (many, lambda t: t.groupby("key", as_index=False, sort=False).sum()),
    "merge_inner_i32": joined(NUMBER_SIDES, "inner"),
    "merge_left_i32": joined(NUMBER_SIDES, "left"),
    "merge_outer_i32": joined(NUMBER_SIDES, "outer"),
    "merge_inner_str": joined(STRING_SIDES, "inner"),
    "pivot_mean": (g1, lambda t: t.pivot_table(values="v3", index="id4", columns="id5", aggfunc="mean")),
    "resample_mean": (times, lambda t: t.resample("60s").mean()),
    "rolling_mean_10": (four, lambda t: t.rolling(10).mean()),
    "rolling_mean_100": (four, lambda t: t.rolling(100).mean()),
    "rolling_sum_1000": (four, lambda t: t.rolling(1000).sum()),
    "unique_i32": (g1, lambda t: t["id6"].unique()),
    "unique_str": (g1, lambda t: t["id3"].unique()),
    "isin_i32": (lambda: (g1(), list(LISTED)), lambda p: p[0]["id6"].isin(p[1])),
    "isin_str": (lambda: (g1(), [f"id{i:010}" for i in LISTED]), lambda p: p[0]["id3"].isin(p[1])),
    "duplicated_two": (g1, lambda t: t.duplicated(["id4", "id5"])),
    "cast_i32_str": (i32, lambda t: t.astype(str)),
    "cast_f64_str": (num, lambda t: t.apply(lambda column: column.map("{:.5e}".format))),
    "cast_str_f64": (text_of("v3"), lambda column: column.astype(numpy.float64)),
    "cast_str_i32": (text_of("id6"), lambda column: column.astype(numpy.int32)),
    "ffill_f64": (numnan, lambda t: t.ffill()),
    "interpolate_f64": (numnan, lambda t: t.interpolate()),
    "fillna_f64": (numnan, lambda t: t.fillna(0.0)),
    "dropna_rows_any": (numnan, lambda t: t.dropna()),
    "isnan_f64": (numnan, lambda t: t.isna()),
    "diff_f64": (num, lambda t: t.diff()),
    "round2_f64": (num, lambda t: t.round(2)),
    "replace_f64": (num, lambda t: t.replace(t.iat[0, 0], 0.0)),
    # T alone gives another view of the same memory, so its cells are copied column by column.
    "transpose_1000": (square, lambda t: pandas.DataFrame(numpy.array(t.T, order="F"))),
}

# --- measuring


def check_of(result, isOrdered):
    """The sum over all cells; the bytes of a file where there is no result."""
    if result is None:
        return (WRITTEN).stat().st_size
    if isinstance(result, numpy.ndarray):
        result = pandas.Series(result)
    table = result if isinstance(result, pandas.DataFrame) else result.to_frame()
    if table.index.name:
        table = table.reset_index()  # the keys are cells too
    weights = numpy.arange(len(table)) % 1009 + 1.0 if isOrdered else numpy.ones(len(table))
    table = table.apply(lambda column: column.str.len() if column.dtype == object else column)
    return float(numpy.nansum(table.select_dtypes(["number", "bool"]).astype(float).mul(weights, axis=0).to_numpy()))


def seconds_of(run, inputs):
    gc.collect()
    start = time.perf_counter()
    result = run(inputs)
    return time.perf_counter() - start, result


def measure(setUp, run, isOrdered):
    inputs = setUp()
    warm, result = seconds_of(run, inputs)
    check = check_of(result, isOrdered)
    del result
    count = 3 if warm > 3 else min(20, max(5, round(0.5 / warm)))
    return {"seconds": statistics.median(seconds_of(run, inputs)[0] for _ in range(count)), "check": check}


def main():
    version = f"{pandas.__version__}, numpy {numpy.__version__}, Python {sys.version.split()[0]}"
    chosen = set(sys.argv[2].split(","))
    failed = False
    with open(pathlib.Path(__file__).with_name("workloads.csv"), newline="") as file:
        listed = [row for row in csv.DictReader(file) if row["id"] in chosen and row["id"] in WORKLOADS]
    for row in listed:
        try:
            line = measure(*WORKLOADS[row["id"]], row["ordered"] == "1")
            print(json.dumps({"system": "pandas", "version": version, "workload": row["id"], **line}), flush=True)
        except Exception:  # a workload that fails does not end the others
            traceback.print_exc()
            failed = True
    sys.exit(failed)


if __name__ == "__main__":
    main()
