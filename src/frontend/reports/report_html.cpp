#include "frontend/reports/report_html.h"

#include <algorithm>
#include <cmath>

#include <nlohmann/json.hpp>

#include "frontend/reports/html_text.h"
#include "frontend/reports/model_terms.h"
#include "frontend/reports/report_assets.h"
#include "frontend/reports/report_json.h"
#include "frontend/reports/settings_text.h"
#include "frontend/text/number_text.h"

namespace quorva::frontend {

namespace {
using Json = nlohmann::ordered_json;

std::string shown(double value) { return readableNumber(value); }

/// Everything of one result; the lists of results are in the order of the fields.
struct ResultView {
    std::size_t index;
    const ResultCharts& charts;
    const Summary& summary;
    const Interval& interval;
    const Sensitivity* sensitivity = nullptr;
    const Tornado* tornado = nullptr;
};

std::vector<ResultView> resultViews(const RunResults& results) {
    std::vector<ResultView> views;
    std::size_t next = 0;
    for (std::size_t i = 0; i < results.fields.size(); ++i) {
        if (results.fields[i].kind != FieldKind::Result) {
            continue;
        }
        ResultView view{next, results.charts[next], results.summary[i], results.intervals[i]};
        view.sensitivity = next < results.sensitivity.size() ? &results.sensitivity[next] : nullptr;
        view.tornado = next < results.tornado.size() ? &results.tornado[next] : nullptr;
        views.push_back(view);
        ++next;
    }
    return views;
}

/// A result that never changes has no share of variation to tell.
bool hasSensitivity(const ResultView& view) {
    return view.sensitivity && !view.sensitivity->inputs.empty() &&
           !std::isnan(view.sensitivity->inputs.front().contribution);
}
bool hasTrace(const ResultView& view) { return view.charts.trace.iterations.size() > 1; }

Json chartData(const RunResults& results) {
    const Json run = runJson(results);
    Json list = Json::array();
    for (const ResultView& view : resultViews(results)) {
        const ResultCharts& charts = view.charts;
        Json entry{{"name", charts.name}};
        if (!charts.histogram.counts.empty()) {
            entry["histogram"] = {{"edges", numbersJson(charts.histogram.edges)},
                                  {"counts", charts.histogram.counts},
                                  {"cumulative", numbersJson(charts.histogram.cumulative)}};
        }
        if (view.tornado) {
            entry["tornado"] = run["tornado"][view.index];
        }
        if (hasSensitivity(view)) {
            entry["sensitivity"] = run["sensitivity"][view.index]["inputs"];
        }
        if (hasTrace(view)) {
            entry["trace"] = {{"iterations", charts.trace.iterations},
                              {"mean", numbersJson(charts.trace.mean)},
                              {"lower", numbersJson(charts.trace.lower)},
                              {"upper", numbersJson(charts.trace.upper)}};
        }
        if (!charts.scatter.x.empty()) {
            entry["scatter"] = {{"input", charts.scatter.input},
                                {"x", numbersJson(charts.scatter.x)},
                                {"y", numbersJson(charts.scatter.y)}};
        }
        list.push_back(std::move(entry));
    }
    return {{"results", std::move(list)}};
}

std::string percent(double share) { return readableNumber(share * 100, 4) + " %"; }

HtmlFigure histogramFigure(const ResultView& view, double tail) {
    HtmlFigure figure{"histogram-" + std::to_string(view.index), "Distribution of " + view.charts.name, "", {}};
    figure.description = percent(1 - 2 * tail) + " of the iterations lie between " + shown(view.interval.lower) +
                         " and " + shown(view.interval.upper) + "; the median is " + shown(view.interval.median) + ".";
    figure.data.header = {"From", "To", "Iterations", "Cumulative share"};
    figure.data.textColumns = 0;
    const Histogram& histogram = view.charts.histogram;
    for (std::size_t i = 0; i < histogram.counts.size(); ++i) {
        figure.data.rows.push_back({shown(histogram.edges[i]), shown(histogram.edges[i + 1]),
                                    std::to_string(histogram.counts[i]), percent(histogram.cumulative[i])});
    }
    return figure;
}

std::string tornadoFigures(const ResultView& view, const RunSettings& settings, bool scenarios) {
    const Tornado& tornado = *view.tornado;
    const std::string id = std::to_string(view.index);
    const bool band = settings.tornado->spread == TornadoSpread::Band;
    const std::string base = settings.tornado->base == TornadoBase::Default ? "default value" : "simulated median";
    const std::string kind = band ? "in a band of " + percent(settings.tornado->width) + " around its " + base
                                  : "across its central " + percent(1 - 2 * settings.tail) + " interval";
    const std::string bounds = scenarios ? " Scenario variables move between their bounds." : "";
    constexpr std::size_t mostBars = 15, mostLines = 8;
    const auto strongest = [&](std::size_t most) {
        return tornado.inputs.size() > most
                   ? " The " + std::to_string(most) + " widest of " + std::to_string(tornado.inputs.size()) + " inputs."
                   : std::string();
    };
    HtmlFigure bars{"tornado-" + id,
                    "Tornado of " + view.charts.name,
                    "Each input moves " + kind + " while the others stay at their " + base + "; base value " +
                        shown(tornado.base) + "." + bounds + " Widest on top." + strongest(mostBars),
                    {"", {"Input", "Low", "High", "Swing"}, {}, 1}};
    HtmlFigure spider{"spider-" + id,
                      "Spider of " + view.charts.name,
                      "The result against the position of each input, one line per input." + strongest(mostLines),
                      {"", {"Input"}, {}, 1}};
    spider.data.header.insert(spider.data.header.end(), tornado.points.begin(), tornado.points.end());
    for (const TornadoInput& input : tornado.inputs) {
        bars.data.rows.push_back({input.name, shown(input.low), shown(input.high), shown(input.swing)});
        auto& row = spider.data.rows.emplace_back(std::vector<std::string>{input.name});
        for (const double value : input.values) {
            row.push_back(shown(value));
        }
    }
    return html(bars) + html(spider);
}

HtmlFigure sensitivityFigure(const ResultView& view, SensitivityMeasure measure) {
    const SensitivityInput& first = view.sensitivity->inputs.front();
    const std::string which = measure == SensitivityMeasure::Rank ? "rank" : "linear";
    HtmlFigure figure{"sensitivity-" + std::to_string(view.index),
                      "Sensitivity of " + view.charts.name,
                      "Signed share of each input in the squared " + which + " correlations; the strongest is " +
                          first.name + " with " + percent(first.contribution) + ".",
                      {"", {"Input", "Correlation", "Contribution"}, {}, 1}};
    for (const SensitivityInput& input : view.sensitivity->inputs) {
        figure.data.rows.push_back({input.name, readableNumber(input.correlation, 4),
                                    std::isnan(input.contribution) ? "-" : percent(input.contribution)});
    }
    return figure;
}

HtmlFigure traceFigure(const ResultView& view) {
    const Trace& trace = view.charts.trace;
    HtmlFigure figure{"trace-" + std::to_string(view.index),
                      "Convergence of the mean of " + view.charts.name,
                      "Running mean with its 95 % interval, at the end " + shown(trace.lower.back()) + " to " +
                          shown(trace.upper.back()) + ".",
                      {"", {"Iterations", "Mean", "95 % lower", "95 % upper"}, {}, 0}};
    for (std::size_t i = 0; i < trace.iterations.size(); ++i) {
        figure.data.rows.push_back(
            {std::to_string(trace.iterations[i]), shown(trace.mean[i]), shown(trace.lower[i]), shown(trace.upper[i])});
    }
    return figure;
}

HtmlFigure scatterFigure(const ResultView& view) {
    const Scatter& scatter = view.charts.scatter;
    constexpr std::size_t shownRows = 50;
    HtmlFigure figure{"scatter-" + std::to_string(view.index),
                      view.charts.name + " against " + scatter.input,
                      "Iterations as points: the strongest input across, the result upwards.",
                      {"The first " + std::to_string(std::min(shownRows, scatter.x.size())) + " points",
                       {scatter.input, view.charts.name},
                       {},
                       0}};
    for (std::size_t i = 0; i < std::min(shownRows, scatter.x.size()); ++i) {
        figure.data.rows.push_back({shown(scatter.x[i]), shown(scatter.y[i])});
    }
    return figure;
}

std::string resultSection(const ResultView& view, const RunSettings& settings, bool scenarios) {
    std::string out = "<section id=\"result-" + std::to_string(view.index) + "\"><h2>" + escaped(view.charts.name) +
                      "</h2><div class=\"charts\">\n";
    out += view.charts.histogram.counts.empty() ? "" : html(histogramFigure(view, settings.tail));
    out += hasSensitivity(view) ? html(sensitivityFigure(view, settings.sensitivity)) : "";
    out += view.tornado ? tornadoFigures(view, settings, scenarios) : "";
    out += hasTrace(view) ? html(traceFigure(view)) : "";
    out += view.charts.scatter.x.empty() ? "" : html(scatterFigure(view));
    return out + "</div></section>\n";
}

/// One row per field, results first.
HtmlTable fieldRows(const RunResults& results, HtmlTable table, std::vector<std::string> (*cells)(const Summary&)) {
    for (const FieldKind kind :
         {FieldKind::Result, FieldKind::Distribution, FieldKind::ScenarioVariable, FieldKind::Statistic}) {
        for (const Summary& summary : results.summary) {
            if (summary.kind == kind) {
                auto& row = table.rows.emplace_back(cells(summary));
                row.insert(row.begin(), summary.name);
            }
        }
    }
    return table;
}

/// Two tables, each narrow enough for a page.
std::string summaryTables(const RunResults& results) {
    const HtmlTable moments{
        "Statistics of the stored values (Fisher skewness and excess kurtosis)",
        {"Field", "Kind", "Mean", "Std. error", "Std. deviation", "Skewness", "Kurtosis", "Values", "Errors"},
        {},
        2};
    HtmlTable percentiles{"Percentiles", {"Field", "Min"}, {}, 1};
    for (const int percentile : reportedPercentiles) {
        percentiles.header.push_back("P" + std::to_string(percentile));
    }
    percentiles.header.emplace_back("Max");
    return html(fieldRows(results, moments,
                          [](const Summary& summary) {
                              return std::vector<std::string>{std::string(kindName(summary.kind)),
                                                              shown(summary.mean),
                                                              readableNumber(summary.standardError, 3),
                                                              shown(summary.stdev),
                                                              readableNumber(summary.skewness, 3),
                                                              readableNumber(summary.kurtosis, 3),
                                                              std::to_string(summary.count),
                                                              std::to_string(summary.errors)};
                          })) +
           html(fieldRows(results, percentiles, [](const Summary& summary) {
               std::vector<std::string> row{shown(summary.minimum)};
               for (const double value : summary.percentiles) {
                   row.push_back(shown(value));
               }
               row.push_back(shown(summary.maximum));
               return row;
           }));
}

HtmlTable modelTable(const RunResults& results) {
    HtmlTable table{"", {"Field", "Cell", "Kind", "Definition", "Default"}, {}, 4};
    for (const Field& field : results.fields) {
        table.rows.push_back({field.name, cellAddress(field), std::string(kindName(field.kind)),
                              fieldDescription(field), shown(field.defaultValue)});
    }
    return table;
}

/// Correlations as a table whose cells are shaded by size and sign.
std::string heatTable(const std::string& caption, const LabelledMatrix& matrix) {
    constexpr std::size_t mostWide = 10;
    const std::size_t fields = matrix.names.size();
    std::string out = "<div class=\"scroll\"><table";
    if (fields > mostWide) {
        out += " class=\"dense\" style=\"--fields:" + std::to_string(std::max<std::size_t>(fields, 22)) + "\"";
    }
    out += ">" + (caption.empty() ? "" : "<caption>" + escaped(caption) + "</caption>") + "<thead><tr><th></th>";
    for (const std::string& name : matrix.names) {
        out += "<th scope=\"col\">" + escaped(name) + "</th>";
    }
    out += "</tr></thead><tbody>\n";
    for (std::size_t i = 0; i < matrix.names.size(); ++i) {
        out += "<tr><th scope=\"row\">" + escaped(matrix.names[i]) + "</th>";
        for (std::size_t j = 0; j < matrix.names.size(); ++j) {
            const double value = matrix.at(i, j);
            const int strength = std::isnan(value) ? 0 : static_cast<int>(std::lround(std::fabs(value) * 55));
            out += "<td class=\"heat\" style=\"background:color-mix(in srgb,var(" +
                   std::string(value < 0 ? "--c2" : "--c1") + ") " + std::to_string(strength) + "%,transparent)\">" +
                   (std::isnan(value) ? "–" : readableNumber(std::round(value * 1000) / 1000, 3)) + "</td>";
        }
        out += "</tr>\n";
    }
    return out + "</tbody></table></div>\n";
}

std::string correlationSection(const Correlations& correlations) {
    constexpr std::size_t most = 60;
    if (correlations.names.size() > most) {
        return "<p>" + std::to_string(correlations.names.size()) +
               " fields are too many for a matrix on a page; the JSON and .xlsx reports hold it.</p>\n";
    }
    std::string out = heatTable("Rank correlation (Spearman)", correlations.rank);
    out +=
        "<details><summary>Linear correlation (Pearson)</summary>" + heatTable("", correlations.linear) + "</details>";
    if (correlations.requested) {
        out += heatTable("Requested", *correlations.requested);
    }
    if (correlations.repaired) {
        out += heatTable("Repaired: the nearest possible matrix", *correlations.repaired);
    }
    return out;
}

/// Indices downwards: there are many of them, and few fields have limits.
HtmlTable capabilityTable(const RunResults& results) {
    HtmlTable table{"", {"Index"}, {{"LSL"}, {"USL"}, {"Target"}}, 1};
    for (const CapabilityName& name : capabilityNames) {
        table.rows.push_back({std::string(name.label)});
    }
    for (const Capability& capability : results.capability) {
        table.header.push_back(capability.limits.name);
        std::size_t row = 0;
        for (const double limit : {capability.limits.lower, capability.limits.upper, capability.limits.target}) {
            table.rows[row++].push_back(shown(limit));
        }
        for (const double index : capability.indices) {
            table.rows[row++].push_back(readableNumber(index, 4));
        }
    }
    return table;
}

HtmlTable settingsTable(const RunResults& results) {
    HtmlTable table{"", {"Setting", "Value"}, {}, 2};
    for (const auto& [name, value] : settingTexts(results)) {
        table.rows.push_back({name, value});
    }
    return table;
}

std::string requirementsSection(const RunResults& results) {
    std::string out =
        "<div class=\"scroll\"><table><thead><tr><th scope=\"col\" class=\"text\">Requirement</th><th "
        "scope=\"col\">Value</th><th scope=\"col\">Outcome</th></tr></thead><tbody>\n";
    for (const RequirementOutcome& outcome : results.requirements) {
        out += "<tr><td class=\"text\">" + escaped(outcome.expression) + "</td><td>" + shown(outcome.value) +
               "</td><td class=\"" + (outcome.passed ? "good\">met" : "bad\">not met") + "</td></tr>\n";
    }
    return out + "</tbody></table></div>\n";
}

HtmlTable convergenceTable(const Convergence& convergence) {
    HtmlTable table{convergenceText(convergence), {"Iteration", "Result", "Lower", "Upper", "Movement, %"}, {}, 2};
    constexpr std::size_t most = 20;
    table.caption += convergence.checks.size() > most ? "; the last " + std::to_string(most) + " checks" : "";
    const std::size_t first = convergence.checks.size() > most ? convergence.checks.size() - most : 0;
    for (std::size_t i = first; i < convergence.checks.size(); ++i) {
        for (const ConvergenceBound& bound : convergence.checks[i].bounds) {
            table.rows.push_back({std::to_string(convergence.checks[i].iteration), bound.name, shown(bound.lower),
                                  shown(bound.upper), readableNumber(bound.movement, 3)});
        }
    }
    return table;
}

std::string messages(const RunResults& results) {
    std::string out;
    for (const std::string& warning : results.warnings) {
        out += "<li><strong>Warning:</strong> " + escaped(warning) + "</li>\n";
    }
    for (const std::string& note : results.notes) {
        out += "<li>" + escaped(note) + "</li>\n";
    }
    return out.empty() ? "" : "<ul class=\"warnings\">" + out + "</ul>\n";
}
}  // namespace

std::string htmlReport(const RunResults& results) {
    const std::vector<ResultView> views = resultViews(results);
    std::string out =
        "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
        "'unsafe-inline'; script-src 'unsafe-inline'; img-src data:\">\n<title>Simulation of " +
        escaped(results.workbook) + "</title>\n<style>\n";
    out += reportStyle();
    out += "</style></head>\n<body><header><h1>Simulation of " + escaped(results.workbook) + "</h1><p class=\"lead\">" +
           escaped(samplingText(results)) +
           "</p>\n<nav aria-label=\"Contents\"><ul><li><a href=\"#summary\">Summary</a></li>";
    for (const ResultView& view : views) {
        out += "<li><a href=\"#result-" + std::to_string(view.index) + "\">" + escaped(view.charts.name) + "</a></li>";
    }
    out +=
        "<li><a href=\"#correlations\">Correlations</a></li><li><a href=\"#model\">Model</a></li><li><a "
        "href=\"#settings\">Settings</a></li></ul></nav></header>\n"
        "<main>" +
        messages(results) +
        "<noscript><p class=\"noscript\">The charts need JavaScript; the tables "
        "behind them do not.</p></noscript>\n<section id=\"summary\"><h2>Summary</h2>" +
        summaryTables(results) + "</section>\n";
    if (!results.requirements.empty()) {
        out += "<section><h2>Requirements</h2>" + requirementsSection(results) + "</section>\n";
    }
    const bool scenarios = std::any_of(results.fields.begin(), results.fields.end(),
                                       [](const Field& field) { return field.kind == FieldKind::ScenarioVariable; });
    for (const ResultView& view : views) {
        out += resultSection(view, results.settings, scenarios);
    }
    if (!results.capability.empty()) {
        out += "<section><h2>Capability</h2>" + html(capabilityTable(results)) + "</section>\n";
    }
    if (results.convergence) {
        out += "<section><h2>Convergence</h2>" + html(convergenceTable(*results.convergence)) + "</section>\n";
    }
    out += "<section id=\"correlations\"><h2>Correlations</h2>" + correlationSection(results.correlations) +
           "</section>\n<section id=\"model\"><h2>Model</h2>" + html(modelTable(results)) +
           "</section>\n<section id=\"settings\"><h2>Settings</h2>" + html(settingsTable(results)) +
           "</section></main>\n<footer>quorva " QUORVA_VERSION
           "</footer>\n<script type=\"application/json\" id=\"data\">" +
           scriptSafe(chartData(results).dump(-1, ' ', false, Json::error_handler_t::replace)) + "</script>\n<script>";
    out += chartLibrary();
    out += "</script>\n<script>";
    out += reportScript();
    out += "</script>\n</body></html>\n";
    return out;
}

}  // namespace quorva::frontend
