// The worksheet functions of one law or one statistic each, made from the lists of their names; identifiers and
// parameter counts are looked up in the catalogue and checked while compiling.
#include <limits>

#include "common/guarded.h"
#include "numerics/laws.h"
#include "quorva/catalogue.h"
#include "quorva/wire_format.h"
#include "quorva/worksheet.h"

namespace quorva {
namespace {

consteval const LawEntry& lawOf(std::string_view wrapper) {
    for (const LawEntry& entry : lawTable) {
        if (entry.wrapper == wrapper) {
            return entry;
        }
    }
    throw "the catalogue has no law function of this name";
}

consteval int statisticOf(std::string_view wrapper) {
    for (const StatisticEntry& entry : statisticTable) {
        if (entry.wrapper == wrapper) {
            return entry.statistic;
        }
    }
    throw "the catalogue has no statistic function of this name";
}

constexpr double chosenDefault(short defaultType, double value) { return defaultType != 0 ? value : MissingValue; }

#define QUORVA_COUNT(NAME) +1
constexpr int lawFunctions = QUORVA_LAWS_WITH_0_PARAMETERS(QUORVA_COUNT) QUORVA_LAWS_WITH_1_PARAMETER(QUORVA_COUNT)
    QUORVA_LAWS_WITH_2_PARAMETERS(QUORVA_COUNT) QUORVA_LAWS_WITH_3_PARAMETERS(QUORVA_COUNT)
        QUORVA_LAWS_WITH_4_PARAMETERS(QUORVA_COUNT);
constexpr int statisticFunctions = QUORVA_STATISTIC_FUNCTIONS(QUORVA_COUNT);
#undef QUORVA_COUNT
static_assert(lawFunctions + 1 == static_cast<int>(lawTable.size()));  // and QUORVA_SimTriangularQ
static_assert(statisticFunctions == static_cast<int>(statisticTable.size()));

}  // namespace
}  // namespace quorva

using namespace quorva;

#define QUORVA_DEFINE_LAW(NAME, COUNT, PARAMETERS, P1, P2, P3, P4)                                                 \
    static_assert(lawOf(#NAME).parameters == COUNT);                                                               \
    double NAME PARAMETERS {                                                                                       \
        return QUORVA_SimDist(VarName, lawOf(#NAME).law, P1, P2, P3, P4, chosenDefault(DefaultType, DefaultValue), \
                              TruncMode, TruncLower, TruncUpper, Visible);                                         \
    }
#define QUORVA_DEFINE_LAW_0(NAME) \
    QUORVA_DEFINE_LAW(NAME, 0, (const char* VarName, QUORVA_LAW_OPTIONS), 0.0, 0.0, 0.0, 0.0)
#define QUORVA_DEFINE_LAW_1(NAME) \
    QUORVA_DEFINE_LAW(NAME, 1, (const char* VarName, double Param1, QUORVA_LAW_OPTIONS), Param1, 0.0, 0.0, 0.0)
#define QUORVA_DEFINE_LAW_2(NAME)                                                                               \
    QUORVA_DEFINE_LAW(NAME, 2, (const char* VarName, double Param1, double Param2, QUORVA_LAW_OPTIONS), Param1, \
                      Param2, 0.0, 0.0)
#define QUORVA_DEFINE_LAW_3(NAME)                                                                                      \
    QUORVA_DEFINE_LAW(NAME, 3, (const char* VarName, double Param1, double Param2, double Param3, QUORVA_LAW_OPTIONS), \
                      Param1, Param2, Param3, 0.0)
#define QUORVA_DEFINE_LAW_4(NAME)                                                                                      \
    QUORVA_DEFINE_LAW(                                                                                                 \
        NAME, 4,                                                                                                       \
        (const char* VarName, double Param1, double Param2, double Param3, double Param4, QUORVA_LAW_OPTIONS), Param1, \
        Param2, Param3, Param4)
#define QUORVA_DEFINE_STATISTIC(NAME)                                            \
    double NAME(const char* StatName, XLOPER* Reference, int Visible) {          \
        return QUORVA_SimStat(StatName, Reference, statisticOf(#NAME), Visible); \
    }

extern "C" {
QUORVA_LAWS_WITH_0_PARAMETERS(QUORVA_DEFINE_LAW_0)
QUORVA_LAWS_WITH_1_PARAMETER(QUORVA_DEFINE_LAW_1)
QUORVA_LAWS_WITH_2_PARAMETERS(QUORVA_DEFINE_LAW_2)
QUORVA_LAWS_WITH_3_PARAMETERS(QUORVA_DEFINE_LAW_3)
QUORVA_LAWS_WITH_4_PARAMETERS(QUORVA_DEFINE_LAW_4)
QUORVA_STATISTIC_FUNCTIONS(QUORVA_DEFINE_STATISTIC)
}

double QUORVA_SimTriangularQ(const char* VarName, double a, double m, double b, double q1, double q2,
                             QUORVA_LAW_OPTIONS) {
    double lower = std::numeric_limits<double>::quiet_NaN();
    double upper = lower;
    guarded([&] { TriangularQFindAB(a, m, b, q1 / 100.0, q2 / 100.0, lower, upper); });
    return QUORVA_SimTriangular(VarName, lower, m, upper, TruncMode, TruncLower, TruncUpper, DefaultType, DefaultValue,
                                Visible);
}
