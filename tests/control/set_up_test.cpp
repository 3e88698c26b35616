#include <cmath>

#include "control/checks.h"
#include "control_test.h"
#include "numerics/linear_algebra.h"

using namespace quorva;
using namespace quorva::testing;

namespace {

class SetUpOfCorrelation : public ControlTest {
protected:
    /// Distributions named like the labels, one result, registered.
    void registerModel(const std::vector<std::u16string>& names) {
        for (std::size_t i = 0; i < names.size(); ++i) {
            normal({static_cast<int>(i), 0}, std::string(names[i].begin(), names[i].end()));
        }
        result({50, 5}, "~result", [] { return 1.0; });
        init();
        recalculate();
    }
};

TEST_F(SetUpOfCorrelation, NothingRegisteredEndsTheRun) {
    init();
    EXPECT_EQ(init2(), -3);
    EXPECT_EQ(Cpp_SimGetStatus(), 0);
}

TEST_F(SetUpOfCorrelation, TablesAreSizedByTheRegisteredFields) {
    registerModel({u"a", u"b"});
    ASSERT_EQ(init2(), 0);
    EXPECT_EQ(run.fields.FieldTable.rows(), 3);
    EXPECT_EQ(run.fields.FieldTable.columns(), 22);
    EXPECT_EQ(run.fields.FieldFlags.columns(), 9);
    EXPECT_EQ(run.fields.FieldNames.columns(), 2);
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(run.fields.FieldFlags(i, 8), MissingValueTwin);
        EXPECT_EQ(run.fields.FieldFlags(i, 9), MissingValue);
        EXPECT_EQ(run.fields.FieldFlags(i, 1), 0.0);
    }
}

TEST_F(SetUpOfCorrelation, EmptyCellsCountAsZero) {
    registerModel({u"a", u"b"});
    Correlations c{{u"a", u"b"}, {1, MissingValue, MissingValue, 1}};
    EXPECT_EQ(init2(c), 0);
    EXPECT_EQ(run.correlation.CorrFactor(2, 1), 0.0);
    EXPECT_EQ(run.correlation.groups, 0);
    EXPECT_EQ(c.matrix[1], MissingValue) << "written back after a repair only";
}

TEST_F(SetUpOfCorrelation, AnIdentityLeavesEveryLabelWithoutAGroup) {
    registerModel({u"a", u"b", u"c"});
    Correlations c{{u"a", u"b", u"c"}, {1, 0, 0, 0, 1, 0, 0, 0, 1}};
    EXPECT_EQ(init2(c), 0);
    EXPECT_EQ(run.correlation.method, FactorMethod::Triangular);
    EXPECT_EQ(run.correlation.groups, 0);
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(run.correlation.CorrGroups(i, groupcolumn::group), 0.0);
    }
}

TEST_F(SetUpOfCorrelation, AnAsymmetricMatrixIsRefusedAndTheCountsAreGone) {
    registerModel({u"a", u"b"});
    Correlations c{{u"a", u"b"}, {1, 0.5, 0.4, 1}};
    Capabilities spc{{u"a"}, {1}, {2}, {3}};
    EXPECT_EQ(init2(c, &spc), -2);
    EXPECT_EQ(Cpp_SimGetStatus(), 1);
    EXPECT_EQ(run.capability.iUseSpc, hostFalse) << "nothing after the correlations is set up";
    EXPECT_TRUE(run.fields.FieldTable.empty());
    EXPECT_EQ(getFieldInfo(0, 0, 0), 1U) << "the cells registered stay";
    EXPECT_EQ(init2(), -3) << "the counters are reset already";
    EXPECT_EQ(Cpp_SimGetStatus(), 0);
}

TEST_F(SetUpOfCorrelation, PerfectCorrelationIsFactoredByTheSymmetricRoot) {
    registerModel({u"a", u"b"});
    Correlations c{{u"a", u"b"}, {1, 1, 1, 1}};
    EXPECT_EQ(init2(c), 0);
    EXPECT_EQ(run.correlation.method, FactorMethod::SquareRoot);
    EXPECT_NEAR(run.correlation.CorrFactor(1, 2), std::sqrt(0.5), 1e-12);
}

TEST_F(SetUpOfCorrelation, AMatrixWithoutARootIsRepairedHandedBackAndItselfTheFactor) {
    registerModel({u"a", u"b", u"c"});
    Correlations c{{u"a", u"b", u"c"}, {1, 0.9, -0.9, 0.9, 1, 0.9, -0.9, 0.9, 1}};
    const std::vector<double> wanted = c.matrix;
    EXPECT_EQ(init2(c), 2);
    EXPECT_EQ(Cpp_SimGetStatus(), 2);
    EXPECT_EQ(run.correlation.method, FactorMethod::Triangular);
    EXPECT_NE(c.matrix, wanted);
    matrix<double> repaired(3, 3, c.matrix.data());
    for (int i = 1; i <= 3; ++i) {
        EXPECT_NEAR(repaired(i, i), 1.0, 1e-9);
        for (int j = 1; j <= 3; ++j) {
            EXPECT_EQ(run.correlation.CorrFactor(i, j), repaired(i, j));
        }
    }
    EXPECT_EQ(run.correlation.groups, 1);
    matrix<double> factor(3, 3);
    EXPECT_GE(M_SquareRoot(&repaired, 3, &factor), 0) << "the repaired matrix has a factor";
}

TEST_F(SetUpOfCorrelation, AMatrixBeyondRepairIsRefused) {
    registerModel({u"a", u"b"});
    const double nan = std::nan("");
    Correlations c{{u"a", u"b"}, {nan, 2, 2, nan}};
    EXPECT_EQ(init2(c), -2);
    EXPECT_EQ(Cpp_SimGetStatus(), 1);
    EXPECT_EQ(run.correlation.groups, 1) << "labels are grouped all the same";
    EXPECT_EQ(run.correlation.CorrGroups(2, groupcolumn::group), 1);
}

TEST_F(SetUpOfCorrelation, AMatrixBeyondRepairIsHandedBackAllTheSame) {
    registerModel({u"a", u"b"});
    const double nan = std::nan("");
    Correlations c{{u"a", u"b"}, {nan, MissingValue, MissingValue, nan}};
    EXPECT_EQ(init2(c), -2);
    EXPECT_EQ(c.matrix[1], 0.0) << "an empty cell as it was counted";
    EXPECT_EQ(c.matrix[2], 0.0);
}

TEST_F(SetUpOfCorrelation, GroupsAreThoseOfTheFactorNotOfTheMatrix) {
    // A path of links 1-4, 4-3, 3-2 at which the smallest eigenvalue is 0: the matrix itself gives two groups that meet
    // in the link 3-4, its symmetric root links all labels.
    const double g = (std::sqrt(5.0) - 1) / 2;
    registerModel({u"a", u"b", u"c", u"d"});
    Correlations c{{u"a", u"b", u"c", u"d"}, {1, 0, 0, g, 0, 1, g, 0, 0, g, 1, g, g, 0, g, 1}};
    ASSERT_EQ(init2(c), 0);
    ASSERT_EQ(run.correlation.method, FactorMethod::SquareRoot);
    EXPECT_EQ(run.correlation.groups, 1);
    EXPECT_EQ(run.correlation.CorrGroups(2, groupcolumn::group), 1);
}

TEST_F(SetUpOfCorrelation, ASetUpWithoutCorrelationsForgetsThoseOfTheOneBefore) {
    registerModel({u"a", u"b"});
    Correlations c{{u"a", u"b"}, {1, 0.5, 0.5, 1}};
    ASSERT_EQ(init2(c), 0);
    ASSERT_EQ(run.correlation.groups, 1);
    recalculate();
    ASSERT_EQ(init2(), 0);
    EXPECT_EQ(run.correlation.UseCorr, hostFalse);
    EXPECT_EQ(run.correlation.nCorr, 0);
    EXPECT_EQ(run.correlation.groups, 0);
    EXPECT_EQ(run.correlation.method, FactorMethod::None);
}

TEST_F(SetUpOfCorrelation, TheCapabilityConfidenceIsTakenWithoutLimits) {
    registerModel({u"a"});
    ASSERT_EQ(Cpp_SimInit2(0, 0, nullptr, nullptr, 0, 3, 0.875, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(run.capability.iSpcConf, 0.875);
    EXPECT_EQ(run.capability.inSpc, 3);
    EXPECT_EQ(run.capability.iUseSpc, hostFalse);
}

TEST_F(SetUpOfCorrelation, AStoredErrorLeavesTheCountsAlone) {
    registerModel({u"a", u"b"});
    evaluate(0);  // met twice
    ASSERT_EQ(init2(), -10);
    EXPECT_EQ(run.fields.nDist, 3);
    EXPECT_EQ(run.fields.nRes, 1);
    EXPECT_TRUE(run.fields.FieldTable.empty());
}

TEST_F(SetUpOfCorrelation, LabelsAreBoundToDistributionsByName) {
    registerModel({u"b", u"a", u"A"});
    Correlations c{{u"a", u"b"}, {1, 0.5, 0.5, 1}};
    ASSERT_EQ(init2(c), 0);
    recalculate();
    ASSERT_EQ(begin(5), 0);
    const int a = numberOf(u"a");
    const int b = numberOf(u"b");
    const matrix<double>& t = run.fields.FieldTable;
    EXPECT_EQ(t(a, fieldcolumn::correlationGroup), 1);
    EXPECT_EQ(t(b, fieldcolumn::correlationGroup), 1);
    EXPECT_EQ(t(a, fieldcolumn::correlationPosition), 1);
    EXPECT_EQ(t(b, fieldcolumn::correlationPosition), 2);
    EXPECT_EQ(t(a, fieldcolumn::groupOpening), 1);
    EXPECT_EQ(t(b, fieldcolumn::groupOpening), 0);
    EXPECT_EQ(t(numberOf(u"A"), fieldcolumn::correlationPosition), 0) << "case matters";
    EXPECT_EQ(run.correlation.CorrGroups(1, groupcolumn::field), a);
    EXPECT_EQ(run.correlation.CorrGroups(1, groupcolumn::stream), 2);
    EXPECT_EQ(run.correlation.CorrGroups(2, groupcolumn::stream), 1);
}

TEST_F(SetUpOfCorrelation, ALabelOfAResultFieldIsUnknown) {
    registerModel({u"a"});
    Correlations c{{u"a", u"~result"}, {1, 0.5, 0.5, 1}};
    ASSERT_EQ(init2(c), 0);
    recalculate();
    EXPECT_EQ(begin(5), -1);
    EXPECT_EQ(Cpp_SimGetStatus(), 0);
    EXPECT_EQ(run.error.flag, hostFalse) << "nothing but the code tells";
    EXPECT_FALSE(run.sampling.SampleStore.empty()) << "renumbering and store stay";
}

TEST_F(SetUpOfCorrelation, ALabelOfAScenarioVariableOrAStatisticIsUnknown) {
    for (const char16_t* other : {u"scenario", u"statistic"}) {
        cells.clear();
        scenario({9, 9}, "scenario");
        statistic({9, 8}, "statistic", {0, 0});
        registerModel({u"a"});
        Correlations c{{u"a", other}, {1, 0.5, 0.5, 1}};
        ASSERT_EQ(init2(c), 0);
        recalculate();
        EXPECT_EQ(begin(5), -1);
        EXPECT_EQ(run.fields.FieldTable(numberOf(u"a"), fieldcolumn::correlationPosition), 1)
            << "the labels before it are bound";
        EXPECT_EQ(run.fields.FieldFlags(numberOf(u"a"), momentcolumn::collect), 1)
            << "what the statistic describes is collected all the same";
    }
}

TEST_F(SetUpOfCorrelation, LabelsAfterAnUnknownOneAreNotBound) {
    registerModel({u"a", u"b"});
    Correlations c{{u"nobody", u"a", u"b"}, {1, 0, 0, 0, 1, 0.5, 0, 0.5, 1}};
    ASSERT_EQ(init2(c), 0);
    recalculate();
    EXPECT_EQ(begin(5), -1);
    EXPECT_EQ(run.fields.FieldTable(numberOf(u"a"), fieldcolumn::correlationPosition), 0);
    EXPECT_EQ(run.correlation.CorrGroups(2, groupcolumn::field), 0);
}

TEST_F(SetUpOfCorrelation, TheLabelCheckHidesAStoredErrorThatTheNextStepReports) {
    registerModel({u"a", u"b"});
    Correlations c{{u"a", u"b"}, {1, 0.5, 0.5, 1}};
    ASSERT_EQ(init2(c), 0);
    recalculate();
    evaluate(0);  // -10
    EXPECT_EQ(begin(5), 0);
    EXPECT_EQ(Cpp_SimGetStatus(), 3);
    EXPECT_EQ(Cpp_SimNext(), -1);
}

TEST_F(SetUpOfCorrelation, TheCapabilityCheckHidesAnUnknownCorrelationLabel) {
    registerModel({u"a"});
    Correlations c{{u"a", u"nobody"}, {1, 0.5, 0.5, 1}};
    Capabilities spc{{u"~result", u"a", u"neither"}, {1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
    ASSERT_EQ(init2(c, &spc), 0);
    recalculate();
    EXPECT_EQ(begin(5), 0);
    EXPECT_EQ(Cpp_SimGetStatus(), 3);
    EXPECT_EQ(run.capability.SpcTable(1, 1), numberOf(u"~result"));
    EXPECT_EQ(run.capability.SpcTable(2, 1), numberOf(u"a"));
    EXPECT_EQ(run.capability.SpcTable(3, 1), 0) << "an unknown label stays unbound";
    EXPECT_EQ(run.capability.SpcTable(2, 2), 2);
    EXPECT_EQ(run.capability.SpcTable(2, 3), 5);
    EXPECT_EQ(run.capability.SpcTable(2, 4), 8);
    EXPECT_EQ(run.fields.FieldTable(numberOf(u"a"), fieldcolumn::capability), 2);
    EXPECT_EQ(run.capability.iSpcConf, 0.95);
}

TEST_F(SetUpOfCorrelation, TheCapabilityCheckAlsoHidesAStoredErrorThatTheNextStepReports) {
    registerModel({u"a"});
    Correlations none;
    Capabilities spc{{u"a"}, {1}, {2}, {3}};
    ASSERT_EQ(init2(none, &spc), 0);
    recalculate();
    evaluate(0);  // -10
    EXPECT_EQ(begin(5), 0);
    EXPECT_EQ(Cpp_SimGetStatus(), 3);
    EXPECT_EQ(Cpp_SimNext(), -1);
}

TEST_F(SetUpOfCorrelation, ACapabilityLabelMayNameAScenarioVariable) {
    scenario({9, 9}, "scenario");
    registerModel({u"a"});
    Correlations none;
    Capabilities spc{{u"scenario"}, {1}, {2}, {3}};
    ASSERT_EQ(init2(none, &spc), 0);
    recalculate();
    ASSERT_EQ(begin(5), 0);
    EXPECT_EQ(run.capability.SpcTable(1, 1), numberOf(u"scenario"));
}

TEST_F(SetUpOfCorrelation, TheSetUpEmptiesTheGridsAndKeepsTheSheets) {
    normal({1, 1, "[B]A"}, "x");
    result({1, 1, "[B]B"}, "r", [] { return 0.0; });
    init(true);
    recalculate();
    EXPECT_EQ(getFieldInfo(1, 1, 2), 2U);
    ASSERT_EQ(init2(), 0);
    EXPECT_EQ(getFieldInfo(1, 1, 1), 0U);
    EXPECT_EQ(getFieldInfo(1, 1, 2), 0U);
    EXPECT_EQ(run.sheets.inUse, 2);
    reset();
    EXPECT_EQ(run.sheets.inUse, 0);
    EXPECT_FALSE(run.sheets.grids[1].allocated());
}

TEST_F(SetUpOfCorrelation, ChecksWithoutFields) {
    init();
    run.correlation.nCorr = 2;
    run.correlation.CorrLabels = matrix<std::u16string>(2, 1);
    EXPECT_EQ(checkVarlistCorr(), -1);
    EXPECT_EQ(checkVarlistDoubles(), 0);
    EXPECT_EQ(checkVarlistSPC(), 0);
    run.correlation.nCorr = -1;
    EXPECT_EQ(checkVarlistCorr(), 0);
}

TEST_F(SetUpOfCorrelation, OfThreeFieldsWithOneNameTheFirstTwoAreReported) {
    registerModel({u"x", u"same", u"y", u"y", u"same", u"same"});
    ASSERT_EQ(init2(), 0);
    recalculate();
    EXPECT_EQ(begin(5), -17);
    EXPECT_EQ(reportedError().line, 1);
    EXPECT_EQ(reportedError(-1).line, 4);
    EXPECT_EQ(reportedError(-1).texts[1], u"same");
}

TEST_F(SetUpOfCorrelation, CountsOfNothingNeedNoArrays) {
    registerModel({u"a"});
    EXPECT_EQ(Cpp_SimInit2(hostTrue, 0, nullptr, nullptr, hostTrue, 0, 0.9, nullptr, nullptr, nullptr, nullptr), 0);
    recalculate();
    EXPECT_EQ(begin(2), 0);
    EXPECT_EQ(iterate(), 0);
}

TEST_F(SetUpOfCorrelation, NegativeCountsAreNone) {
    registerModel({u"a"});
    EXPECT_EQ(Cpp_SimInit2(hostTrue, -3, nullptr, nullptr, hostTrue, -1, 0.9, nullptr, nullptr, nullptr, nullptr), 0);
    recalculate();
    EXPECT_EQ(begin(2), 0);
    EXPECT_EQ(iterate(), 0);
}

}  // namespace
