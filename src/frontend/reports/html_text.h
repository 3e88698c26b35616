// Pieces of an HTML page. Every text that comes from a model passes through escaped().
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorva::frontend {

/// Text as it may stand in content and in quoted attributes.
std::string escaped(std::string_view text);
/// JSON as it may stand inside a script element.
std::string scriptSafe(std::string json);

struct HtmlTable {
    std::string caption;
    std::vector<std::string> header;
    std::vector<std::vector<std::string>> rows;  ///< texts, escaped when written
    int textColumns = 1;                         ///< leading columns aligned on the left
};
std::string html(const HtmlTable& table);

/// A chart's canvas with its title, description for those who cannot see it, and the table behind it.
struct HtmlFigure {
    std::string id;
    std::string title;
    std::string description;
    HtmlTable data;
};
std::string html(const HtmlFigure& figure);

}  // namespace quorva::frontend
