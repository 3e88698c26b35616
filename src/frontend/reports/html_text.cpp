#include "frontend/reports/html_text.h"

namespace quorva::frontend {

std::string escaped(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            case '\'':
                out += "&#39;";
                break;
            default:
                out += static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t' ? ' ' : c;
        }
    }
    return out;
}

std::string scriptSafe(std::string json) {
    std::string out;
    out.reserve(json.size());
    for (const char c : json) {
        if (c == '<' || c == '>' || c == '&') {
            out += c == '<' ? "\\u003c" : c == '>' ? "\\u003e" : "\\u0026";
        } else {
            out += c;
        }
    }
    return out;
}

std::string html(const HtmlTable& table) {
    std::string out = "<div class=\"scroll\"><table>";
    out += table.caption.empty() ? "" : "<caption>" + escaped(table.caption) + "</caption>";
    out += "<thead><tr>";
    for (std::size_t c = 0; c < table.header.size(); ++c) {
        out += static_cast<int>(c) < table.textColumns ? "<th scope=\"col\" class=\"text\">" : "<th scope=\"col\">";
        out += escaped(table.header[c]) + "</th>";
    }
    out += "</tr></thead><tbody>\n";
    for (const auto& row : table.rows) {
        out += "<tr>";
        for (std::size_t c = 0; c < row.size(); ++c) {
            out += static_cast<int>(c) < table.textColumns ? "<td class=\"text\">" : "<td>";
            out += escaped(row[c]) + "</td>";
        }
        out += "</tr>\n";
    }
    return out + "</tbody></table></div>\n";
}

std::string html(const HtmlFigure& figure) {
    return "<figure><h3>" + escaped(figure.title) + "</h3><div class=\"canvas\"><canvas id=\"" + escaped(figure.id) +
           "\" role=\"img\" aria-label=\"" + escaped(figure.title + ". " + figure.description) +
           "\"></canvas></div>\n<figcaption>" + escaped(figure.description) +
           "</figcaption><details><summary>Numbers behind the chart</summary>" + html(figure.data) +
           "</details></figure>\n";
}

}  // namespace quorva::frontend
