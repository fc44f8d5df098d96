#!/usr/bin/env python3
"""Computes the figures of the weather report from its CSV files, without the library, and looks for them in its output.

    weather_report.py DATA_FOLDER OUTPUT_FOLDER COMMAND...    COMMAND runs the report
"""

import collections
import csv
import datetime
import math
import pathlib
import re
import subprocess
import sys

DIGITS = 6  # of a figure in a table
ABSENT = "inf"  # equals no figure


def columns_of(path):
    with open(path, newline="") as file:
        rows = list(csv.reader(file))
    return {name: [row[c] for row in rows[1:]] for c, name in enumerate(rows[0])}


def rows_of(path):
    columns = columns_of(path)
    return [dict(zip(columns, row)) for row in zip(*columns.values())]


def numbers_of(texts):
    return [float(text) for text in texts]


def is_shown(text, expected):
    """Whether a text is a number as the report rounds it."""
    shown = float(text)
    if math.isnan(expected):
        return math.isnan(shown)
    if expected == 0:
        return shown == 0
    unit = 10.0 ** (math.floor(math.log10(abs(expected))) + 1 - DIGITS)
    return abs(shown - expected) <= 0.500001 * unit


def summary_of(cells):
    """Statistics of the cells that are there; the range is that of all cells."""
    there = [cell for cell in cells if not math.isnan(cell)]
    n = len(there)
    mean = math.fsum(there) / n
    second, third, fourth = (math.fsum((x - mean) ** power for x in there) / n for power in (2, 3, 4))
    skewness = third / second**1.5 * math.sqrt(n * (n - 1)) / (n - 2)
    kurtosis = (n - 1) / ((n - 2) * (n - 3)) * ((n + 1) * (fourth / second**2 - 3) + 6)
    spread = max(there) - min(there) if n == len(cells) else math.nan
    return {"count": n, "mean": mean, "min": min(there), "max": max(there), "range": spread, "skewness": skewness,
            "kurtosis": kurtosis, "max_row": cells.index(max(there))}


def tables_of(report):
    """The printed tables by the line above them; each a list of rows, a row a dictionary of texts."""
    tables = {}
    for block in report.split("\n\n"):
        lines = block.splitlines()
        if len(lines) > 3 and lines[-1].endswith("columns]"):
            cells = [re.split(" {2,}", line.strip()) for line in lines[1:-1]]
            tables[lines[0]] = [dict(zip(cells[0], row[1:])) for row in cells[2:]]
    return tables


class Check:
    def __init__(self, report):
        self.report = report
        self.tables = tables_of(report)
        self.failures = []

    def figure(self, what, shown, expected):
        if not is_shown(shown, expected):
            self.failures.append(f"{what} is {shown}, not {expected}")

    def words(self, name, expected):
        """A "name: value" in the report's text."""
        wanted = f"{name}: {expected}"
        if not re.search(re.escape(wanted) + r"(?![\w.])", self.report):
            self.failures.append(f"no '{wanted}'")

    def table(self, title, expected):
        """Figures by row and column of a printed table whose first column names the row."""
        rows = {row["column"]: row for row in self.tables.get(title, [])}
        for row, figures in expected.items():
            for column, figure in figures.items():
                self.figure(f"{title}, {row}, {column}", rows.get(row, {}).get(column, ABSENT), figure)
        if list(rows) != list(expected):
            self.failures.append(f"{title} has the rows {list(rows)}")


def check_seattle(check, data):
    weather = columns_of(data / "seattle-weather.csv")
    numbers = {name: numbers_of(weather[name]) for name in ("precipitation", "temp_max", "temp_min", "wind")}
    high, low = numbers["temp_max"], numbers["temp_min"]
    numbers["temp_swing"] = [a - b for a, b in zip(high, low)]
    expected = {name: summary_of(cells) for name, cells in numbers.items()}
    check.table("Summary", expected)
    check.table("The summary, written and read back", expected)
    for row in check.tables["Summary"]:
        date = weather["date"][int(row["max_row"])]
        if row["max_date"][:10] != date:
            check.failures.append(f"{row['column']} was largest on {date}, not {row['max_date']}")

    hot = [day > 30 for day in high]
    check.words("Days above 30 degrees", sum(hot))
    check.words("of which dry", sum(is_hot and rain == 0 for is_hot, rain in zip(hot, numbers["precipitation"])))
    check.words("Days with frost", sum(night < 0 for night in low))

    means = [math.fsum(high[day - 29:day + 1]) / 30 for day in range(29, len(high))]
    check.words("Warmest 30 days end on", weather["date"][means.index(max(means)) + 29])
    check.words("Their mean of temp_max", f"{max(means):.6g}")


def check_kinds_of_weather(check, data):
    weather = columns_of(data / "seattle-weather.csv")
    days = rows_of(data / "seattle-weather.csv")
    rainy = [day for day in days if day["weather"] == "rain"]
    check.words("Rainy days", f"{len(rainy)} of {len(days)}")
    rainy.sort(key=lambda day: (float(day["precipitation"]), float(day["wind"])), reverse=True)
    shown = check.tables.get("The wettest rainy days", [])
    if [row["date"][:10] for row in shown] != [day["date"] for day in rainy[:5]]:
        check.failures.append(f"the wettest rainy days are {shown}")

    kinds = list(dict.fromkeys(weather["weather"]))
    shown = check.tables.get("Kinds of weather, as they first came", [])
    if [row["weather"] for row in shown] != kinds:
        check.failures.append(f"the kinds of weather are {shown}")
    shown = check.tables.get("Days by kind of weather", [])
    expected = [(kind, weather["weather"].count(kind), weather["date"][weather["weather"].index(kind)])
                for kind in sorted(kinds)]
    if [(row["weather"], int(row["days"]), row["first_day"][:10]) for row in shown] != expected:
        check.failures.append(f"the groups are {shown}")


def same_rows(check, title, shown, expected):
    """Rows of figures by column, in order."""
    if len(shown) != len(expected):
        check.failures.append(f"{title} has {len(shown)} rows, not {len(expected)}")
    for row, figures in zip(shown, expected):
        for column, figure in figures.items():
            check.figure(f"{title}, {row}, {column}", row.get(column, ABSENT), figure)


def check_parts_of_the_year(check, data, output):
    weather = columns_of(data / "seattle-weather.csv")
    dates = [datetime.date.fromisoformat(text) for text in weather["date"]]
    months = []
    for month in range(1, 13):
        days = [day for day, date in enumerate(dates) if date.month == month]
        months.append({"month": month} | {
            name: math.fsum(float(weather[name][day]) for day in days) / len(days)
            for name in ("precipitation", "temp_max", "temp_min", "wind")})
    same_rows(check, "Means by month", rows_of(output / "monthly-means.csv"), months)

    shown = check.tables.get("Days by weather and year", [])
    counts = collections.Counter(zip(weather["weather"], (date.year for date in dates)))
    kinds = list(dict.fromkeys(weather["weather"]))
    if [row["weather"] for row in shown] != kinds:
        check.failures.append("the cross table has other rows")
    same_rows(check, "Days by weather and year", shown,
              [{f"days-{year}": counts[kind, year] for year in (2012, 2013, 2014, 2015)} for kind in kinds])

    wet = [(date, float(rain)) for date, rain in zip(dates, weather["precipitation"])
           if date.year == 2012 and float(rain) > 0]
    weeks = [[] for _ in range((wet[-1][0] - wet[0][0]).days // 7 + 1)]
    for date, rain in wet:
        weeks[(date - wet[0][0]).days // 7].append(rain)
    check.words("Weeks of 2012", f"{len(weeks)}, of which without rain: {sum(not week for week in weeks)}")
    shown = rows_of(output / "weekly-rain.csv")
    same_rows(check, "Weekly rain", shown, [{"precipitation": max(week, default=math.nan)} for week in weeks])
    if [row["date"][:10] for row in shown] != [
            str(wet[0][0] + datetime.timedelta(weeks=week)) for week in range(len(weeks))]:
        check.failures.append("the weeks have other dates")


def check_cities(check, data):
    cities = [columns_of(data / name) for name in ("seattle-temps.csv", "sf-temps.csv")]
    seattle, other = (dict(zip((time[:16] for time in city["time"]), numbers_of(city["temp"]))) for city in cities)
    differences = [other[hour] - seattle[hour] for hour in seattle if hour in other]
    check.words("Hours merged", len(differences))
    check.words("San Francisco is warmer by", f"{math.fsum(differences) / len(differences):.6g}")
    check.words("Hours in which Seattle is warmer", sum(difference < 0 for difference in differences))


def filled(cells):
    """Each gap takes the last value before it."""
    result = []
    for cell in cells:
        result.append(result[-1] if math.isnan(cell) and result else cell)
    return result


def interpolated(cells):
    """Each gap takes the straight line between its neighbours; at the end, the last value."""
    there = [i for i, cell in enumerate(cells) if not math.isnan(cell)]
    result = filled(cells)
    for left, right in zip(there, there[1:]):
        for i in range(left, right):
            result[i] = cells[left] + (cells[right] - cells[left]) * (i - left) / (right - left)
    return result


def check_air_quality(check, data):
    air = columns_of(data / "airquality.csv")
    numbers = {name: numbers_of(air[name]) for name in ("Ozone", "Solar.R", "Wind", "Temp")}
    complete = [day for day in zip(*air.values()) if "nan" not in day]
    check.words("Incomplete days", f"{len(air['Temp']) - len(complete)} of {len(air['Temp'])}")
    numbers["Temp"] = [(fahrenheit - 32) * 5 / 9 for fahrenheit in numbers["Temp"]]
    check.table("Missing values", {name: {
        "gaps": sum(map(math.isnan, cells)),
        "mean": summary_of(cells)["mean"],
        "mean_filled": summary_of(filled(cells))["mean"],
        "mean_interpolated": summary_of(interpolated(cells))["mean"],
    } for name, cells in numbers.items()})
    check.table("Summary, in Celsius", {name: summary_of(cells) for name, cells in numbers.items()})
    check.table("Summary, gaps interpolated",
                {name: summary_of(interpolated(cells)) for name, cells in numbers.items()})


def main(data, output, *command):
    run = subprocess.run([*command, data, output], capture_output=True, text=True)
    check = Check(run.stdout)
    check_seattle(check, pathlib.Path(data))
    check_kinds_of_weather(check, pathlib.Path(data))
    check_parts_of_the_year(check, pathlib.Path(data), pathlib.Path(output))
    check_cities(check, pathlib.Path(data))
    check_air_quality(check, pathlib.Path(data))
    print(*check.failures, run.stderr, sep="\n")
    return run.returncode or bool(check.failures)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
