// A model with every kind of field, driven through the exports alone, for tests of what a front end may rely on.
#pragma once

#include <cmath>

#include "module_model.h"

namespace quorva::testing {

inline XLOPER localReference(int row, int column) {
    XLOPER reference{};
    reference.type = hosttype::localReference;
    const auto r = static_cast<std::uint16_t>(row);
    const auto c = static_cast<std::uint8_t>(column);
    reference.value.localReference.count = 1;
    reference.value.localReference.range = {r, r, c, c};
    return reference;
}

/// A caller's array of automation strings.
class FrontEndStrings {
public:
    explicit FrontEndStrings(std::size_t count, const char16_t* text = nullptr) : strings_(count, nullptr) {
        for (HostString& entry : strings_) {
            entry = text ? SysAllocString(text) : nullptr;
        }
    }
    FrontEndStrings(const FrontEndStrings&) = delete;
    FrontEndStrings& operator=(const FrontEndStrings&) = delete;
    ~FrontEndStrings() {
        for (HostString entry : strings_) {
            SysFreeString(entry);
        }
    }
    HostString* data() { return strings_.data(); }
    HostString at(std::size_t index) const { return strings_[index]; }
    std::u16string operator[](std::size_t index) const { return std::u16string(quorva::textOf(strings_[index])); }
    std::vector<std::u16string> all() const {
        std::vector<std::u16string> texts;
        for (HostString entry : strings_) {
            texts.emplace_back(quorva::textOf(entry));
        }
        return texts;
    }

private:
    std::vector<HostString> strings_;
};

/// A host string array of labels, released with it.
class Labels {
public:
    explicit Labels(const std::vector<std::u16string>& texts) {
        matrix<std::u16string> table(static_cast<int>(texts.size()), 1);
        std::copy(texts.begin(), texts.end(), table.data());
        array_ = toHostStringArray(table);
    }
    Labels(const Labels&) = delete;
    Labels& operator=(const Labels&) = delete;
    ~Labels() { SafeArrayDestroy(array_); }
    HostStringArray** get() { return &array_; }

private:
    HostStringArray* array_ = nullptr;
};

class ContractModel : public ModuleModel {
protected:
    static constexpr const char* sheet = "[Book]1";

    std::size_t statistic(HostCell address, std::string name, HostCell described, int identifier) {
        return cell(std::move(address), [=, call = QUORVA_EXPORT(QUORVA_SimStat)] {
            XLOPER reference = localReference(described.row, described.column);
            return call(name.c_str(), &reference, identifier, 1);
        });
    }
    std::size_t scenario(HostCell address, std::string name, double lower, double upper, int type = 1, int step = 1) {
        return cell(std::move(address), [=, call = QUORVA_EXPORT(QUORVA_SimSVar)] {
            return call(name.c_str(), lower, upper, type, step, 0, 0, 1);
        });
    }
    std::size_t uniform(HostCell address, std::string name, double a = 0.0, double b = 1.0) {
        return cell(std::move(address), [=, call = QUORVA_EXPORT(QUORVA_SimUniform)] {
            return call(name.c_str(), a, b, 0, 0, 0, 0, 0, 1);
        });
    }
    /// A result that shows what `series` holds for the iteration.
    std::size_t seriesResult(HostCell address, std::string name, std::vector<double> series) {
        return result(std::move(address), std::move(name), [this, series] {
            const auto k = static_cast<std::size_t>(iteration);
            return k >= 1 && k <= series.size() ? series[k - 1] : 0.0;
        });
    }

    static int init2With(const std::vector<std::u16string>& labels, std::vector<double>& correlations,
                         const std::vector<std::u16string>& capability = {}, std::vector<double> lower = {},
                         std::vector<double> upper = {}, std::vector<double> target = {}) {
        Labels correlated(labels);
        Labels limited(capability);
        return QUORVA_EXPORT(Cpp_SimInit2)(toHostBool(!labels.empty()), static_cast<int>(labels.size()),
                                           correlations.data(), correlated.get(), toHostBool(!capability.empty()),
                                           static_cast<int>(capability.size()), 0.95, lower.data(), upper.data(),
                                           target.data(), limited.get());
    }

    int beginConverging(int nSim, HostBool check, HostBool allResults, int criterion, double tolerance = 3.0,
                        double level = 0.975, double percentile = 50.0) {
        iteration = 0;
        return QUORVA_EXPORT(Cpp_SimBegin)(nSim, 0, check, 0, tolerance, level, allResults, criterion, percentile,
                                           &fields, &distributions, &scenarios, &results, &statistics);
    }
    int start(int nSim, int strata = 0) {
        iteration = 0;
        return begin(nSim, strata);
    }
    int step() {
        const int code = next();
        ++iteration;
        recalculate();
        return code;
    }
    void run(int nSim) {
        for (int k = 0; k < nSim; ++k) {
            ASSERT_EQ(step(), 0) << "iteration " << k + 1;
        }
    }

    struct Summary {
        matrix<double> general, intervals, convergence;
        std::vector<std::u16string> names, sheets, monitored;
        int lastMonitored = -77;
    };
    Summary end(double tail, int nSim) {
        Summary summary;
        summary.general = matrix<double>(fields, 14);
        summary.intervals = matrix<double>(fields, 5);
        summary.convergence = matrix<double>(2, std::max(1, 2 * results), 7.0);
        const auto n = static_cast<std::size_t>(fields);
        FrontEndStrings names(2 * n);
        FrontEndStrings monitored(static_cast<std::size_t>(2 * results), u"as passed");
        QUORVA_EXPORT(Cpp_SimEnd)
        (tail, nSim, summary.general.data(), names.data(), summary.convergence.data(), monitored.data(),
         &summary.lastMonitored, summary.intervals.data());
        for (std::size_t i = 0; i < n; ++i) {
            summary.names.push_back(names[i]);
            summary.sheets.push_back(names[n + i]);
        }
        summary.monitored = monitored.all();
        return summary;
    }

    static std::vector<double> row(const matrix<double>& table, int r) {
        std::vector<double> values;
        for (int j = 1; j <= table.columns(); ++j) {
            values.push_back(table(r, j));
        }
        return values;
    }
    static std::vector<double> column(const matrix<double>& table, int c) {
        return {table.column(c), table.column(c) + table.rows()};
    }

    int iteration = 0;
};

}  // namespace quorva::testing
