#include "frontend/commands/man_page.h"

#include <CLI/CLI.hpp>

namespace quorva::frontend {

namespace {
/// Text as the manual's formatter takes it: a leading dot or quote and every hyphen and backslash protected.
std::string roff(std::string_view text) {
    std::string out;
    bool lineStart = true;
    for (const char c : text) {
        if (lineStart && (c == '.' || c == '\'')) {
            out += "\\&";
        }
        if (c == '-') {
            out += "\\-";
        } else if (c == '\\') {
            out += "\\e";
        } else {
            out += c;
        }
        lineStart = c == '\n';
    }
    return out;
}

std::string optionText(const CLI::Option& option) {
    std::string names = option.get_positional() ? option.get_name(true) : option.get_name(false, true);
    std::string title = "\\fB" + roff(names) + "\\fR";
    if (!option.get_type_name().empty() && option.get_expected_max() > 0 && !option.get_positional()) {
        title += " \\fI" + roff(option.get_type_name().substr(0, option.get_type_name().find(':'))) + "\\fR";
    }
    std::string text = option.get_description();
    if (!option.get_default_str().empty()) {
        text += " (default " + option.get_default_str() + ")";
    }
    return ".TP\n" + title + "\n" + roff(text) + "\n";
}

std::string examples(const std::string& footer) {
    const auto start = footer.find("Examples:\n");
    return start == std::string::npos ? "" : ".PP\n.nf\n" + roff(footer.substr(start + 10)) + "\n.fi\n";
}
}  // namespace

std::string manPage(const CLI::App& app) {
    const std::string footer = app.get_footer();
    std::string page = ".TH QUORVA 1 \"\" \"quorva " QUORVA_VERSION "\" \"User Commands\"\n";
    page += ".SH NAME\nquorva \\- " + roff(app.get_description()) + "\n";
    page += ".SH SYNOPSIS\n";
    const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
    for (const CLI::App* command : commands) {
        const bool workbook = command->get_option_no_throw("WORKBOOK") != nullptr;
        page += ".B quorva " + command->get_name() + "\n" + (workbook ? "\\fIWORKBOOK\\fR [options]" : "[options]") +
                "\n.br\n";
    }
    page +=
        ".SH DESCRIPTION\n"
        "quorva opens a workbook whose cells define distributions and results with the QUORVA_Sim functions, "
        "recalculates it as Excel would, many thousand times with drawn values, and reports how the results vary.\n";
    page += ".SH COMMANDS\n";
    for (const CLI::App* command : commands) {
        page += ".SS quorva " + command->get_name() + "\n" + roff(command->get_description()) + ".\n";
        for (const CLI::Option* option : command->get_options()) {
            page += option->get_group().empty() ? "" : optionText(*option);
        }
        page += examples(command->get_footer());
    }
    page += ".SH EXIT STATUS\n" + roff(footer.substr(0, footer.find("\n\nExamples:"))) + "\n";
    page += ".SH EXAMPLES\n" + examples(footer);
    return page;
}

}  // namespace quorva::frontend
