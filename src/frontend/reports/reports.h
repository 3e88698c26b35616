// The reports of a run. Every report shows the same structures.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "frontend/results/run_results.h"
#include "frontend/text/output_file.h"

namespace quorva::frontend {

/// Name of a law ("Normal"), of one of its parameters ("sigma"), of a statistic ("Mean"); empty when unknown.
std::string lawName(int law);
std::string lawParameterName(int law, int index);
int lawParameterCount(int law);
std::string statisticName(int statistic);
std::string_view kindName(FieldKind kind);
/// "Normal(mu 5, sigma 2)", "1 to 4", "Mean of B7": what a field is, in one line.
std::string fieldDescription(const Field& field);

/// A setting of a run and its value, a number in the form that reads back exactly.
struct SettingText {
    std::string name;
    std::string value;
};
std::vector<SettingText> settingTexts(const RunResults& results);

/// Fields as `inspect --json` and the run report show them.
nlohmann::ordered_json fieldsJson(const std::vector<Field>& fields);
nlohmann::ordered_json runJson(const RunResults& results);
/// Text with a line break at its end; the same for the same results.
std::string jsonText(const nlohmann::ordered_json& json);

/// A header of field names and a line per iteration; empty where an iteration gave no number.
void writeSamplesCsv(const RunResults& results, Sink& sink);

/// What a person sees on the terminal, at most 100 columns wide.
std::string summaryText(const RunResults& results);

/// One self-contained page.
std::string htmlReport(const RunResults& results);

/// A workbook with native charts; samples when asked for and they fit a sheet.
std::string xlsxReport(const RunResults& results, bool withSamples);

}  // namespace quorva::frontend
