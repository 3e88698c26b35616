#!/usr/bin/python3
"""Writes the workbook that bench/compare/compare runs (needs openpyxl).

usage: make_model.py KIND SHEETS OUTPUT.xlsx

A ten-year project: ten uncertain inputs, ten rows of ten years, three outputs (103 formulas) on each of SHEETS sheets.
KIND  normal   inputs QUORVA_SimNormal(100, 15)
      mixed    inputs of ten laws, each about 100
      rand     NORMINV(RAND(), 100, 15), for spreadsheet programs
compare_loop.cpp, project.R and project.py compute the same model.
"""
import sys

import openpyxl
from openpyxl.utils import get_column_letter

TAIL = "0,0,0,FALSE,0,1)"
MIXED = [
    ("Normal", "100,15", ""), ("Gamma2", "2.5,40", ""), ("Beta", "2,5", "*350"), ("Triangular", "60,100,140", ""),
    ("Pert", "60,100,140", ""), ("Poisson", "4", "*25"), ("Student", "7", "*12+100"), ("Weibull2", "2,113", ""),
    ("LogNormal", "4.59,0.15", ""), ("Binomial", "200,0.5", ""),
]


def draw(kind, index):
    if kind == "rand":
        return "=NORMINV(RAND(),100,15)"
    law, parameters, scale = MIXED[index if kind == "mixed" else 0]
    return f'=QUORVA_Sim{law}("input {index + 1:02d}",{parameters},{TAIL}{scale}'


def output(kind, first, name, formula):
    return f"={formula}" if kind == "rand" or not first else f'=QUORVA_SimRes("{name}",{formula},0,FALSE,1)'


def project(sheet, kind, first):
    x = [f"Inputs!$B${row}" for row in range(1, 11)]
    for year in range(1, 11):
        c, p = get_column_letter(year + 1), get_column_letter(year)
        start = year == 1
        sheet[f"{c}1"] = year
        rows = [
            f"{x[0]}*10" if start else f"{p}2*(1+{x[1]}/5000)",    # 2 volume
            f"{x[2]}/10" if start else f"{p}3*(1+{x[3]}/10000)",   # 3 price
            f"{c}2*{c}3",                                          # 4 revenue
            f"{x[4]}/20*(1+{x[5]}/10000)^{c}1",                    # 5 unit cost
            f"{c}2*{c}5",                                          # 6 cost
            f"{x[6]}*5+{x[7]}*{c}1/10",                            # 7 fixed cost
            f"{c}4-{c}6-{c}7",                                     # 8 margin
            f"IF({c}1<=2,{x[8]}*20,{x[8]}*2)",                     # 9 investment
            f"MAX(0,{c}8*{x[9]}/400)",                             # 10 tax
            f"{c}8-{c}10-{c}9",                                    # 11 cash flow
        ]
        for row, formula in enumerate(rows, 2):
            sheet[f"{c}{row}"] = "=" + formula
    sheet["B13"] = output(kind, first, "NPV", "NPV(0.1,B11:K11)")
    sheet["B14"] = output(kind, first, "Revenue", "SUM(B4:K4)")
    sheet["B15"] = output(kind, first, "Worst year", "MIN(B11:K11)")


def main(kind, sheets, path):
    book = openpyxl.Workbook()
    inputs = book.active
    inputs.title = "Inputs"
    for index in range(10):
        inputs.cell(index + 1, 1, f"input {index + 1:02d}")
        inputs.cell(index + 1, 2, draw(kind, index))
    for number in range(1, sheets + 1):
        project(book.create_sheet(f"Project{number}"), kind, number == 1)
    book.save(path)


if __name__ == "__main__":
    if len(sys.argv) != 4 or sys.argv[1] not in ("normal", "mixed", "rand"):
        sys.exit(__doc__)
    main(sys.argv[1], int(sys.argv[2]), sys.argv[3])
