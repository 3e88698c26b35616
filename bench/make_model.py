#!/usr/bin/python3
"""Writes the workbooks of the benchmarks (needs openpyxl).

usage: make_model.py MODEL KIND SHEETS OUTPUT.xlsx

MODEL  project  ten uncertain inputs, ten rows of ten years, three outputs (103 formulas) on each of SHEETS sheets;
                compare/compare_loop.cpp, compare/project.R and compare/project.py compute the same
       plant    twenty inputs, eighteen rows of ten years, twenty totals and three outputs (203 formulas) on each sheet,
                with more of the worksheet functions that models use
KIND   normal   inputs QUORVA_SimNormal(100, 15)
       mixed    inputs of ten laws, each about 100
       rand     NORMINV(RAND(), 100, 15), for spreadsheet programs
The outputs of the first sheet are marked, except in `rand`.
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
    law, parameters, scale = MIXED[index % len(MIXED) if kind == "mixed" else 0]
    return f'=QUORVA_Sim{law}("input {index + 1:02d}",{parameters},{TAIL}{scale}'


def output(kind, first, name, formula):
    return f"={formula}" if kind == "rand" or not first else f'=QUORVA_SimRes("{name}",{formula},0,FALSE,1)'


def years(sheet, top, rows):
    """Rows of formulas below row `top`, which numbers the years: rows(column, column before, first year?)."""
    for year in range(1, 11):
        column, before = get_column_letter(year + 1), get_column_letter(year)
        sheet[f"{column}{top}"] = year
        for row, formula in enumerate(rows(column, before, year == 1), top + 1):
            sheet[f"{column}{row}"] = "=" + formula


def project(sheet, x, kind, first):
    years(sheet, 1, lambda c, p, start: [
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
    ])
    sheet["B13"] = output(kind, first, "NPV", "NPV(0.1,B11:K11)")
    sheet["B14"] = output(kind, first, "Revenue", "SUM(B4:K4)")
    sheet["B15"] = output(kind, first, "Worst year", "MIN(B11:K11)")


def plant(sheet, x, kind, first):
    years(sheet, 2, lambda c, p, start: [
        f"{x[0]}*10" if start else f"{p}3*(1+{x[1]}/5000)",    # 3 demand
        f"{x[2]}/10" if start else f"{p}4*(1+{x[3]}/10000)",   # 4 price
        f"{c}3*{c}4",                                          # 5 revenue
        f"{x[4]}/20*(1+{x[5]}/10000)^{c}$2",                   # 6 unit cost
        f"{c}3*{c}6",                                          # 7 cost
        f"{x[6]}*5+{x[7]}*{c}$2/10",                           # 8 fixed cost
        f"MIN({c}3,{x[8]}*12)",                                # 9 what the plant makes
        f"MAX({c}3-{c}9,0)",                                   # 10 what is bought
        f"IF({c}10>0,{x[9]}*2,{x[9]})",                        # 11 its cost
        f"MAX({x[10]},{c}5*0.02)",                             # 12 royalty
        f"{c}5-{c}7-{c}8-{c}11-{c}12",                         # 13 margin
        f"IF({c}$2<=2,{x[11]}*20,{x[12]}*2)",                  # 14 investment
        f"SUM($B14:{c}14)/10",                                 # 15 depreciation
        f"{c}13-{c}15",                                        # 16 profit
        f"MAX(0,{c}16*{x[13]}/400)",                           # 17 tax
        f"{c}5*{x[14]}/1000",                                  # 18 working capital
        f"{c}18" if start else f"{c}18-{p}18",                 # 19 its change
        f"{c}13-{c}17-{c}14-{c}19",                            # 20 cash flow
    ])
    totals = [
        f"{x[15]}/1000", "NPV(B23,B20:K20)", "SUM(B5:K5)", "SUM(B7:K8)", "SUMPRODUCT(B3:K3,B4:K4,B2:K2)",
        "AVERAGE(B13:K13)", "MIN(B20:K20)", "MAX(B20:K20)", f"IF(B29<0,{x[16]}*5,{x[16]})", f"K20*{x[17]}/20",
        "B32/(1+B23)^10", "SUM(B14:K14)", "B28/(B25/10)", 'COUNTIF(B20:K20,"<0")', f"B36*{x[18]}", "SUM(B17:K17)",
        "SUMPRODUCT(B20:K20,B2:K2)/SUM(B2:K2)", "ABS(B39-B28)", "SQRT(B40+1)",
        "IF(AND(B24>0,B35>0.1),B41,MAX(B41,10))",
    ]
    for row, formula in enumerate(totals, 23):
        sheet[f"B{row}"] = "=" + formula
    sheet["B45"] = output(kind, first, "NPV", "B24+B33-B31-B37")
    sheet["B46"] = output(kind, first, "Outlay", "B34+B26+B38+B31")
    sheet["B47"] = output(kind, first, "Return", "(B24+B34)/B34")


MODELS = {"project": (project, 10), "plant": (plant, 20)}


def main(model, kind, sheets, path):
    fill, count = MODELS[model]
    book = openpyxl.Workbook()
    inputs = book.active
    inputs.title = "Inputs"
    for index in range(count):
        inputs.cell(index + 1, 1, f"input {index + 1:02d}")
        inputs.cell(index + 1, 2, draw(kind, index))
    for number in range(1, sheets + 1):
        fill(book.create_sheet(f"Model{number}"), [f"Inputs!$B${row + 1}" for row in range(count)], kind, number == 1)
    book.save(path)


if __name__ == "__main__":
    if len(sys.argv) != 5 or sys.argv[1] not in MODELS or sys.argv[2] not in ("normal", "mixed", "rand"):
        sys.exit(__doc__)
    main(sys.argv[1], sys.argv[2], int(sys.argv[3]), sys.argv[4])
