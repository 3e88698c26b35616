#include "frontend/reports/summary_text.h"

#include <algorithm>
#include <cmath>

#include "frontend/reports/settings_text.h"
#include "frontend/text/number_text.h"
#include "frontend/text/text.h"

namespace quorva::frontend {

namespace {
constexpr std::size_t width = 100;

struct Column {
    std::string title;
    std::vector<std::string> cells;
};

std::string line(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text + "\n";
}

/// A first column of names and right-aligned columns of numbers.
std::string table(const std::string& title, const std::vector<std::string>& names, const std::vector<Column>& columns) {
    std::size_t numbers = 0;
    std::vector<std::size_t> widths;
    for (const Column& column : columns) {
        std::size_t widest = displayWidth(column.title);
        for (const std::string& cell : column.cells) {
            widest = std::max(widest, displayWidth(cell));
        }
        widths.push_back(widest);
        numbers += widest + 2;
    }
    std::size_t nameWidth = displayWidth(title);
    for (const std::string& name : names) {
        nameWidth = std::max(nameWidth, displayWidth(name));
    }
    nameWidth = std::min(nameWidth, width - std::min(numbers, width - 12));
    std::string out = fitLeft(title, nameWidth);
    for (std::size_t c = 0; c < columns.size(); ++c) {
        out += "  " + fitRight(columns[c].title, widths[c]);
    }
    out = line(out);
    for (std::size_t r = 0; r < names.size(); ++r) {
        std::string row = fitLeft(printable(names[r]), nameWidth);
        for (std::size_t c = 0; c < columns.size(); ++c) {
            row += "  " + fitRight(columns[c].cells[r], widths[c]);
        }
        out += line(row);
    }
    return out;
}

/// A sentence in lines of at most `width`, the later ones indented.
std::string wrapped(const std::string& text, const std::string& first, const std::string& later) {
    std::string out, current = first;
    bool empty = true;
    std::string rest = printable(text);
    while (!rest.empty()) {
        const auto blank = rest.find(' ');
        const std::size_t longest = bytesWithin(rest, width - displayWidth(later));
        const bool whole = std::min(blank, rest.size()) <= longest;
        const std::string word = rest.substr(0, whole ? blank : longest);
        rest = !whole ? rest.substr(longest) : blank == std::string::npos ? "" : rest.substr(blank + 1);
        // A word that is longer than a line goes on in the next one.
        if (!empty && displayWidth(current) + 1 + displayWidth(word) > width) {
            out += line(current);
            current = later;
            empty = true;
        }
        current += (empty ? "" : " ") + word;
        empty = false;
    }
    return out + line(current);
}

std::string summaryTable(const RunResults& results, FieldKind kind, const std::string& title) {
    std::vector<std::string> names;
    // The titles of keyFigures.
    std::vector<Column> columns{{"mean", {}}, {"stdev", {}}, {"min", {}}, {"P5", {}},
                                {"P50", {}},  {"P95", {}},   {"max", {}}};
    for (const Summary& summary : results.summary) {
        if (summary.kind != kind) {
            continue;
        }
        names.push_back(summary.name);
        std::size_t c = 0;
        for (const double value : keyFigures(summary)) {
            columns[c++].cells.push_back(readableNumber(value));
        }
    }
    return names.empty() ? "" : table(title, names, columns) + "\n";
}

/// The strongest inputs of each result, in one line per result.
std::string driversText(const RunResults& results) {
    constexpr std::size_t most = 3;
    std::string out;
    for (const Sensitivity& sensitivity : results.sensitivity) {
        std::string text;
        for (std::size_t i = 0; i < std::min(most, sensitivity.inputs.size()); ++i) {
            const SensitivityInput& input = sensitivity.inputs[i];
            if (std::isnan(input.contribution)) {
                continue;
            }
            text += (text.empty() ? "" : ", ") + shortened(input.name, 40) + " " +
                    readableNumber(input.contribution * 100, 3) + " %";
        }
        out += text.empty() ? "" : wrapped(shortened(sensitivity.result, 60) + ": " + text, "  ", "    ");
    }
    return out.empty() ? ""
                       : "Share of the variation explained by the strongest inputs (sign: direction)\n" + out + "\n";
}

std::string tornadoText(const RunResults& results) {
    constexpr std::size_t most = 5;
    std::string out;
    for (const Tornado& tornado : results.tornado) {
        std::vector<std::string> names;
        std::vector<Column> columns{{"low", {}}, {"high", {}}, {"swing", {}}};
        for (std::size_t i = 0; i < std::min(most, tornado.inputs.size()); ++i) {
            names.push_back(tornado.inputs[i].name);
            columns[0].cells.push_back(readableNumber(tornado.inputs[i].low));
            columns[1].cells.push_back(readableNumber(tornado.inputs[i].high));
            columns[2].cells.push_back(readableNumber(tornado.inputs[i].swing));
        }
        out +=
            table("Tornado of " + shortened(printable(tornado.result), 40) + ", base " + readableNumber(tornado.base),
                  names, columns) +
            "\n";
    }
    return out;
}

std::string capabilityText(const RunResults& results) {
    std::vector<std::string> names;
    std::vector<Column> columns{{"LSL", {}}, {"USL", {}}};
    std::vector<int> indices;
    for (const std::string_view key : {"cp", "cpl", "cpu", "cpk", "ppm_total"}) {
        indices.push_back(*capabilityIndex(key));
        columns.push_back({capabilityNames[indices.back()].label, {}});
    }
    for (const Capability& capability : results.capability) {
        names.push_back(capability.limits.name);
        columns[0].cells.push_back(readableNumber(capability.limits.lower, 4));
        columns[1].cells.push_back(readableNumber(capability.limits.upper, 4));
        for (std::size_t i = 0; i < indices.size(); ++i) {
            columns[i + 2].cells.push_back(readableNumber(capability.indices[indices[i]], 4));
        }
    }
    return names.empty() ? "" : table("Capability", names, columns) + "\n";
}

std::string requirementsText(const RunResults& results) {
    std::string out;
    for (const RequirementOutcome& requirement : results.requirements) {
        out += wrapped(requirement.expression + "   (is " + readableNumber(requirement.value) + ")",
                       requirement.passed ? "  met     " : "  NOT MET ", "          ");
    }
    return out.empty() ? "" : "Requirements\n" + out + "\n";
}
}  // namespace

std::string summaryText(const RunResults& results) {
    std::string out = wrapped(results.workbook, "", "");
    out += wrapped(samplingText(results), "", "") + "\n";
    out += summaryTable(results, FieldKind::Result, "Results");
    out += summaryTable(results, FieldKind::Distribution, "Inputs");
    out += summaryTable(results, FieldKind::ScenarioVariable, "Scenario variables");
    out += summaryTable(results, FieldKind::Statistic, "Statistics");
    out += driversText(results) + tornadoText(results) + capabilityText(results) + requirementsText(results);
    if (results.convergence && results.convergence->converged) {
        out += wrapped("Converged at iteration " + std::to_string(results.convergence->at) + " (" +
                           results.convergence->criterion + ")",
                       "", "  ");
    }
    for (const std::string& note : results.notes) {
        out += wrapped(note, "note: ", "      ");
    }
    for (const std::string& warning : results.warnings) {
        out += wrapped(warning, "warning: ", "         ");
    }
    return out;
}

}  // namespace quorva::frontend
