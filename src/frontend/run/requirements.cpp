#include "frontend/run/requirements.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "frontend/run/missing_numbers.h"
#include "frontend/run/statistics.h"
#include "frontend/text/command_failure.h"
#include "frontend/text/number_text.h"
#include "frontend/text/text.h"

namespace quorva::frontend {

namespace {
struct Symbol {
    std::string_view text;
    Comparison comparison;
};
constexpr Symbol comparisons[] = {
    {"<=", Comparison::LessEqual}, {">=", Comparison::GreaterEqual}, {"<>", Comparison::NotEqual},
    {"!=", Comparison::NotEqual},  {"==", Comparison::Equal},        {"<", Comparison::Less},
    {">", Comparison::Greater},    {"=", Comparison::Equal},
};

struct Word {
    std::string_view text;
    Measure measure;
};
constexpr Word words[] = {{"mean", Measure::Mean},
                          {"stdev", Measure::Stdev},
                          {"median", Measure::Median},
                          {"min", Measure::Minimum},
                          {"max", Measure::Maximum}};

class Parser {
public:
    explicit Parser(std::string_view text) : text_(text) {}

    Requirement parse() {
        Requirement requirement;
        requirement.expression = text_;
        measure(requirement);
        expect('(');
        requirement.name = name(requirement.measure == Measure::Probability);
        if (requirement.measure == Measure::Probability) {
            requirement.inner = comparison();
            requirement.threshold = number();
        }
        expect(')');
        requirement.comparison = comparison();
        requirement.limit = number();
        blanks();
        if (at_ < text_.size()) {
            fail("nothing after the limit");
        }
        return requirement;
    }

private:
    [[noreturn]] void fail(const std::string& expected) const {
        throw CommandFailure(ExitStatus::Usage, "requirement \"" + std::string(text_) + "\", character " +
                                                    std::to_string(at_ + 1) + ": expected " + expected +
                                                    "; for example \"mean(Profit) >= 100\", \"P(Profit < 0) <= 0.05\", "
                                                    "\"p95(Cost) <= 1e6\" or \"cpk(Diameter) >= 1.33\"");
    }

    void blanks() {
        while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\t')) {
            ++at_;
        }
    }

    void expect(char c) {
        blanks();
        if (at_ >= text_.size() || text_[at_] != c) {
            fail(std::string("'") + c + "'");
        }
        ++at_;
    }

    void measure(Requirement& requirement) {
        blanks();
        const std::size_t start = at_;
        const auto open = text_.find('(', start);
        const std::string written(trimmed(text_.substr(start, open == text_.npos ? text_.npos : open - start)));
        const std::string word = lowerCase(written);
        const std::string wanted = "mean, stdev, median, min, max, p followed by a percentage, P, cp, cpk or ppm";
        if (open == text_.npos) {
            fail(wanted + " and a name in parentheses");
        }
        if (word == "p") {
            requirement.measure = Measure::Probability;
        } else if (const auto* found =
                       std::find_if(std::begin(words), std::end(words), [&](const Word& w) { return w.text == word; });
                   found != std::end(words)) {
            requirement.measure = found->measure;
        } else if (const auto index = capabilityIndex(word == "ppm" ? "ppm_total" : word)) {
            requirement.measure = Measure::Capability;
            requirement.capabilityIndex = *index;
        } else if (const auto percent = word.starts_with('p') ? parseNumber(word.substr(1)) : std::nullopt;
                   percent && *percent >= 0 && *percent <= 100) {
            requirement.measure = Measure::Percentile;
            requirement.percentile = *percent;
        } else {
            fail(wanted);
        }
        at_ = open;
    }

    std::string name(bool beforeComparison) {
        blanks();
        std::string name;
        if (at_ < text_.size() && text_[at_] == '\'') {
            for (++at_;; ++at_) {
                if (at_ >= text_.size()) {
                    fail("a closing quote");
                }
                if (text_[at_] == '\'') {
                    if (at_ + 1 < text_.size() && text_[at_ + 1] == '\'') {
                        ++at_;
                    } else {
                        ++at_;
                        return name;
                    }
                }
                name += text_[at_];
            }
        }
        // A bare name may hold parentheses of its own as long as they are balanced.
        int open = 0;
        for (; at_ < text_.size(); ++at_) {
            const char c = text_[at_];
            if ((c == ')' && open == 0) || (beforeComparison && (c == '<' || c == '>' || c == '='))) {
                break;
            }
            open += c == '(' ? 1 : c == ')' ? -1 : 0;
            name += c;
        }
        name = trimmed(name);
        if (name.empty()) {
            fail("the name of a field");
        }
        return name;
    }

    Comparison comparison() {
        blanks();
        for (const Symbol& symbol : comparisons) {
            if (text_.substr(at_).starts_with(symbol.text)) {
                at_ += symbol.text.size();
                return symbol.comparison;
            }
        }
        fail("one of < <= > >= = <>");
    }

    double number() {
        blanks();
        const std::size_t start = at_;
        while (at_ < text_.size() && (std::isalnum(static_cast<unsigned char>(text_[at_])) || text_[at_] == '.' ||
                                      text_[at_] == '+' || text_[at_] == '-')) {
            ++at_;
        }
        const auto value = parseNumber(text_.substr(start, at_ - start));
        if (!value) {
            at_ = start;
            fail("a number");
        }
        blanks();
        if (at_ < text_.size() && text_[at_] == '%') {
            ++at_;
            return *value / 100;
        }
        return *value;
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

bool holds(double value, Comparison comparison, double limit) {
    switch (comparison) {
        case Comparison::Less:
            return value < limit;
        case Comparison::LessEqual:
            return value <= limit;
        case Comparison::Greater:
            return value > limit;
        case Comparison::GreaterEqual:
            return value >= limit;
        case Comparison::Equal:
            return value == limit;
        case Comparison::NotEqual:
            return value != limit;
    }
    return false;
}

double capabilityValue(const Requirement& requirement, const RunResults& results) {
    for (const Capability& capability : results.capability) {
        if (capability.limits.name == requirement.name) {
            return capability.indices[requirement.capabilityIndex];
        }
    }
    return noNumber;
}

double measured(const Requirement& requirement, const RunResults& results) {
    const std::size_t i = fieldIndex(results.fields, requirement.name);
    if (i == results.fields.size()) {
        return noNumber;
    }
    const Summary& summary = results.summary[i];
    const auto& column = results.samples.columns[i];
    switch (requirement.measure) {
        case Measure::Mean:
            return summary.mean;
        case Measure::Stdev:
            return summary.stdev;
        case Measure::Median:
            return summary.percentile(50);
        case Measure::Minimum:
            return summary.minimum;
        case Measure::Maximum:
            return summary.maximum;
        case Measure::Percentile:
            return quantileOfSorted(sortColumn(column).values, requirement.percentile / 100);
        case Measure::Probability: {
            const auto count = std::count_if(column.begin(), column.end(), [&](double x) {
                return !std::isnan(x) && holds(x, requirement.inner, requirement.threshold);
            });
            return static_cast<double>(count) / static_cast<double>(summary.count);
        }
        case Measure::Capability:
            return capabilityValue(requirement, results);
    }
    return noNumber;
}
}  // namespace

Requirement parseRequirement(std::string_view expression) { return Parser(expression).parse(); }

void checkRequirement(const Requirement& requirement, const std::vector<Field>& fields,
                      const std::vector<SpecificationLimits>& limits) {
    if (fieldIndex(fields, requirement.name) == fields.size()) {
        throw CommandFailure(ExitStatus::Model, "requirement \"" + requirement.expression +
                                                    "\": the model has no field named '" + requirement.name + "'" +
                                                    nearestHint(requirement.name, fieldNames(fields)));
    }
    const bool limited = std::any_of(limits.begin(), limits.end(),
                                     [&](const SpecificationLimits& limit) { return limit.name == requirement.name; });
    if (requirement.measure == Measure::Capability && !limited) {
        throw CommandFailure(ExitStatus::Model, "requirement \"" + requirement.expression + "\": '" + requirement.name +
                                                    "' has no specification limits; give them with --capability");
    }
    // The index itself says which limit is absent: without it the requirement could never be met.
    const std::string key = capabilityNames[requirement.capabilityIndex].key;
    for (const SpecificationLimits& limit : limits) {
        const bool oneSided = std::isnan(limit.lower) || std::isnan(limit.upper);
        if (requirement.measure == Measure::Capability && limit.name == requirement.name && oneSided &&
            (key == "cp" || key == "cpk" || key == "pp" || key == "ppk")) {
            const bool upper = std::isnan(limit.lower);
            throw CommandFailure(ExitStatus::Model,
                                 "requirement \"" + requirement.expression + "\": '" + requirement.name +
                                     "' has only " + (upper ? "a USL" : "an LSL") + ", and " + key +
                                     " needs both limits; use " + key.substr(0, 2) + (upper ? "u" : "l"));
        }
    }
}

RequirementOutcome evaluateRequirement(const Requirement& requirement, const RunResults& results) {
    const double value = measured(requirement, results);
    const bool passed = !std::isnan(value) && holds(value, requirement.comparison, requirement.limit);
    return {requirement.expression, value, requirement.limit, passed};
}

}  // namespace quorva::frontend
