// The worksheet functions of the laws: each describes its field as the general function would.
#include <array>
#include <map>

#include "model_test.h"
#include "numerics/law_table.h"
#include "quorva/catalogue.h"

using namespace quorva;
using namespace quorva::testing;

namespace {

/// The laws' identifiers, written once more.
const std::map<std::string, int> identifiers{{"QUORVA_SimBeta", 1},           {"QUORVA_SimBinomial", 2},
                                             {"QUORVA_SimBinomialNeg1", 3},   {"QUORVA_SimBinomialNeg2", 4},
                                             {"QUORVA_SimChiSquare", 5},      {"QUORVA_SimExponential", 6},
                                             {"QUORVA_SimFisher", 7},         {"QUORVA_SimGumbel", 8},
                                             {"QUORVA_SimFisherTippett1", 9}, {"QUORVA_SimFisherTippett2", 10},
                                             {"QUORVA_SimGamma1", 11},        {"QUORVA_SimGamma2", 12},
                                             {"QUORVA_SimGamma3", 13},        {"QUORVA_SimLogNormal", 14},
                                             {"QUORVA_SimNormal", 15},        {"QUORVA_SimNormalStd", 16},
                                             {"QUORVA_SimPareto", 17},        {"QUORVA_SimPoisson", 18},
                                             {"QUORVA_SimStudent", 19},       {"QUORVA_SimUniform", 20},
                                             {"QUORVA_SimWeibull1", 21},      {"QUORVA_SimWeibull2", 22},
                                             {"QUORVA_SimWeibull3", 23},      {"QUORVA_SimGEV", 24},
                                             {"QUORVA_SimErlang", 25},        {"QUORVA_SimTriangular", 26},
                                             {"QUORVA_SimPert", 27},          {"QUORVA_SimLogistic", 28},
                                             {"QUORVA_SimUniformDisc", 29},   {"QUORVA_SimBeta4", 30},
                                             {"QUORVA_SimTrapezoidal", 31},   {"QUORVA_SimBernoulli", 32},
                                             {"QUORVA_SimLogNormal2", 33},    {"QUORVA_SimArcsineG", 35}};

struct Described {
    int law;
    std::array<double, 4> parameters;
    double defaultValue, lower, upper, visible;
    bool operator==(const Described&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Described& d) {
    out << "law " << d.law << ':';
    for (const double p : d.parameters) {
        out << ' ' << p;
    }
    return out << ", default " << d.defaultValue << ", bounds " << d.lower << ' ' << d.upper << ", visible "
               << d.visible;
}

double meanOf(int law, double a = 0, double b = 0, double c = 0, double d = 0) { return TheoStat(law, 1, a, b, c, d); }

class LawFunctions : public ModelTest {
protected:
    /// What the one distribution of a model is described as.
    Described described(const Formula& formula) {
        cells.clear();
        cell({0, 0}, formula);
        result({1, 0}, "~", [] { return 0.0; });
        prepare();
        const matrix<double>& t = run.fields.FieldTable;
        Described d{static_cast<int>(t(1, fieldcolumn::law)), {},
                    t(1, fieldcolumn::defaultValue),          t(1, fieldcolumn::lowerProbability),
                    t(1, fieldcolumn::upperProbability),      t(1, fieldcolumn::visible)};
        for (int i = 0; i < 4; ++i) {
            d.parameters[static_cast<std::size_t>(i)] = t(1, fieldcolumn::param1 + i);
        }
        reset();
        return d;
    }
};

TEST_F(LawFunctions, PassTheirLawItsParametersAndTheOptions) {
    std::size_t laws = 0;
#define QUORVA_EXPECT_DESCRIBED(NAME, PARAMETERS, ...)                                                   \
    ++laws;                                                                                              \
    EXPECT_EQ(described([] { return NAME("x" __VA_OPT__(, ) __VA_ARGS__, 2, 0.125, 0.75, 1, 99, 7); }),  \
              (Described{identifiers.at(#NAME), PARAMETERS, 99, 0.125, 0.75, 7}))                        \
        << #NAME;                                                                                        \
    EXPECT_EQ(described([] { return NAME("x" __VA_OPT__(, ) __VA_ARGS__, 0, 0.125, 0.75, 1, 99, -1); }), \
              (Described{identifiers.at(#NAME), PARAMETERS, 99, 0.0, 1.0, -1}))                          \
        << #NAME;
#define QUORVA_LIST(...) {__VA_ARGS__}
#define QUORVA_EXPECT_0(NAME) QUORVA_EXPECT_DESCRIBED(NAME, QUORVA_LIST(0, 0, 0, 0))
#define QUORVA_EXPECT_1(NAME) QUORVA_EXPECT_DESCRIBED(NAME, QUORVA_LIST(0.5, 0, 0, 0), 0.5)
#define QUORVA_EXPECT_2(NAME) QUORVA_EXPECT_DESCRIBED(NAME, QUORVA_LIST(0.5, 2.5, 0, 0), 0.5, 2.5)
#define QUORVA_EXPECT_3(NAME) QUORVA_EXPECT_DESCRIBED(NAME, QUORVA_LIST(0.5, 2.5, 7, 0), 0.5, 2.5, 7)
#define QUORVA_EXPECT_4(NAME) QUORVA_EXPECT_DESCRIBED(NAME, QUORVA_LIST(0.5, 2.5, 7, 11), 0.5, 2.5, 7, 11)
    QUORVA_LAWS_WITH_0_PARAMETERS(QUORVA_EXPECT_0)
    QUORVA_LAWS_WITH_1_PARAMETER(QUORVA_EXPECT_1)
    QUORVA_LAWS_WITH_2_PARAMETERS(QUORVA_EXPECT_2)
    QUORVA_LAWS_WITH_3_PARAMETERS(QUORVA_EXPECT_3)
    QUORVA_LAWS_WITH_4_PARAMETERS(QUORVA_EXPECT_4)
    EXPECT_EQ(laws, identifiers.size());
}

TEST_F(LawFunctions, TheTriangleByPercentilesPassesItsOptionsToo) {
    // The symmetric triangle on [0, 2]: its 12.5 % and 87.5 % quantiles are 0.5 and 1.5.
    Described d =
        described([] { return QUORVA_SimTriangularQ("t", 0.5, 1, 1.5, 12.5, 87.5, 2, 0.125, 0.75, 1, 99, 7); });
    EXPECT_NEAR(d.parameters[0], 0.0, 1e-11);
    EXPECT_NEAR(d.parameters[2], 2.0, 1e-11);
    d.parameters = {0, d.parameters[1], 2, d.parameters[3]};
    EXPECT_EQ(d, (Described{26, {0, 1, 2, 0}, 99, 0.125, 0.75, 7}));
}

TEST_F(LawFunctions, AListPassesTheNumberOfItsValues) {
    double values[] = {1, 2, 10};
    std::uint16_t rows = 3, columns = 1;
    EXPECT_EQ(described([&] { return QUORVA_SimEmpiricUniform("l", &rows, &columns, values, 1, 99, 7); }),
              (Described{61, {1, 3, 0, 0}, 99, 0, 1, 7}));
}

TEST_F(LawFunctions, EveryWrapperShowsTheMeanOfItsLaw){
// The catalogue, the wrappers and the moments agree: outside a run a wrapper shows the mean of its law.
#define QUORVA_EXPECT_MEAN(NAME, ...)                                                                                 \
    {                                                                                                                 \
        const auto entry =                                                                                            \
            std::find_if(lawTable.begin(), lawTable.end(), [](const LawEntry& law) { return law.wrapper == #NAME; }); \
        ASSERT_NE(entry, lawTable.end());                                                                             \
        EXPECT_EQ(NAME("x" __VA_OPT__(, ) __VA_ARGS__, 0, 0, 0, 0, 99, 1),                                            \
                  meanOf(entry->law __VA_OPT__(, ) __VA_ARGS__))                                                      \
            << #NAME;                                                                                                 \
        EXPECT_EQ(NAME("x" __VA_OPT__(, ) __VA_ARGS__, 0, 0, 0, 1, 99, 1), 99.0) << #NAME;                            \
    }
#define QUORVA_EXPECT_MEAN_0(NAME) QUORVA_EXPECT_MEAN(NAME)
#define QUORVA_EXPECT_MEAN_1(NAME) QUORVA_EXPECT_MEAN(NAME, 0.3)
#define QUORVA_EXPECT_MEAN_2(NAME) QUORVA_EXPECT_MEAN(NAME, 0.3, 2.5)
#define QUORVA_EXPECT_MEAN_3(NAME) QUORVA_EXPECT_MEAN(NAME, 0.3, 2.5, 7.25)
#define QUORVA_EXPECT_MEAN_4(NAME) QUORVA_EXPECT_MEAN(NAME, 0.3, 2.5, 7.25, 11.0)
    QUORVA_LAWS_WITH_0_PARAMETERS(QUORVA_EXPECT_MEAN_0) QUORVA_LAWS_WITH_1_PARAMETER(QUORVA_EXPECT_MEAN_1)
        QUORVA_LAWS_WITH_2_PARAMETERS(QUORVA_EXPECT_MEAN_2) QUORVA_LAWS_WITH_3_PARAMETERS(QUORVA_EXPECT_MEAN_3)
            QUORVA_LAWS_WITH_4_PARAMETERS(QUORVA_EXPECT_MEAN_4)}

TEST_F(LawFunctions, TriangularByPercentilesShowsTheMeanOfTheLawFound) {
    // The symmetric triangle on [0, 2]: its 12.5 % and 87.5 % quantiles are 0.5 and 1.5.
    EXPECT_NEAR(QUORVA_SimTriangularQ("t", 0.5, 1, 1.5, 12.5, 87.5, 0, 0, 0, 0, 0, 1), 1.0, 1e-11);
    EXPECT_EQ(QUORVA_SimTriangularQ("t", 0.5, 1, 1.5, 12.5, 87.5, 0, 0, 0, 1, 42, 1), 42.0);
}

}  // namespace
