// Correlation matrices and specification limits as tables of cells, from a workbook's range or a CSV file.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "frontend/results/run_results.h"

namespace quorva::frontend {

/// Empty, a number, or text. Logical and error values arrive as text and are refused where a number is due.
using TableCell = std::variant<std::monostate, double, std::string>;
using CellTable = std::vector<std::vector<TableCell>>;

CellTable tableFromCsv(std::string_view text);

/// Field names in the first row and the first column, in the same order; the entry above them is free. An empty entry
/// counts as 0, and a triangle alone stands for both. `source` names the table in messages. Throws CommandFailure
/// (Model).
LabelledMatrix correlationFromTable(const CellTable& table, const std::string& source);

/// Columns name, LSL, USL, target (a header is optional, the target too); an empty limit is absent.
std::vector<SpecificationLimits> capabilityFromTable(const CellTable& table, const std::string& source);

/// Every label must name a distribution of the model, once. Throws CommandFailure (Model) with the nearest name.
void checkCorrelationLabels(const LabelledMatrix& matrix, const std::vector<Field>& fields, const std::string& source);
/// Every label must name a field of the model, once.
void checkCapabilityLabels(const std::vector<SpecificationLimits>& limits, const std::vector<Field>& fields,
                           const std::string& source);

}  // namespace quorva::frontend
