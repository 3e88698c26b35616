// A workbook model for tests: cells with formulas in calculation order, and the calls with which a front end drives a
// run over them.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "module_under_test.h"
#include "quorva/front_end.h"
#include "quorva/worksheet.h"
#include "scripted_host.h"

namespace quorva::testing {

inline bool operator<(const HostCell& a, const HostCell& b) {
    return std::tie(a.sheet, a.row, a.column) < std::tie(b.sheet, b.row, b.column);
}

/// Cells in the order in which the host calculates them.
class ModelSheet {
public:
    using Formula = std::function<double(const ModelSheet&)>;

    void set(const HostCell& cell, Formula formula) { formulas_.emplace_back(cell, std::move(formula)); }
    /// A cell of column A of the first sheet.
    void set(int row, Formula formula) { set(at(row), std::move(formula)); }
    static HostCell at(int row) { return {"[Book1]Sheet1", row, 0}; }

    double value(const HostCell& cell) const {
        const auto found = values_.find(cell);
        return found == values_.end() ? 0.0 : found->second;
    }
    double value(int row) const { return value(at(row)); }

    /// Calculates every cell but those of column A of the first sheet whose row is in `left`.
    void recalculate(const std::vector<int>& left = {}) {
        for (const auto& [cell, formula] : formulas_) {
            bool skipped = false;
            for (const int row : left) {
                skipped = skipped || (cell.sheet == at(row).sheet && cell.row == row && cell.column == 0);
            }
            if (!skipped) {
                host().caller = cell;
                values_[cell] = formula(*this);
            }
        }
    }

private:
    std::vector<std::pair<HostCell, Formula>> formulas_;
    std::map<HostCell, double> values_;
};

/// A reference to a cell on the calling cell's own sheet.
inline XLOPER ownSheetReference(int row, int column = 0) {
    XLOPER reference{};
    reference.type = hosttype::localReference;
    const auto r = static_cast<std::uint16_t>(row);
    const auto c = static_cast<std::uint8_t>(column);
    reference.value.localReference = {1, {r, r, c, c}};
    return reference;
}

/// A function of one statistic, called for a cell of column A.
inline double statisticCell(const std::string& wrapper, const char* name, int row) {
    XLOPER reference = ownSheetReference(row);
    return ModuleUnderTest::instance().function<double(const char*, XLOPER*, int)>(wrapper)(name, &reference, 1);
}

struct RunSettings {
    int nSim = 20;
    int strata = 0;
    int seed = 20260;
    HostBool workbookModel = -1;
    HostBool checkConvergence = 0;
    double tolerance = 1.0;
    double confidence = 0.975;
    HostBool allResults = -1;
    int criterion = 1;
    double percentile = 50;
};

/// What Cpp_SimBegin reports.
struct FieldCounts {
    int all = 0;
    int ofKind[4] = {};
};

inline HostStringArray* newLabels(const std::vector<std::u16string>& labels) {
    auto* array = SafeArrayCreateVector(hostStringVariant, 0, static_cast<std::uint32_t>(labels.size()));
    void* data = nullptr;
    SafeArrayAccessData(array, &data);
    for (std::size_t i = 0; i < labels.size(); ++i) {
        static_cast<HostString*>(data)[i] = SysAllocString(labels[i].c_str());
    }
    SafeArrayUnaccessData(array);
    return array;
}

/// Correlations and specification limits that a run starts with.
struct RunTables {
    std::vector<std::u16string> correlationLabels;
    std::vector<double> correlations;
    std::vector<std::u16string> capabilityLabels;
    std::vector<double> LSL, USL, target;
};

/// Starts a run: registration and description passes, then Cpp_SimBegin. Returns its code.
inline int beginRun(ModelSheet& model, const RunSettings& settings, FieldCounts& counts, RunTables tables = {}) {
    host().recordCalls = false;
    int seed = settings.seed;
    int seedInUse = 0;
    QUORVA_EXPORT(Cpp_SimInit)(settings.workbookModel, &seed, -1, &seedInUse);
    model.recalculate();
    auto* correlationLabels = newLabels(tables.correlationLabels);
    auto* capabilityLabels = newLabels(tables.capabilityLabels);
    const auto flag = [](bool on) { return static_cast<HostBool>(on ? -1 : 0); };
    const int prepared = QUORVA_EXPORT(Cpp_SimInit2)(
        flag(!tables.correlationLabels.empty()), static_cast<int>(tables.correlationLabels.size()),
        tables.correlations.data(), &correlationLabels, flag(!tables.capabilityLabels.empty()),
        static_cast<int>(tables.capabilityLabels.size()), 0.95, tables.LSL.data(), tables.USL.data(),
        tables.target.data(), &capabilityLabels);
    SafeArrayDestroy(correlationLabels);
    SafeArrayDestroy(capabilityLabels);
    if (prepared < 0) {
        return prepared;
    }
    model.recalculate();
    return QUORVA_EXPORT(Cpp_SimBegin)(settings.nSim, settings.strata, settings.checkConvergence, 0, settings.tolerance,
                                       settings.confidence, settings.allResults, settings.criterion,
                                       settings.percentile, &counts.all, &counts.ofKind[0], &counts.ofKind[1],
                                       &counts.ofKind[2], &counts.ofKind[3]);
}

/// One iteration; returns the code of Cpp_SimNext.
inline int iterate(ModelSheet& model, const std::vector<int>& left = {}) {
    const int code = QUORVA_EXPORT(Cpp_SimNext)();
    model.recalculate(left);
    return code;
}

/// The stored values of a field.
inline std::vector<double> storedValues(int field, int nSim) {
    std::vector<double> values(static_cast<std::size_t>(nSim));
    QUORVA_EXPORT(Cpp_GetSimRes)(field, nSim, values.data());
    return values;
}

}  // namespace quorva::testing
