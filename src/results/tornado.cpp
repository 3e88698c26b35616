#include "results/tornado.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <new>
#include <utility>

#include "common/guarded.h"
#include "common/sort_rows.h"
#include "common/whole_number.h"
#include "engine/run_state.h"
#include "numerics/linear_algebra.h"
#include "quorva/front_end.h"
#include "results/front_end_tables.h"

namespace quorva {

namespace {

constexpr double clamped = 1.0;

/// Intended: the clamp marks are looked up for the cases as if every input had five points.
constexpr int casesPerInput = 5;

/// Fields of the plan: the point table has a column of points and one of clamp marks for each.
int plannedFields(const TornadoState& plan) { return plan.points.columns() / 2; }

double fieldCell(int field, int column) { return std::as_const(run.fields.FieldTable)(field, column); }

/// A table of the plan. What exceeds the room that a run's values may take counts as memory that is not there.
template <class T>
matrix<T> planTable(long long rows, long long columns) {
    rows = std::max(rows, 0LL);
    columns = std::max(columns, 0LL);
    if (columns > 0 && rows > limit::sampleCells / columns) {
        throw std::bad_alloc();
    }
    return matrix<T>(static_cast<int>(rows), static_cast<int>(columns));
}

bool acrossInterval(const TornadoState& plan) { return plan.iIntMeth == static_cast<int>(TornadoSpread::Interval); }

/// Two decimals and a percent sign, cut to the characters that a label may have.
std::u16string percentLabel(double percent) {
    char digits[512];
    const auto end = std::isnan(percent)
                         ? std::copy_n("nan", 3, digits)
                         : std::to_chars(digits, digits + sizeof digits, percent, std::chars_format::fixed, 2).ptr;
    std::u16string label(digits, end);
    label += u'%';
    label.resize(std::min<std::size_t>(label.size(), limit::spiderLabelCharacters));
    return label;
}

void writeLabels(const TornadoState& plan, matrix<std::u16string>& labels) {
    const double spacing = plan.inbrPts - 1.0;
    const double alpha = plan.ialpha;
    for (int k = 1; k <= std::min(plan.inbrPts, labels.rows()); ++k) {
        const double percent = acrossInterval(plan) ? alpha * 100.0 + (k - 1) * (1.0 - 2.0 * alpha) * 100.0 / spacing
                                                    : (k - 1) * (alpha * 200.0 / spacing) - alpha * 100.0;
        labels(k, 1) = percentLabel(percent);
    }
}

/// Intended: evenly in value from the lower to the upper bound of the central interval, although the labels name
/// positions in probability. No clamping.
void placeAcrossInterval(TornadoState& plan, int field) {
    const double lower = plan.intervals(field, intervalcolumn::lower);
    const double step = (plan.intervals(field, intervalcolumn::upper) - lower) / (plan.inbrPts - 1.0);
    for (int j = 1; j <= plan.inbrPts; ++j) {
        plan.points(j, field) = lower + (j - 1) * step;
    }
}

/// A band around the default value, or around the simulated median; a point beyond what was simulated is pulled back
/// and marked.
void placeInBand(TornadoState& plan, int field) {
    const bool aroundMedian = plan.iDefCase == static_cast<int>(TornadoBase::Median);
    const double base =
        aroundMedian ? plan.intervals(field, intervalcolumn::median) : fieldCell(field, fieldcolumn::defaultValue);
    const double minimum = plan.intervals(field, intervalcolumn::minimum);
    const double maximum = plan.intervals(field, intervalcolumn::maximum);
    const double spacing = plan.inbrPts - 1.0;
    const int markColumn = plannedFields(plan) + field;
    for (int j = 1; j <= plan.inbrPts; ++j) {
        // The two bases are scaled at different places of the formula, and round differently.
        const double raw = aroundMedian ? (j - 1) * (2.0 * base * plan.ialpha / spacing) + (1.0 - plan.ialpha) * base
                                        : ((j - 1) * (2.0 * plan.ialpha / spacing) + (1.0 - plan.ialpha)) * base;
        if (raw < minimum || raw > maximum) {
            plan.points(j, markColumn) = clamped;
        }
        plan.points(j, field) = std::max(std::min(raw, maximum), minimum);
    }
}

/// Over the bounds of a quantitative variable; by its step from the lower bound on for any other, be it past the
/// upper bound. No clamping.
void placeScenario(TornadoState& plan, int field) {
    const double lower = fieldCell(field, fieldcolumn::lowerBound);
    const double width = fieldCell(field, fieldcolumn::upperBound) - lower;
    const double step = fieldCell(field, fieldcolumn::step);
    const bool quantitative =
        fieldCell(field, fieldcolumn::stepMode) == static_cast<double>(ScenarioMode::Quantitative);
    for (int j = 1; j <= plan.inbrPts; ++j) {
        plan.points(j, field) = lower + (quantitative ? (j - 1) * width / (plan.inbrPts - 1.0) : (j - 1) * step);
    }
}

void placePoints(TornadoState& plan, int field) {
    if (plan.intervals(field, intervalcolumn::upper) == MissingValue) {
        return;
    }
    if (isKind(field, FieldKind::ScenarioVariable)) {
        placeScenario(plan, field);
    } else if (isKind(field, FieldKind::Distribution) || isKind(field, FieldKind::Result)) {
        acrossInterval(plan) ? placeAcrossInterval(plan, field) : placeInBand(plan, field);
    }
}

/// The plan with everything but its points.
TornadoState emptyPlan(int iDefCase, int iIntMeth, double ialpha, int inbrPts, int p, const matrix<double>& IntT) {
    TornadoState plan;
    plan.iDefCase = iDefCase;
    plan.iIntMeth = iIntMeth;
    plan.ialpha = ialpha;
    plan.inbrPts = inbrPts;
    plan.point = 1;
    plan.position = 1;
    plan.nextResult = 1;
    plan.clockField = 0;
    plan.intervals = IntT;
    plan.points = planTable<double>(inbrPts, 2LL * p);
    plan.store = planTable<double>(static_cast<long long>(run.fields.nRes) * inbrPts, std::max(1, run.fields.nFields));
    plan.resultOrder = planTable<int>(run.fields.nFields, 1);
    return plan;
}

/// Clamp mark at a point, in a column that a caller's number may have put anywhere.
bool isClamped(int point, long long column) {
    return std::as_const(run.tornado.points)(point, wholeNumber(column)) == clamped;
}

/// The spider of one result, nP x nFields: row j, column k is the result when input k stood at point j; MissingValue
/// where that point was clamped.
matrix<double> spiderOf(int nFields, int iField, const matrix<double>& TorT, const matrix<int>& FieldInd) {
    const auto& plan = std::as_const(run.tornado);
    auto spider = planTable<double>(plan.inbrPts, nFields);
    const long long firstRow = (plan.resultOrder(iField, 1) - 1LL) * plan.inbrPts;
    for (int k = 1; k <= spider.columns(); ++k) {
        // Intended: the marks are looked up nFields columns on, which is where they are when the caller's table has
        // a column for every field of the interval table.
        const int field = FieldInd(k, 1);
        for (int j = 1; j <= spider.rows(); ++j) {
            const bool missing = field != 0 && isClamped(j, static_cast<long long>(nFields) + field);
            spider(j, k) = missing ? MissingValue : TorT(wholeNumber(firstRow + j), k);
        }
    }
    return spider;
}

/// nFields x 4: field number, smallest and largest result over the input's points, swing; widest swing first.
matrix<double> tornadoOf(matrix<double>& spider, const matrix<int>& FieldInd) {
    const int inputs = spider.columns();
    auto tornado = planTable<double>(inputs, tornadocolumn::columns);
    auto minima = planTable<double>(inputs, 1);
    auto maxima = planTable<double>(inputs, 1);
    const matrix<short> noneExcluded(spider.rows(), 1);
    M_MinMax(&spider, spider.rows(), inputs, &minima, &maxima, noneExcluded.data(), hostTrue);
    for (int k = 1; k <= inputs; ++k) {
        tornado(k, tornadocolumn::field) = FieldInd(k, 1);
        tornado(k, tornadocolumn::minimum) = minima(k, 1);
        tornado(k, tornadocolumn::maximum) = maxima(k, 1);
        tornado(k, tornadocolumn::swing) = maxima(k, 1) - minima(k, 1);
    }
    SortQMatrixCol(tornado, inputs, tornadocolumn::columns, tornadocolumn::swing, 0, inputs, true);
    return tornado;
}

template <class T>
void copyWhole(const matrix<T>& source, matrix<T>& target) {
    copyBlock(source, 1, source.rows(), 1, source.columns(), target);
}

/// The cases of one input into column k of TorT.
void fillCases(int nCases, int field, int k, matrix<double>& TorT) {
    const auto& plan = std::as_const(run.tornado);
    const long long markColumn = static_cast<long long>(plannedFields(plan)) + field;
    for (int c = 1; c <= std::min(nCases, TorT.rows()); ++c) {
        TorT(c, k) = isClamped((c - 1) % casesPerInput + 1, markColumn) ? MissingValue : plan.store(c, field);
    }
}

}  // namespace

}  // namespace quorva

void PrepareTor(int iDefCase, int iIntMeth, double ialpha, int inbrPts, int p, int* onCases,
                quorva::matrix<double>* IntT, quorva::matrix<std::u16string>* SpiderLabels) {
    using namespace quorva;
    guarded([&] {
        run.tornado = emptyPlan(iDefCase, iIntMeth, ialpha, inbrPts, p, *IntT);
        run.status.analysing = hostTrue;
        if (onCases != nullptr) {
            *onCases = run.tornado.store.rows();
        }
        writeLabels(run.tornado, *SpiderLabels);
        const int fields = run.tornado.points.empty() ? 0 : plannedFields(run.tornado);
        for (int field = 1; field <= fields; ++field) {
            placePoints(run.tornado, field);
        }
    });
}

void GetTornado(int nCases, int /*nFields*/, quorva::matrix<double>* TorT, quorva::matrix<int>* FieldInd,
                quorva::matrix<int>* ResInd, quorva::matrix<std::u16string>* FieldName) {
    using namespace quorva;
    guarded([&] {
        int k = 0;
        for (int field = 1; field <= run.fields.nFields; ++field) {
            if (!isKind(field, FieldKind::Distribution) && !isKind(field, FieldKind::ScenarioVariable)) {
                continue;
            }
            ++k;
            if (k <= TorT->columns()) {
                fillCases(nCases, field, k, *TorT);
            }
            if (FieldInd->contains(k, 1)) {
                (*FieldInd)(k, 1) = field;
            }
            if (FieldName->contains(k, 1)) {
                (*FieldName)(k, 1) = std::as_const(run.fields.FieldNames)(field, namecolumn::field);
            }
        }
        copyBlock(run.tornado.resultOrder, 1, run.fields.nFields, 1, 1, *ResInd);
        run.status.analysing = hostFalse;
    });
}

void GetTornadoItem(int /*nCases*/, int nFields, int iField, quorva::matrix<double>* TorT,
                    quorva::matrix<int>* FieldInd, quorva::matrix<double>* oTornado, quorva::matrix<double>* oSpider) {
    using namespace quorva;
    guarded([&] {
        auto spider = spiderOf(nFields, iField, *TorT, *FieldInd);
        const auto tornado = tornadoOf(spider, *FieldInd);
        copyWhole(spider, *oSpider);
        copyWhole(tornado, *oTornado);
    });
}

void Cpp_PrepareTor(int iDefCase, int iIntMeth, double ialpha, int inbrPts, int p, int* onCases, double* IntT,
                    quorva::HostString* SpiderLabels) {
    using namespace quorva;
    guarded([&] {
        auto intervals = matrix<double>::over(IntT, p, intervalcolumn::columns);
        LentStrings labels(SpiderLabels, inbrPts, 1);
        PrepareTor(iDefCase, iIntMeth, ialpha, inbrPts, p, onCases, &intervals, labels.texts());
        labels.writeBack();
    });
}

void Cpp_GetTornado(int nCases, int nFields, double* TorT, int* FieldInd, int* ResInd, quorva::HostString* FieldName) {
    using namespace quorva;
    guarded([&] {
        auto table = matrix<double>::over(TorT, nCases, nFields);
        auto inputs = matrix<int>::over(FieldInd, nFields, 1);
        auto results = matrix<int>::over(ResInd, run.fields.nFields, 1);
        LentStrings names(FieldName, nFields, 1);
        GetTornado(nCases, nFields, &table, &inputs, &results, names.texts());
        names.writeBack();
    });
}

void Cpp_GetTornadoItem(int nCases, int nFields, int iField, double* TorT, int* FieldInd, double* oTornado,
                        double* oSpider) {
    using namespace quorva;
    guarded([&] {
        auto table = matrix<double>::over(TorT, nCases, nFields);
        auto inputs = matrix<int>::over(FieldInd, nFields, 1);
        auto tornado = matrix<double>::over(oTornado, nFields, tornadocolumn::columns);
        auto spider = matrix<double>::over(oSpider, run.tornado.inbrPts, nFields);
        GetTornadoItem(nCases, nFields, iField, &table, &inputs, &tornado, &spider);
    });
}
