"""usage: check_xlsx.py REPORT.xlsx RUN.json SAMPLES.csv: reads a report with another program and compares its numbers."""
import csv
import json
import math
import sys

import openpyxl

book = openpyxl.load_workbook(sys.argv[1])
run = json.load(open(sys.argv[2]))


def same(cell, value):
    if value is None:
        assert cell is None, cell
    else:
        assert math.isclose(cell, value, rel_tol=1e-14, abs_tol=1e-300), (cell, value)


assert book.sheetnames == ["Summary", "Results", "Samples", "Correlations", "Sensitivity", "Tornado", "Spider",
                           "Convergence", "Capability", "Settings"], book.sheetnames

sheet = book["Results"]
titles = {cell.value: cell.column for cell in sheet[1]}
for row, field in enumerate(run["summary"], 2):
    assert sheet.cell(row, titles["Field"]).value == field["name"]
    for title, key in {"Count": "count", "Errors": "errors", "Mean": "mean", "Standard error": "standard_error",
                       "Standard deviation": "stdev", "Variance": "variance", "Skewness": "skewness",
                       "Excess kurtosis": "kurtosis", "Minimum": "min", "Maximum": "max"}.items():
        same(sheet.cell(row, titles[title]).value, field[key])
    for percentile, value in field["percentiles"].items():
        same(sheet.cell(row, titles["P" + percentile]).value, value)
assert sheet.freeze_panes == "B2"
assert len(sheet._charts) == len(run["sensitivity"]), len(sheet._charts)
for chart in sheet._charts:
    kinds = [type(part).__name__ for part in chart._charts]
    assert kinds == ["BarChart", "LineChart"], kinds

sheet = book["Tornado"]
row = 1
for tornado in run["tornado"]:
    while sheet.cell(row, 1).value != tornado["result"]:
        row += 1
    same(sheet.cell(row, 4).value, tornado["base"])
    for k, item in enumerate(tornado["inputs"]):
        assert sheet.cell(row + 2 + k, 1).value == item["name"]
        for column, key in ((2, "low"), (3, "high"), (4, "swing")):
            same(sheet.cell(row + 2 + k, column).value, item[key])
    row += 1
for name, charts in (("Sensitivity", 1), ("Tornado", 1), ("Spider", 1), ("Convergence", 1)):
    assert len(book[name]._charts) == charts * len(run["sensitivity"]), name

# A bar covers the values from low to high: an unseen part from the base to its start, then what lies below and above.
sheet = book["Tornado"]
row = 1
for tornado in run["tornado"]:
    while sheet.cell(row, 1).value != tornado["result"]:
        row += 1
    assert [sheet.cell(row + 1, c).value for c in (5, 6, 7)] == ["From the base", "Below the base", "Above the base"]
    for k, item in enumerate(tornado["inputs"]):
        start, below, above = (sheet.cell(row + 2 + k, c).value for c in (5, 6, 7))
        low, high = item["low"] - tornado["base"], item["high"] - tornado["base"]
        assert below <= 0 <= above and math.isclose(above - below, item["swing"], abs_tol=1e-9), (item, below, above)
        assert math.isclose(start + (below if low < 0 else 0), min(low, max(start, 0)), abs_tol=1e-9), (item, start)
        assert start == 0 or (start < 0 and high < 0) or (start > 0 and low > 0), (item, start)
    row += 1
for chart in book["Tornado"]._charts:
    assert chart.grouping == "stacked" and len(chart.series) == 3
    assert chart.series[0].graphicalProperties.noFill and chart.legend is None

# Nothing is cut off: one row per result and check, and the settings with their values.
sheet = book["Convergence"]
assert [cell.value for cell in sheet[2]][:5] == ["Result", "Iteration", "Lower", "Upper", "Movement, %"]
row = 3
for i, name in enumerate(run["convergence"]["watched"]):
    for check in run["convergence"]["checks"]:
        bound = check["bounds"][i]
        assert (sheet.cell(row, 1).value, sheet.cell(row, 2).value) == (name, check["iteration"])
        for column, key in ((3, "lower"), (4, "upper"), (5, "movement")):
            same(sheet.cell(row, column).value, bound[key])
        row += 1
settings = {cells[0].value: cells[1].value for cells in book["Settings"].iter_rows(min_row=2, max_row=17)}
assert settings["Seed"] == run["seed"] and settings["Iterations done"] == run["iterations"], settings
assert settings["Convergence tolerance, percent"] == 1e-9 and settings["Tornado points"] == 5, settings

# The strongest input on top: categories run downwards, values from left to right, names beside all bars.
for name, title in (("Sensitivity", "Share of the explained variation (sign: direction)"),
                    ("Tornado", "Change from the base value")):
    for chart in book[name]._charts:
        assert chart.barDir == "bar"
        assert chart.x_axis.scaling.orientation == "maxMin", name
        assert chart.y_axis.scaling.orientation == "minMax", name
        assert chart.x_axis.tickLblPos == "low" and chart.x_axis.title is None, name
        assert chart.y_axis.title.tx.rich.p[0].r[0].t == title, name
        assert name == "Tornado" or chart.y_axis.numFmt.formatCode == "0%", name
for name in ("Spider", "Convergence"):
    for chart in book[name]._charts:
        assert chart.x_axis.tickLblPos == "low", name
for tornado in run["tornado"]:
    swings = [abs(item["swing"]) for item in tornado["inputs"]]
    assert swings == sorted(swings, reverse=True), swings

# Six significant digits, whole numbers without a decimal point.
sheet = book["Results"]
for cells in sheet.iter_rows(min_row=2, max_row=1 + len(run["summary"]), min_col=5):
    for cell in cells:
        if cell.value is not None and cell.number_format != "0.00000E+00":
            decimals = len(cell.number_format.partition(".")[2])
            if cell.value == int(cell.value):
                assert decimals == 0, (cell.value, cell.number_format)
            else:
                wanted = min(9, max(0, 5 - math.floor(math.log10(abs(cell.value)))))
                assert decimals == wanted, (cell.value, cell.number_format)

if run["capability"]:
    sheet = book["Capability"]
    rows = {cells[0].value: [cell.value for cell in cells[1:]] for cells in sheet.iter_rows(min_row=2)}
    for k, item in enumerate(run["capability"]):
        assert sheet.cell(1, 2 + k).value == item["name"]
        for title, value in {"LSL": item["lsl"], "USL": item["usl"], "Target": item["target"],
                             "Cp": item["indices"]["cp"], "Cpk": item["indices"]["cpk"]}.items():
            same(rows[title][k], value)

sheet = book["Correlations"]
names = run["correlations"]["names"]
for i, line in enumerate(run["correlations"]["rank"]):
    for j, value in enumerate(line):
        same(sheet.cell(3 + i, 2 + j).value, value)

with open(sys.argv[3]) as text:
    for row, line in enumerate(csv.reader(text), 1):
        for column, value in enumerate(line, 1):
            if row == 1:
                assert row == 1 and (book["Samples"].cell(row, column).value or "").lower() == value.lower()
            else:
                same(book["Samples"].cell(row, column).value, float(value) if value else None)
