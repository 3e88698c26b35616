#include "frontend/commands/command_line.h"

#include <algorithm>
#include <limits>
#include <sstream>

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include "frontend/results/settings.h"
#include "frontend/run/convergence_criterion.h"

namespace quorva::frontend {

namespace {
constexpr const char* version = QUORVA_VERSION;
constexpr int largest = std::numeric_limits<int>::max();
constexpr std::size_t descriptionColumn = 34;

/// An open interval of numbers, which the library's own ranges do not offer.
CLI::Validator between(double low, double high, const std::string& text) {
    return CLI::Validator(
        [=](std::string& input) -> std::string {
            double value = 0;
            if (!CLI::detail::lexical_cast(input, value) || !(value > low && value < high)) {
                return "'" + input + "' is not " + text;
            }
            return {};
        },
        "", text);
}

CLI::Validator wholeNumber(int low, int high) {
    const std::string text = "a whole number from " + std::to_string(low) + " to " + std::to_string(high);
    return CLI::Validator(
        [=](std::string& input) -> std::string {
            long value = 0;
            const bool digits = input.find_first_not_of("0123456789-") == std::string::npos;
            if (!digits || !CLI::detail::lexical_cast(input, value) || value < low || value > high) {
                return "'" + input + "' is not " + text;
            }
            return {};
        },
        "", text);
}

CLI::Validator convergenceCriterion() {
    return CLI::Validator(
        [](std::string& input) -> std::string {
            ConvergenceSettings settings;
            const bool known = readCriterion(input, settings);
            return known ? "" : "'" + input + "' is not mean, stdev or percentile=P with P between 0 and 100";
        },
        "", "criterion");
}

void addWorkbook(CLI::App& command, std::string& workbook) {
    command.add_option("WORKBOOK", workbook, "The .xlsx or .xlsm file; it is read, never written")->required();
}

CLI::Option* addJson(CLI::App& command, std::string& json) {
    return command
        .add_option("--json", json, "Write JSON to FILE; - is standard output, which then holds nothing else")
        ->type_name("FILE");
}

CLI::Option* addSingleSheet(CLI::App& command, bool& singleSheet) {
    return command.add_flag("--single-sheet", singleSheet, "All fields stand on one sheet");
}

void addSampling(CLI::App& run, RunOptions& options) {
    const std::string group = "Sampling";
    run.add_option("-n,--iterations", options.iterations, "Iterations of the simulation")
        ->check(wholeNumber(1, largest))
        ->type_name("N")
        ->capture_default_str()
        ->group(group);
    run.add_option("--seed", options.seed,
                   "Seed of the random numbers, 1 to 2147483647; drawn and reported when absent")
        ->check(wholeNumber(1, largest))
        ->type_name("S")
        ->group(group);
    run.add_option("--strata", options.strata,
                   "Latin hypercube strata per distribution, at most 100000; 0 is plain "
                   "random sampling. Default: as many as iterations")
        ->check(wholeNumber(0, largestStrata))
        ->type_name("B")
        ->group(group);
    run.add_option(
           "--jobs", options.jobs,
           "Run blocks of iterations in J processes at a time. The blocks depend on N and the seed alone, so the "
           "results are the same for every J (not those of a run without --jobs, which is one block)")
        ->check(wholeNumber(1, 1024))
        ->type_name("J")
        ->group(group);
    addSingleSheet(run, options.singleSheet)->group(group);
}

void addSettings(CLI::App& run, RunOptions& options) {
    const std::string group = "Model settings";
    run.add_option("--correlation", options.correlation,
                   "Correlation matrix with field names in its first row and column: a range (Sheet!A1:D4), a defined "
                   "name or a CSV file. Default: the defined name QUORVA_Correlation, if the workbook has it")
        ->type_name("REF|CSV")
        ->group(group);
    run.add_option("--capability", options.capability,
                   "Specification limits with the columns name, LSL, USL, target: a range, a defined name or a CSV "
                   "file. Default: the defined name QUORVA_Capability, if the workbook has it")
        ->type_name("REF|CSV")
        ->group(group);
    run.add_option("--capability-confidence", options.capabilityConfidence,
                   "Confidence level of the capability indices")
        ->check(between(0, 1, "a number between 0 and 1"))
        ->type_name("P")
        ->capture_default_str()
        ->group(group);
}

void addConvergence(CLI::App& run, RunOptions& options) {
    const std::string group = "Stopping early";
    run.add_option(
           "--converge", options.converge,
           "Stop when the confidence interval of mean, stdev or percentile=P of the watched results has settled")
        ->check(convergenceCriterion())
        ->type_name("CRITERION")
        ->group(group);
    run.add_option("--tolerance", options.tolerance, "Largest movement of a bound between two checks, in percent")
        ->check(between(0, 1e300, "a number above 0"))
        ->type_name("PCT")
        ->capture_default_str()
        ->group(group);
    run.add_option("--confidence", options.confidence, "Two-sided confidence level of the interval")
        ->check(between(0, 1, "a number between 0 and 1"))
        ->type_name("P")
        ->capture_default_str()
        ->group(group);
    run.add_option("--check-every", options.checkEvery, "Iterations between two checks")
        ->check(wholeNumber(1, largest))
        ->type_name("K")
        ->capture_default_str()
        ->group(group);
    run.add_flag("--converge-all", options.convergeAll, "Watch every result, not only the marked ones")->group(group);
}

void addAnalyses(CLI::App& run, RunOptions& options) {
    const std::string group = "Analyses";
    run.add_option("--tail", options.tail, "Probability on each side of the central interval")
        ->check(between(0, 0.5, "a number between 0 and 0.5"))
        ->type_name("P")
        ->capture_default_str()
        ->group(group);
    run.add_flag("--tornado", options.tornado, "Tornado and spider analysis: move one input at a time")->group(group);
    run.add_option("--points", options.points, "Points per input of the tornado analysis")
        ->check(wholeNumber(2, 1000))
        ->type_name("K")
        ->capture_default_str()
        ->group(group);
    run.add_option("--spread", options.spread,
                   "Move an input across its central interval, or in a band around its base")
        ->check(CLI::IsMember({"interval", "band"}).description(""))
        ->type_name("interval|band")
        ->capture_default_str()
        ->group(group);
    run.add_option("--width", options.width, "Half-width of the band, as a share of the base value")
        ->check(between(0, 1e6, "a number above 0"))
        ->type_name("P")
        ->capture_default_str()
        ->group(group);
    run.add_option("--base", options.base, "Where the other inputs stand: simulated median or default value")
        ->check(CLI::IsMember({"median", "default"}).description(""))
        ->type_name("median|default")
        ->capture_default_str()
        ->group(group);
    run.add_option("--sensitivity", options.sensitivity, "Correlation behind the sensitivity analysis")
        ->check(CLI::IsMember({"rank", "linear"}).description(""))
        ->type_name("rank|linear")
        ->capture_default_str()
        ->group(group);
    run.add_option("--require", options.requirements,
                   "A condition that has to hold, such as \"mean(Profit) >= 100\", \"P(Profit < 0) <= 0.05\", "
                   "\"p95(Cost) <= 1e6\" or \"cpk(Diameter) >= 1.33\"; when it does not, the exit status is 1. "
                   "Repeatable")
        ->type_name("EXPR")
        ->group(group)
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

void addOutputs(CLI::App& run, RunOptions& options) {
    const std::string group = "Output";
    run.add_option("--report", options.reports, "Write a report to FILE.html or FILE.xlsx. Repeatable")
        ->type_name("FILE")
        ->group(group)
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    run.add_flag("--samples-sheet", options.samplesSheet, "Put every value into the .xlsx report too")->group(group);
    addJson(run, options.json)->group(group);
    run.add_option("--samples", options.samples, "Write every value to a CSV file")->type_name("FILE")->group(group);
    run.add_flag("--quiet", options.quiet, "No summary and no progress bar; warnings and errors still show")
        ->group(group);
    run.add_option("--config", options.config,
                   "Read options from a TOML file; its keys are the long option names, and the command line wins")
        ->type_name("FILE")
        ->group(group);
}

void addRun(CLI::App& app, RunOptions& options) {
    CLI::App& run = *app.add_subcommand("run", "Simulate a model and report");
    addWorkbook(run, options.workbook);
    addSampling(run, options);
    addSettings(run, options);
    addConvergence(run, options);
    addAnalyses(run, options);
    addOutputs(run, options);
    run.footer(
        "Examples:\n"
        "  quorva run model.xlsx\n"
        "  quorva run model.xlsx -n 50000 --seed 7 --tornado --report risk.html\n"
        "  quorva run model.xlsx --correlation \"Inputs!F2:I5\" --report risk.xlsx --samples draws.csv\n"
        "  quorva run model.xlsx --converge mean --tolerance 1 --require \"P(Profit < 0) <= 0.05\"\n"
        "  quorva run model.xlsx --quiet --json - | jq .summary");
}

void addModelCommands(CLI::App& app, CommandOptions& options) {
    CLI::App& inspect =
        *app.add_subcommand("inspect", "List the model: fields, laws, parameters, cells, default values");
    addWorkbook(inspect, options.inspect.workbook);
    addSingleSheet(inspect, options.inspect.singleSheet);
    addJson(inspect, options.inspect.json);
    inspect.footer("Examples:\n  quorva inspect model.xlsx\n  quorva inspect model.xlsx --json fields.json");

    CLI::App& verify = *app.add_subcommand("verify", "Recalculate everything and compare with the values in the file");
    addWorkbook(verify, options.verify.workbook);
    verify.add_flag("--list", options.verify.list,
                    "List every difference with cell, formula, saved and computed value");
    addJson(verify, options.verify.json);
    verify.footer("Examples:\n  quorva verify model.xlsx\n  quorva verify model.xlsx --list");

    CLI::App& values =
        *app.add_subcommand("values", "Recalculate everything and print every formula cell's value (CSV)");
    addWorkbook(values, options.values.workbook);
    values.add_flag("--all", options.values.all, "Constant cells too");
    values.footer("Examples:\n  quorva values model.xlsx\n  quorva values model.xlsx --all > cells.csv");
}

void addLists(CLI::App& app, CommandOptions& options) {
    const auto add = [&](const std::string& name, const std::string& text, std::string& json) {
        CLI::App& list = *app.add_subcommand(name, text);
        addJson(list, json);
        list.footer("Examples:\n  quorva " + name + "\n  quorva " + name + " --json -");
    };
    add("laws", "List the probability laws with their functions and parameters", options.laws.json);
    add("functions", "List the worksheet functions that can be computed", options.functions.json);
    add("statistics", "List the statistics that a model can show while it runs", options.statistics.json);
}
}  // namespace

std::string wrappedHelp(const std::string& help, std::size_t width) {
    std::istringstream lines(help);
    std::string out;
    for (std::string line; std::getline(lines, line);) {
        const bool option = line.size() > descriptionColumn && line.starts_with("  ") &&
                            line[descriptionColumn - 1] == ' ' && line[descriptionColumn] != ' ';
        const std::size_t indent =
            option ? descriptionColumn : std::min(line.find_first_not_of(' '), std::size_t{descriptionColumn});
        while (line.size() > width) {
            const std::size_t blank = line.rfind(' ', width);
            if (blank == std::string::npos || blank <= indent) {
                break;
            }
            out += line.substr(0, blank) + "\n";
            line = std::string(indent, ' ') + line.substr(blank + 1);
        }
        out += line + "\n";
    }
    return out;
}

std::unique_ptr<CLI::App> commandLine(CommandOptions& options) {
    auto app = std::make_unique<CLI::App>("Monte Carlo simulation of spreadsheet models", "quorva");
    app->set_version_flag("--version", std::string("quorva ") + version);
    app->add_flag("--man", options.man, "Print the manual page")->group("");
    app->require_subcommand(0, 1);
    app->get_formatter()->column_width(descriptionColumn);
    addRun(*app, options.run);
    addModelCommands(*app, options);
    addLists(*app, options);
    app->footer(
        "Exit status: 0 done; 1 a requirement or a verification failed; 2 wrong usage, an output that cannot be "
        "written,\nor a run too large; 3 the workbook cannot be read or uses something unsupported; 4 the model is "
        "wrong;\n5 internal error, or an output that failed while being written; 130 interrupted.\n\n"
        "Examples:\n"
        "  quorva run model.xlsx --report risk.html\n"
        "  quorva run --help");
    return app;
}

}  // namespace quorva::frontend
