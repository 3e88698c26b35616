#!/usr/bin/env python3
"""Writes the example workbooks beside this script (needs python3-openpyxl). The same script gives the same bytes.

usage: make_examples.py [FOLDER]
"""
import datetime
import os
import sys
import tempfile
import zipfile

import openpyxl
from openpyxl.styles import Font, PatternFill
from openpyxl.utils import get_column_letter
from openpyxl.workbook.defined_name import DefinedName

DRAW = "0,0,0,FALSE,0,1"  # no truncation, default is the law's mean, shown in detail
TITLE = Font(bold=True, size=14)
HEAD = Font(bold=True, color="FFFFFF")
HEAD_FILL = PatternFill("solid", fgColor="1F4E79")
INPUT_FILL = PatternFill("solid", fgColor="FFF2CC")
RESULT_FILL = PatternFill("solid", fgColor="DDEBF7")


def start(title, question):
    book = openpyxl.Workbook()
    sheet = book.active
    sheet.title = "Model"
    sheet["A1"] = title
    sheet["A1"].font = TITLE
    sheet["A2"] = question
    sheet.column_dimensions["A"].width = 30
    for column in "BCDEFGHI":
        sheet.column_dimensions[column].width = 14
    return book, sheet


def header(sheet, row, titles):
    for column, title in enumerate(titles, 1):
        cell = sheet.cell(row, column, title)
        cell.font, cell.fill = HEAD, HEAD_FILL


def draw(sheet, cell, formula):
    sheet[cell] = "=" + formula
    sheet[cell].fill = INPUT_FILL


def result(sheet, cell, name, formula):
    sheet[cell] = f'=QUORVA_SimRes("{name}",{formula},0,FALSE,1)'
    sheet[cell].fill = RESULT_FILL


def name_range(book, name, target):
    book.defined_names.append(DefinedName(name, attr_text=target))


def matrix(sheet, row, column, names, entries):
    """A correlation matrix with names above and beside; `entries` are the pairs (i, j): value."""
    for i, name in enumerate(names):
        sheet.cell(row, column + 1 + i, name).font = Font(bold=True)
        sheet.cell(row + 1 + i, column, name).font = Font(bold=True)
        for j in range(len(names)):
            value = 1 if i == j else entries.get((i, j), entries.get((j, i), 0))
            sheet.cell(row + 1 + i, column + 1 + j, value)
    last = get_column_letter(column + len(names))
    return f"'{sheet.title}'!${get_column_letter(column)}${row}:${last}${row + len(names)}"


def project():
    book, sheet = start("Cost and schedule of a project", "How long will it take, and what will it cost?")
    header(sheet, 4, ["Task", "Optimistic", "Likely", "Pessimistic", "Days drawn", "Cost per day", "Cost"])
    tasks = [("Design", 20, 25, 45, 900), ("Permits", 15, 30, 60, 300), ("Foundations", 12, 15, 25, 2200),
             ("Structure", 40, 50, 80, 3100), ("Services", 25, 30, 50, 1800), ("Finishing", 20, 28, 40, 1400)]
    for row, (task, low, likely, high, rate) in enumerate(tasks, 5):
        for column, value in enumerate((task, low, likely, high), 1):
            sheet.cell(row, column, value)
        draw(sheet, f"E{row}", f"QUORVA_SimPert(A{row},B{row},C{row},D{row},{DRAW})")
        sheet.cell(row, 6, rate)
        sheet.cell(row, 7, f"=E{row}*F{row}")
    sheet["A12"], sheet["E12"] = "Design and permits run side by side", "=MAX(E5,E6)"
    sheet["A13"], sheet["E13"] = "Services and finishing overlap by 10 days", "=E9+E10-10"
    sheet["A15"] = "Duration in days"
    result(sheet, "B15", "Duration", "E12+E7+E8+E13")
    sheet["A16"] = "Cost"
    result(sheet, "B16", "Cost", "SUM(G5:G10)")
    sheet["A17"], sheet["B17"] = "Days beyond the contract (165)", "=MAX(0,B15-165)"
    sheet["A18"] = "Penalty (5,000 a day)"
    result(sheet, "B18", "Penalty", "B17*5000")
    return book


def investment():
    book, sheet = start("Net present value of an investment", "Is the plant worth 10 million?")
    header(sheet, 4, ["Input", "Mean", "Std. deviation", "Drawn"])
    inputs = [("Price", 52, 5), ("Unit cost", 31, 3), ("Volume", 130000, 12000)]
    for row, (name, mean, deviation) in enumerate(inputs, 5):
        sheet.cell(row, 1, name), sheet.cell(row, 2, mean), sheet.cell(row, 3, deviation)
        draw(sheet, f"D{row}", f"QUORVA_SimNormal(A{row},B{row},C{row},{DRAW})")
    sheet["A8"], sheet["D8"] = "Outlay", 10000000
    sheet["A9"], sheet["D9"] = "Discount rate", 0.08
    sheet["A10"], sheet["D10"] = "Fixed cost per year", 100000
    header(sheet, 12, ["Year"] + list(range(1, 6)))
    sheet["A13"] = "Cash flow"
    for column in "BCDEF":
        sheet[f"{column}13"] = "=($D$5-$D$6)*$D$7-$D$10"
    sheet["A15"] = "Net present value"
    result(sheet, "B15", "NPV", "NPV(D9,B13:F13)-D8")
    sheet["A17"] = "Prices and costs rise together; high prices cost volume"
    target = matrix(sheet, 18, 1, [name for name, _, _ in inputs], {(0, 1): 0.4, (0, 2): -0.3})
    name_range(book, "QUORVA_Correlation", target)
    return book


def tolerance():
    book, sheet = start("Tolerance stack-up", "Will the gap of an assembly stay within its limits?")
    header(sheet, 4, ["Part", "Nominal, mm", "Std. deviation", "Drawn"])
    parts = [("Housing", 50, 0.03), ("Bearing", 12, 0.01), ("Spacer", 20, 0.02), ("Cover", 17.5, 0.015)]
    for row, (part, nominal, deviation) in enumerate(parts, 5):
        sheet.cell(row, 1, part), sheet.cell(row, 2, nominal), sheet.cell(row, 3, deviation)
        draw(sheet, f"D{row}", f"QUORVA_SimNormal(A{row},B{row},C{row},{DRAW})")
    sheet["A10"] = "Gap, mm"
    result(sheet, "B10", "Gap", "D5-D6-D7-D8")
    header(sheet, 13, ["Name", "LSL", "USL", "Target"])
    for column, value in enumerate(("Gap", 0.35, 0.65, 0.5), 1):
        sheet.cell(14, column, value)
    name_range(book, "QUORVA_Capability", "Model!$A$13:$D$14")
    return book


def inventory():
    book, sheet = start("Newsvendor", "How many papers should be ordered before demand is known?")
    rows = [("Unit cost", 3), ("Price", 7), ("Salvage value", 1), ("Mean demand", 500), ("Std. deviation of demand", 80)]
    for row, (name, value) in enumerate(rows, 4):
        sheet.cell(row, 1, name), sheet.cell(row, 2, value)
    sheet["A10"] = "Order (decision)"
    draw(sheet, "B10", 'QUORVA_SimSVar("Order",400,640,1,10,TRUE,530,1)')
    sheet["A11"] = "Demand"
    draw(sheet, "B11", f'QUORVA_SimNormal("Demand",B7,B8,{DRAW})')
    sheet["A12"], sheet["B12"] = "Sold", "=MAX(0,MIN(B10,B11))"
    sheet["A13"], sheet["B13"] = "Left over", "=B10-B12"
    sheet["A15"] = "Profit"
    result(sheet, "B15", "Profit", "B12*B5+B13*B6-B10*B4")
    sheet["A16"] = "Papers left over"
    result(sheet, "B16", "Left over", "B13")
    sheet["A18"] = "Best order by the critical ratio"
    sheet["B18"] = "=NORMINV((B5-B4)/(B5-B6),B7,B8)"
    return book


def reserves():
    book, sheet = start("Reserve estimation", "How much oil can be recovered?")
    header(sheet, 4, ["Factor", "Mean of the logarithm", "Std. deviation of it", "Drawn"])
    factors = [("Area, km2", 3.2, 0.35), ("Thickness, m", 2.7, 0.25), ("Porosity and saturation", -2.1, 0.2),
               ("Recovery", -1.1, 0.15)]
    for row, (factor, mu, sigma) in enumerate(factors, 5):
        sheet.cell(row, 1, factor), sheet.cell(row, 2, mu), sheet.cell(row, 3, sigma)
        draw(sheet, f"D{row}", f"QUORVA_SimLogNormal(A{row},B{row},C{row},{DRAW})")
    sheet["A10"] = "Reserves, million m3"
    result(sheet, "B10", "Reserves", "D5*D6*D7*D8")
    return book


def portfolio():
    book, sheet = start("Portfolio", "What can a portfolio of four assets lose in a year?")
    header(sheet, 4, ["Asset", "Mean return", "Volatility", "Weight", "Return drawn"])
    assets = [("Bonds", 0.03, 0.05, 0.4), ("Shares", 0.07, 0.18, 0.3), ("Property", 0.05, 0.12, 0.2),
              ("Gold", 0.02, 0.15, 0.1)]
    for row, (asset, mean, volatility, weight) in enumerate(assets, 5):
        for column, value in enumerate((asset, mean, volatility, weight), 1):
            sheet.cell(row, column, value)
        draw(sheet, f"E{row}", f"QUORVA_SimNormal(A{row},B{row},C{row},{DRAW})")
    sheet["A10"] = "Return of the portfolio"
    result(sheet, "B10", "Return", "SUMPRODUCT(D5:D8,E5:E8)")
    sheet["A11"] = "Loss on 1,000,000"
    result(sheet, "B11", "Loss", "-B10*1000000")
    sheet["A13"] = "Correlations"
    target = matrix(sheet, 14, 1, [asset for asset, _, _, _ in assets],
                    {(0, 1): 0.1, (0, 2): 0.2, (1, 2): 0.6, (1, 3): -0.1, (0, 3): 0.15})
    name_range(book, "QUORVA_Correlation", target)
    return book


EXAMPLES = {"project": project, "investment": investment, "tolerance": tolerance, "inventory": inventory,
            "reserves": reserves, "portfolio": portfolio}


def save(book, path):
    """Saves with fixed times, so that the file changes only when the model does."""
    fixed = datetime.datetime(2020, 1, 1)
    book.properties.created = book.properties.modified = fixed
    book.properties.creator = "quorva examples"
    with tempfile.TemporaryDirectory() as folder:
        raw = os.path.join(folder, "raw.xlsx")
        book.save(raw)
        with zipfile.ZipFile(raw) as source, zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as target:
            for entry in sorted(source.namelist()):
                info = zipfile.ZipInfo(entry, (2020, 1, 1, 0, 0, 0))
                info.compress_type = zipfile.ZIP_DEFLATED
                content = source.read(entry)
                if entry == "docProps/core.xml":
                    stamp = content.split(b"<dcterms:modified")[1].split(b">", 1)[1].split(b"<")[0]
                    content = content.replace(stamp, b"2020-01-01T00:00:00Z")
                target.writestr(info, content)


def main(folder):
    for name, make in EXAMPLES.items():
        save(make(), os.path.join(folder, name + ".xlsx"))


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else os.path.dirname(os.path.abspath(__file__)))
