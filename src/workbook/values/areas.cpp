#include "workbook/values/areas.h"

#include "common/cell_names.h"

namespace quorva::workbook {

bool parseArea(std::string_view text, Area& area) {
    const auto colon = text.find(':');
    if (!parseCellName(text.substr(0, colon), area.firstRow, area.firstColumn)) {
        return false;
    }
    area.lastRow = area.firstRow;
    area.lastColumn = area.firstColumn;
    return colon == std::string_view::npos || (parseCellName(text.substr(colon + 1), area.lastRow, area.lastColumn) &&
                                               area.lastRow >= area.firstRow && area.lastColumn >= area.firstColumn);
}

}  // namespace quorva::workbook
