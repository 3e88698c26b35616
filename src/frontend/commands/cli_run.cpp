#include "frontend/commands/cli_run.h"

#include <iostream>
#include <random>

#include <nlohmann/json.hpp>

#include "frontend/commands/interruption.h"
#include "frontend/commands/progress.h"
#include "frontend/reports/report_html.h"
#include "frontend/reports/report_json.h"
#include "frontend/reports/report_samples.h"
#include "frontend/reports/report_xlsx.h"
#include "frontend/reports/summary_text.h"
#include "frontend/run/block_run.h"
#include "frontend/run/convergence_criterion.h"
#include "frontend/run/model_session.h"
#include "frontend/run/requirements.h"
#include "frontend/text/command_failure.h"
#include "frontend/text/input_file.h"
#include "frontend/text/number_text.h"
#include "frontend/text/output_file.h"
#include "frontend/text/text.h"

namespace quorva::frontend {

namespace {
enum class ReportFormat { Html, Xlsx };

ReportFormat reportFormat(const std::string& file) {
    const std::string extension = lowerCase(std::filesystem::path(file).extension().string());
    if (extension == ".html" || extension == ".htm") {
        return ReportFormat::Html;
    }
    if (extension == ".xlsx") {
        return ReportFormat::Xlsx;
    }
    throw CommandFailure(ExitStatus::Usage, "the report '" + file + "' needs a name that ends in .html or .xlsx");
}

int drawnSeed() {
    std::random_device device;
    return std::uniform_int_distribution<int>(1, 2147483647)(device);
}

ConvergenceSettings convergenceSettings(const RunOptions& options) {
    ConvergenceSettings settings;
    readCriterion(options.converge, settings);
    settings.tolerancePercent = options.tolerance;
    settings.confidence = options.confidence;
    settings.checkEvery = options.checkEvery;
    settings.allResults = options.convergeAll;
    return settings;
}

RunSettings settingsOf(const RunOptions& options) {
    RunSettings settings;
    settings.iterations = options.iterations;
    settings.seed = options.seed ? *options.seed : drawnSeed();
    settings.strata = options.strata;
    settings.workbookModel = !options.singleSheet;
    settings.capabilityConfidence = options.capabilityConfidence;
    if (!options.converge.empty()) {
        settings.convergence = convergenceSettings(options);
    }
    settings.tail = options.tail;
    if (options.tornado) {
        settings.tornado =
            TornadoSettings{options.points, options.spread == "band" ? TornadoSpread::Band : TornadoSpread::Interval,
                            options.base == "default" ? TornadoBase::Default : TornadoBase::Median, options.width};
    }
    settings.sensitivity = options.sensitivity == "linear" ? SensitivityMeasure::Linear : SensitivityMeasure::Rank;
    settings.requirements = options.requirements;
    return settings;
}

struct SettingTable {
    CellTable cells;
    std::string source;  ///< for messages
};

/// The table that an option names, or the one that the workbook carries under a defined name of its own.
std::optional<SettingTable> settingTable(const std::string& option, const std::string& given, const char* defaultName,
                                         const ModelSession& session, std::vector<std::string>& notes) {
    if (given.empty()) {
        auto cells = session.table(defaultName);
        if (!cells) {
            return std::nullopt;
        }
        notes.push_back("--" + option + " is taken from the workbook's defined name " + defaultName);
        return SettingTable{std::move(*cells), defaultName};
    }
    const std::string source = "--" + option + " " + given;
    if (auto cells = session.table(given)) {
        return SettingTable{std::move(*cells), source};
    }
    if (isFile(given)) {
        return SettingTable{tableFromCsv(fileContents(given)), source};
    }
    throw CommandFailure(ExitStatus::Usage, source + ": neither a range or defined name of the workbook nor a file");
}

void addSettingTables(const RunOptions& options, const ModelSession& session, const std::vector<Field>& fields,
                      RunSettings& settings, std::vector<std::string>& notes) {
    if (const auto table = settingTable("correlation", options.correlation, "QUORVA_Correlation", session, notes)) {
        settings.correlation = correlationFromTable(table->cells, table->source);
        checkCorrelationLabels(*settings.correlation, fields, table->source);
    }
    if (const auto table = settingTable("capability", options.capability, "QUORVA_Capability", session, notes)) {
        settings.capability = capabilityFromTable(table->cells, table->source);
        checkCapabilityLabels(settings.capability, fields, table->source);
    }
}

/// Every output is tested before the model is even opened.
void reserveOutputs(const RunOptions& options) {
    std::vector<std::filesystem::path> inputs{options.workbook};
    for (const std::string& file : {options.correlation, options.capability, options.config}) {
        if (isFile(file)) {
            inputs.emplace_back(file);
        }
    }
    Outputs outputs(inputs);
    for (const std::string& report : options.reports) {
        reportFormat(report);
        outputs.reserve(report);
    }
    for (const std::string& file : {options.json, options.samples}) {
        if (!file.empty()) {
            outputs.reserve(file);
        }
    }
}

void writeOutputs(const RunOptions& options, const RunResults& results) {
    std::vector<Output> outputs;
    for (const std::string& report : options.reports) {
        const ReportFormat format = reportFormat(report);
        outputs.push_back({report, [&results, &options, format](Sink& sink) {
                               sink.write(format == ReportFormat::Html ? htmlReport(results)
                                                                       : xlsxReport(results, options.samplesSheet));
                           }});
    }
    if (!options.samples.empty()) {
        outputs.push_back({options.samples, [&results](Sink& sink) { writeSamplesCsv(results, sink); }});
    }
    if (!options.json.empty()) {
        outputs.push_back({options.json, [&results](Sink& sink) { sink.write(jsonText(runJson(results))); }});
    }
    Outputs::commit(outputs);
}

void printSummary(const RunOptions& options, const RunResults& results) {
    std::string text = summaryText(results);
    std::vector<std::string> files = options.reports;
    for (const std::string& file : {options.json, options.samples}) {
        if (!file.empty() && file != "-") {
            files.push_back(file);
        }
    }
    for (const std::string& file : files) {
        text += "written: " + printable(file) + "\n";
    }
    // Standard output may belong to an output.
    if (options.json == "-" || options.samples == "-") {
        std::cerr << text << std::flush;
    } else {
        printOut(text);
    }
}

void noteWatched(RunResults& results) {
    if (results.convergence) {
        const std::string which = results.convergence->watchesEvery ? "every result: " : "the marked results: ";
        results.notes.push_back("--converge watches " + which + joined(results.convergence->watched, ", "));
    }
}

ExitStatus finish(const RunOptions& options, RunResults& results, const std::vector<Requirement>& requirements) {
    for (const Requirement& requirement : requirements) {
        results.requirements.push_back(evaluateRequirement(requirement, results));
    }
    writeOutputs(options, results);
    if (options.quiet) {
        for (const std::string& warning : results.warnings) {
            std::cerr << "quorva: warning: " << printable(warning) << std::endl;
        }
    } else {
        printSummary(options, results);
    }
    bool passed = true;
    for (const RequirementOutcome& outcome : results.requirements) {
        if (!outcome.passed) {
            passed = false;
            std::cerr << "quorva: requirement not met: " << printable(outcome.expression) << " (is "
                      << readableNumber(outcome.value) << ")" << std::endl;
        }
    }
    if (results.interrupted || results.incomplete) {
        return results.interrupted ? ExitStatus::Interrupted : ExitStatus::Internal;
    }
    return passed ? ExitStatus::Done : ExitStatus::RequirementFailed;
}

void warnOfCutSamples(const RunOptions& options, RunResults& results) {
    if (options.samplesSheet && results.iterations > mostSheetIterations) {
        results.warnings.push_back("a sheet of the .xlsx report holds only the first " +
                                   std::to_string(mostSheetIterations) + " iterations; --samples writes all of them");
    }
}

void stopIfInterrupted() {
    if (interruptionRequested()) {
        throw interruptedTooEarly();
    }
}
}  // namespace

int runCommand(const RunOptions& options) {
    watchForInterruption();
    RunSettings settings = settingsOf(options);
    std::vector<Requirement> requirements;
    for (const std::string& expression : options.requirements) {
        requirements.push_back(parseRequirement(expression));
    }
    reserveOutputs(options);
    ModelSession session(options.workbook);
    stopIfInterrupted();
    session.book().seed(static_cast<std::uint64_t>(settings.seed));
    const Host host = session.host();
    const std::vector<Field> fields = describeModel(host, settings.workbookModel);
    const std::vector<std::string> absent = session.absentFunctions(fields);
    std::vector<std::string> notes;
    addSettingTables(options, session, fields, settings, notes);
    for (const Requirement& requirement : requirements) {
        checkRequirement(requirement, fields, settings.capability);
    }
    stopIfInterrupted();
    ProgressBar bar(!options.quiet);
    const Observer observer{interruptionRequested, [&bar](int done, int planned) { bar.update(done, planned); }};
    RunResults results = options.jobs ? runModelInBlocks(settings, fields, host, observer, *options.jobs)
                                      : runModel(settings, fields, host, observer);
    bar.clear();
    results.workbook = fileName(options.workbook);
    results.notes = std::move(notes);
    noteWatched(results);
    warnOfCutSamples(options, results);
    results.warnings.insert(results.warnings.begin(), absent.begin(), absent.end());
    return static_cast<int>(finish(options, results, requirements));
}

}  // namespace quorva::frontend
