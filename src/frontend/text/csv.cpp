#include "frontend/text/csv.h"

namespace quorva::frontend {

char csvSeparator(std::string_view text) {
    int semicolons = 0, commas = 0;
    bool quoted = false;
    for (const char c : text.substr(0, text.find('\n'))) {
        quoted = quoted != (c == '"');
        semicolons += !quoted && c == ';' ? 1 : 0;
        commas += !quoted && c == ',' ? 1 : 0;
    }
    return semicolons > commas ? ';' : ',';
}

std::vector<std::vector<std::string>> parseCsv(std::string_view text) {
    if (text.starts_with("\xEF\xBB\xBF")) {
        text.remove_prefix(3);
    }
    const char separator = csvSeparator(text);
    std::vector<std::vector<std::string>> rows;
    std::vector<std::string> row;
    std::string field;
    bool quoted = false, any = false;
    const auto endRow = [&] {
        if (any || !field.empty() || !row.empty()) {
            row.push_back(std::move(field));
            rows.push_back(std::move(row));
        }
        field.clear();
        row.clear();
        any = false;
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted) {
            if (c != '"') {
                field += c;
            } else if (i + 1 < text.size() && text[i + 1] == '"') {
                field += text[++i];
            } else {
                quoted = false;
            }
        } else if (c == '"') {
            quoted = any = true;
        } else if (c == separator) {
            row.push_back(std::move(field));
            field.clear();
        } else if (c == '\n') {
            endRow();
        } else if (c != '\r') {
            field += c;
        }
    }
    endRow();
    return rows;
}

std::string csvField(std::string_view text) {
    if (text.find_first_of(",\"\r\n") == text.npos && (text.empty() || (text.front() != ' ' && text.back() != ' '))) {
        return std::string(text);
    }
    std::string quoted = "\"";
    for (const char c : text) {
        quoted += c;
        if (c == '"') {
            quoted += c;
        }
    }
    return quoted + "\"";
}

std::string csvName(std::string_view text) {
    const bool risky = !text.empty() && std::string_view("=+-@\t\r").find(text.front()) != std::string_view::npos;
    return csvField(risky ? "'" + std::string(text) : std::string(text));
}

}  // namespace quorva::frontend
