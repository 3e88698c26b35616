// The sheets of the .xlsx report that carry charts.
#pragma once

#include "frontend/reports/xlsx_book.h"
#include "frontend/results/run_results.h"

namespace quorva::frontend {

void writeResultsSheet(XlsxBook& book, XlsxSheet sheet, const RunResults& results);
void writeSensitivitySheet(XlsxBook& book, XlsxSheet sheet, const RunResults& results);
void writeTornadoSheet(XlsxBook& book, XlsxSheet sheet, const RunResults& results);
void writeSpiderSheet(XlsxBook& book, XlsxSheet sheet, const RunResults& results);
void writeConvergenceSheet(XlsxBook& book, XlsxSheet sheet, const RunResults& results);

}  // namespace quorva::frontend
