// Distribution fields: cells that draw from a law.
#include "engine/correlated_draw.h"
#include "engine/latin_hypercube.h"
#include "model/field_evaluation.h"
#include "model/tornado_plan.h"
#include "numerics/law_table.h"
#include "numerics/laws.h"
#include "numerics/vector_statistics.h"
#include "quorva/catalogue.h"
#include "quorva/worksheet.h"

namespace quorva {
namespace {

constexpr int lastStoredLaw = 60;  ///< laws above are drawn as an index, which their caller turns into a value
constexpr int truncatedByValue = 1;
constexpr int truncatedByProbability = 2;

/// The values of a user's list, in place of a law's parameters.
struct ValueList {
    const double* values = nullptr;
    int count = 0;
};

/// One evaluation of a distribution's formula.
struct Distribution {
    const char* name;
    int law;
    double parameters[4];
    double defaultValue;
    int truncMode;
    double truncLower;
    double truncUpper;
    int visible;
    ValueList list;                ///< the values that a drawn index stands for, when there are any
    bool showsMeanOfList = false;  ///< in place of the default value

    /// What the cell shows outside a run: its default, else the theoretical mean.
    double shown() const {
        const double given = showsMeanOfList ? V_Mean2(list.values, list.count) : defaultValue;
        return given == MissingValue ? TheoStat(law, 1, parameters[0], parameters[1], parameters[2], parameters[3])
                                     : given;
    }
    /// The index that the numerical library knows the law by.
    int lawIndex() const { return static_cast<int>(static_cast<unsigned>(law) - 1U); }
    double probability(double x) const {
        return CDFFunction(lawIndex(), x, parameters[0], parameters[1], parameters[2], parameters[3]);
    }
    double quantile(double uniform) const {
        return InvCDFFunction(law > lastStoredLaw ? quorva::lawIndex(law::uniformDiscrete) : lawIndex(), uniform,
                              parameters[0], parameters[1], parameters[2], parameters[3]);
    }
};

void describe(const Distribution& distribution, int field) {
    matrix<double>& table = run.fields.FieldTable;
    table(field, fieldcolumn::law) = distribution.law;
    for (int i = 0; i < 4; ++i) {
        table(field, fieldcolumn::param1 + i) = distribution.parameters[i];
    }
    table(field, fieldcolumn::defaultValue) = distribution.shown();
    double lower = 0.0;
    double upper = 1.0;
    if (distribution.truncMode == truncatedByValue) {
        lower = distribution.probability(distribution.truncLower);
        upper = distribution.probability(distribution.truncUpper);
    } else if (distribution.truncMode == truncatedByProbability) {
        lower = distribution.truncLower;
        upper = distribution.truncUpper;
    }
    table(field, fieldcolumn::lowerProbability) = lower;
    table(field, fieldcolumn::upperProbability) = upper;
    table(field, fieldcolumn::stream) = run.fields.nDist;
}

double draw(const Distribution& distribution, int field) {
    const matrix<double>& table = run.fields.FieldTable;
    SeedState& seed = run.sampling.seed;
    if (table(field, fieldcolumn::correlationGroup) > 0.0) {
        const double uniform = getNormalCorr(field, &seed.seed, seed.initialise, &seed.updated);
        // The correlated normal itself serves the normal laws.
        if (distribution.law == law::normal) {
            return distribution.parameters[1] * table(field, fieldcolumn::correlatedDraw) + distribution.parameters[0];
        }
        if (distribution.law == law::normalStd) {
            return table(field, fieldcolumn::correlatedDraw);
        }
        return distribution.quantile(uniform);
    }
    const double uniform =
        getLHSRandom01(0, wholeNumber(table(field, fieldcolumn::stream)), table(field, fieldcolumn::lowerProbability),
                       table(field, fieldcolumn::upperProbability), &seed.seed, seed.initialise, &seed.updated);
    return distribution.quantile(uniform);
}

/// The value that a drawn index stands for; an index outside the list gives what a read outside a new table gives.
double listed(const ValueList& list, double index) {
    const int k = wholeNumber(index);
    return k >= 1 && k <= list.count ? list.values[k - 1] : matrix<double>().scratch();
}

double drawOnce(const Distribution& distribution, int field) {
    if (isDone(field)) {
        return storedValue(field);
    }
    double value = draw(distribution, field);
    if (distribution.law > lastStoredLaw) {
        if (!distribution.list.values) {
            return value;  // a bare index is not recorded
        }
        value = listed(distribution.list, value);
    }
    recordInput(field, value);
    return value;
}

double evaluate(const Distribution& distribution) {
    if (!run.status.any()) {
        return distribution.shown();
    }
    const FieldEvaluation evaluation =
        evaluateField(FieldKind::Distribution, distribution.name, distribution.visible,
                      [&](int field, const CallingCell&, int) { describe(distribution, field); });
    if (!evaluation.takesPart()) {
        return distribution.shown();
    }
    switch (evaluation.status) {
        case RunStatus::Running:
            return drawOnce(distribution, evaluation.field);
        case RunStatus::Analysing:
            return tornadoInput(evaluation.field);
        default:
            return distribution.shown();
    }
}

double cellOf(const Distribution& distribution) {
    return guardedCell([&] { return evaluate(distribution); }, [&] { return distribution.shown(); });
}

}  // namespace
}  // namespace quorva

using namespace quorva;

double QUORVA_SimDist(const char* VarName, int Law, double Param1, double Param2, double Param3, double Param4,
                      double DefaultValue, int TruncMode, double TruncLower, double TruncUpper, int Visible) {
    const Distribution distribution{
        VarName, Law, {Param1, Param2, Param3, Param4}, DefaultValue, TruncMode, TruncLower, TruncUpper, Visible, {}};
    return cellOf(distribution);
}

double QUORVA_SimEmpiricUniform(const char* VarName, std::uint16_t* rows, std::uint16_t* columns, double* values,
                                short DefaultType, double DefaultValue, int Visible) {
    if (*columns == 0 || !values) {
        return 0.0;
    }
    const ValueList list{values, *rows == 0 ? 1 : *rows};
    const Distribution distribution{
        VarName, empiricLaw,      {1.0, static_cast<double>(list.count), 0.0, 0.0}, DefaultValue, 0, 0.0, 0.0, Visible,
        list,    DefaultType == 0};
    return cellOf(distribution);
}
