#include "frontend/text/text_table.h"

#include <algorithm>

#include "frontend/text/text.h"

namespace quorva::frontend {

std::string textTable(const std::vector<std::string>& header, const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths;
    for (std::size_t c = 0; c < header.size(); ++c) {
        std::size_t widest = displayWidth(header[c]);
        for (const auto& row : rows) {
            widest = std::max(widest, displayWidth(printable(row[c])));
        }
        widths.push_back(widest);
    }
    const auto line = [&](const std::vector<std::string>& cells) {
        std::string text;
        for (std::size_t c = 0; c < cells.size(); ++c) {
            text += (c == 0 ? "" : "  ") + fitLeft(printable(cells[c]), widths[c]);
        }
        text.erase(text.find_last_not_of(' ') + 1);
        return text + "\n";
    };
    std::string out = line(header);
    for (const auto& row : rows) {
        out += line(row);
    }
    return out;
}

}  // namespace quorva::frontend
