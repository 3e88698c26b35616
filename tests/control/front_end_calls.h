// The calls of a front end in their order.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "../platform/reported_error.h"
#include "platform/front_end_arrays.h"
#include "quorva/front_end.h"

namespace quorva::testing {

/// Cpp_SimError; `line` on entry chooses the location.
inline ReportedError reportedError(int line = 0) {
    ReportedError error{0, line, 0, {}};
    HostStringArray* sheets = nullptr;
    Cpp_SimError(&error.code, &error.line, &error.column, &sheets);
    error.texts = takeTexts(sheets);
    return error;
}

inline ReportedError reportedError2() {
    ReportedError error;
    HostStringArray* sheets = nullptr;
    Cpp_SimError2(&error.code, &error.line, &error.column, &sheets);
    error.texts = takeTexts(sheets);
    return error;
}

inline HostStringArray* hostStrings(const std::vector<std::u16string>& texts) {
    matrix<std::u16string> column(static_cast<int>(texts.size()), 1);
    std::copy(texts.begin(), texts.end(), column.data());
    return toHostStringArray(column);
}

struct Correlations {
    std::vector<std::u16string> labels;
    std::vector<double> matrix;  ///< column-major; rewritten when repaired
};

struct Capabilities {
    std::vector<std::u16string> labels;
    std::vector<double> lower, upper, target;
};

struct FieldCounts {
    int all = -7, distributions = -7, scenarios = -7, results = -7, statistics = -7;
};

class FrontEndCalls {
protected:
    static void reset(int seed = 1) {
        int next = 0;
        Cpp_SimReset(&seed, hostTrue, &next);
    }
    static int init(bool workbook = false, int seed = 1) {
        int next = 0;
        return Cpp_SimInit(toHostBool(workbook), &seed, hostTrue, &next);
    }
    static int init2() { return Cpp_SimInit2(0, 0, nullptr, nullptr, 0, 0, 0.0, nullptr, nullptr, nullptr, nullptr); }
    static int init2(Correlations& correlations, Capabilities* capabilities = nullptr) {
        HostStringArray* labels = hostStrings(correlations.labels);
        HostStringArray* spcLabels = capabilities ? hostStrings(capabilities->labels) : nullptr;
        Capabilities none;
        Capabilities& spc = capabilities ? *capabilities : none;
        const int result =
            Cpp_SimInit2(toHostBool(!correlations.labels.empty()), static_cast<int>(correlations.labels.size()),
                         correlations.matrix.data(), &labels, toHostBool(capabilities != nullptr),
                         static_cast<int>(spc.labels.size()), 0.95, spc.lower.data(), spc.upper.data(),
                         spc.target.data(), &spcLabels);
        SafeArrayDestroy(labels);
        if (spcLabels) {
            SafeArrayDestroy(spcLabels);
        }
        return result;
    }
    int begin(int nSim, int strata = 0, bool check = false, bool all = false) {
        counts = {};
        return Cpp_SimBegin(nSim, strata, toHostBool(check), 0, 3.0, 0.95, toHostBool(all), 1, 0.5, &counts.all,
                            &counts.distributions, &counts.scenarios, &counts.results, &counts.statistics);
    }

    FieldCounts counts;
};

}  // namespace quorva::testing
