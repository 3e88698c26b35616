// Run control as a front end sees it: status, return codes, error locations, field numbers and their cells.
#include "contract_model.h"

namespace {

using namespace quorva;
using namespace quorva::testing;

using Texts = std::vector<std::u16string>;

class RunContract : public ContractModel {
protected:
    void smallModel() {
        normal({sheet, 0, 0}, "in");
        result({sheet, 1, 0}, "out", [this] { return value(0); });
    }
    static std::vector<double> storedValues(int nSim, int field = 1) {
        std::vector<double> values(static_cast<std::size_t>(nSim));
        QUORVA_EXPORT(Cpp_GetSimRes)(field, nSim, values.data());
        return values;
    }
    static double storedAt(int field) { return storedValues(1, field)[0]; }
};

TEST_F(RunContract, TheStatusFollowsTheCalls) {
    smallModel();
    EXPECT_EQ(status(), 0);
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(status(), 1);
    EXPECT_EQ(init2(), -3) << "nothing registered";
    EXPECT_EQ(status(), 0);
    init();
    recalculate();
    EXPECT_EQ(init2(), 0);
    EXPECT_EQ(status(), 2);
    recalculate();
    EXPECT_EQ(start(3), 0);
    EXPECT_EQ(status(), 3);
    run(3);
    const Summary summary = end(0.1, 3);
    EXPECT_EQ(status(), 0);
    int cases = -1;
    matrix<double> intervals = summary.intervals;
    FrontEndStrings labels(5);
    QUORVA_EXPORT(Cpp_PrepareTor)(0, 0, 0.1, 5, 2, &cases, intervals.data(), labels.data());
    EXPECT_EQ(status(), 4);
    end(0.1, 3);
    EXPECT_EQ(status(), 0) << "the end of a run also ends a tornado pass";
}

TEST_F(RunContract, SetUpNeedsADistributionAndAResult) {
    normal({sheet, 0, 0}, "in");
    init();
    recalculate();
    EXPECT_EQ(init2(), -3);
    EXPECT_EQ(status(), 0);
    cells.clear();
    result({sheet, 1, 0}, "out", [] { return 1.0; });
    init();
    recalculate();
    EXPECT_EQ(init2(), -3);
    EXPECT_EQ(status(), 0);
}

TEST_F(RunContract, ARunWithoutADescribedResultOrDistributionDoesNotBegin) {
    for (const std::size_t described : {0U, 1U}) {
        cells.clear();
        smallModel();
        init();
        recalculate();
        ASSERT_EQ(init2(), 0);
        evaluate(described);
        fields = distributions = results = -9;
        EXPECT_EQ(start(3), -2);
        EXPECT_EQ(status(), 0);
        EXPECT_EQ(fields, -9) << "no counts are reported";
        EXPECT_EQ(moduleError().code, 0) << "and no location";
    }
}

TEST_F(RunContract, MoreFieldsDescribedThanRegisteredAreRefused) {
    smallModel();
    normal({sheet, 2, 0}, "late");
    init();
    evaluate(0);
    evaluate(1);
    ASSERT_EQ(init2(), 0);
    recalculate();
    EXPECT_EQ(start(3), -11);
    EXPECT_EQ(status(), 0);
}

TEST_F(RunContract, TheStoredErrorIsReportedByEachControlCall) {
    smallModel();
    init();
    recalculate();
    evaluate(1);
    EXPECT_EQ(init2(), -10);
    EXPECT_EQ(status(), 1) << "nothing changes";
    EXPECT_EQ(init2(), -10);
    EXPECT_EQ(moduleError().line, 1);

    prepare();
    evaluate(1);
    EXPECT_EQ(start(4), -10);
    EXPECT_EQ(status(), 0);
    EXPECT_EQ(fields, 2) << "the counts are reported before the result is";
    EXPECT_EQ(next(), -1);
}

TEST_F(RunContract, ErrorsAreReadInTwoForms) {
    ReportedError untouched{123, 45, 67, {}};
    HostStringArray* none = nullptr;
    QUORVA_EXPORT(Cpp_SimError)(&untouched.code, &untouched.line, &untouched.column, &none);
    EXPECT_EQ(untouched.code, 123);
    EXPECT_EQ(untouched.line, 45);
    EXPECT_EQ(none, nullptr) << "without an error nothing is written";

    normal({"[Book]3", 4, 5}, "same");
    result({"[Book]1", 6, 7}, "other", [] { return 0.0; });
    result({"[Book]2", 8, 9}, "same", [] { return 0.0; });
    result({"[Book]2", 10, 11}, "same", [] { return 0.0; });
    prepare(true);
    EXPECT_EQ(start(3), -17);
    EXPECT_EQ(status(), 0);
    const ReportedError first = moduleError(0);
    EXPECT_EQ(first.code, -17);
    EXPECT_EQ(std::make_pair(first.line, first.column), std::make_pair(4, 5));
    EXPECT_EQ(first.texts, Texts{u"[Book]3"});
    for (const ReportedError& second : {moduleError(-1), moduleError2()}) {
        EXPECT_EQ(second.code, -17);
        EXPECT_EQ(std::make_pair(second.line, second.column), std::make_pair(8, 9)) << "the first pair";
        EXPECT_EQ(second.texts, (Texts{u"[Book]2", u"same"}));
    }
    init();
    EXPECT_EQ(moduleError().code, 0) << "a new start forgets the error";
}

TEST_F(RunContract, FieldNumbersFollowTheCodeUnitsOfTheNames) {
    const std::vector<std::string> described{"b", "a2", "_", "B", "a10", "a", "Z z", "~", "0"};
    const std::vector<std::u16string> sorted{u"0", u"B", u"Z z", u"_", u"a", u"a10", u"a2", u"b", u"~"};
    normal({sheet, 500, 3}, "\x01");
    for (std::size_t i = 0; i < described.size(); ++i) {
        result({sheet, static_cast<int>(10 + i), static_cast<int>(20 - i)}, described[i],
               [i] { return 100.0 + static_cast<double>(i); });
    }
    prepare();
    ASSERT_EQ(start(2), 0);
    run(2);
    const Summary summary = end(0.1, 2);
    ASSERT_EQ(summary.names.size(), sorted.size() + 1);
    for (std::size_t r = 0; r < sorted.size(); ++r) {
        EXPECT_EQ(summary.names[r + 1], sorted[r]);
        const std::string name(sorted[r].begin(), sorted[r].end());
        const auto i = std::find(described.begin(), described.end(), name) - described.begin();
        const int number = static_cast<int>(r) + 2;
        EXPECT_EQ(storedAt(number), 100.0 + static_cast<double>(i));
        EXPECT_EQ(summary.general(number, 3), 10.0 + static_cast<double>(i));
        EXPECT_EQ(summary.general(number, 4), 20.0 - static_cast<double>(i));
        EXPECT_EQ(numberAt(static_cast<std::size_t>(i) + 1), number) << "the cell knows its new number";
    }
}

TEST_F(RunContract, CellsOfSeveralSheetsKeepApartWhenRenumbered) {
    const std::vector<const char*> sheets{"[Book]7", "[Book]3", "[Book]9"};
    const std::vector<const char*> names{"c", "b", "a"};
    for (std::size_t i = 0; i < 3; ++i) {
        const double shown = 10.0 * static_cast<double>(i + 1);
        result({sheets[i], 4, 4}, names[i], [shown] { return shown; });
    }
    normal({sheets[1], 9, 9}, "z", 1000, 0.001);
    prepare(true);
    ASSERT_EQ(start(2), 0);
    run(2);
    const auto registry = QUORVA_EXPORT(getFieldInfo);
    EXPECT_EQ(registry(4, 4, 1), 3U) << "slots are in the order in which sheets were first met";
    EXPECT_EQ(registry(4, 4, 2), 2U);
    EXPECT_EQ(registry(4, 4, 3), 1U);
    EXPECT_EQ(registry(9, 9, 2), 4U);
    EXPECT_EQ(registry(4, 4, 0), 3U) << "any other slot reads the first sheet";
    EXPECT_EQ(registry(4, 4, 11), 3U);
    const Summary summary = end(0.1, 2);
    EXPECT_EQ(summary.names, (Texts{u"a", u"b", u"c", u"z"}));
    EXPECT_EQ(summary.sheets, (Texts{u"[Book]9", u"[Book]3", u"[Book]7", u"[Book]3"}));
    EXPECT_EQ(column(summary.intervals, 2)[0], 30);
    EXPECT_EQ(column(summary.intervals, 2)[1], 20);
    EXPECT_EQ(column(summary.intervals, 2)[2], 10);
}

TEST_F(RunContract, TheFieldTableOfEachKindIsReturned) {
    cell({sheet, 3, 1},
         [call = QUORVA_EXPORT(QUORVA_SimBeta4)] { return call("a", 2, 3, 10, 20, 2, 0.25, 0.75, 0, 0, 6); });
    cell({sheet, 4, 2}, [call = QUORVA_EXPORT(QUORVA_SimSVar)] { return call("b", 1, 4, 2, 5, 0, 0, 7); });
    cell({sheet, 5, 3}, [call = QUORVA_EXPORT(QUORVA_SimRes)] { return call("c", 42, 99, -1, 8); });
    cell({sheet, 6, 4}, [call = QUORVA_EXPORT(QUORVA_SimRes)] { return call("d", 43, 99, 1, 9); });
    cell({sheet, 7, 5}, [call = QUORVA_EXPORT(QUORVA_SimStat)] {
        XLOPER reference = localReference(5, 3);
        return call("e", &reference, 13, 10);
    });
    cell({sheet, 8, 6}, [call = QUORVA_EXPORT(QUORVA_SimStatMedian)] {
        XLOPER reference = localReference(3, 1);
        return call("f", &reference, 11);
    });
    prepare();
    ASSERT_EQ(start(1), 0);
    EXPECT_EQ((std::vector<int>{fields, distributions, scenarios, results, statistics}),
              (std::vector<int>{6, 1, 1, 2, 2}));
    run(1);
    const Summary summary = end(0.1, 1);
    using Row = std::vector<double>;
    EXPECT_EQ(row(summary.general, 1), (Row{1, 30, 3, 1, 6, 0, 2, 3, 10, 20, 14, 0, 0.25, 0.75}));
    EXPECT_EQ(row(summary.general, 2), (Row{2, 0, 4, 2, 7, 0, 1, 4, 2, 5, 2, 0, 0, 0}));
    EXPECT_EQ(row(summary.general, 3), (Row{3, 0, 5, 3, 8, 1, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(row(summary.general, 4), (Row{3, 0, 6, 4, 9, 0, 0, 0, 0, 0, 0, 0, 0, 0})) << "1 is not the host's true";
    EXPECT_EQ(row(summary.general, 5), (Row{4, 13, 7, 5, 10, 0, 5, 3, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(row(summary.general, 6), (Row{4, 10, 8, 6, 11, 0, 3, 1, 0, 0, 0, 0, 0, 0}));
}

TEST_F(RunContract, TheRegistryAcceptsCellsUpToItsLimits) {
    const auto enter = QUORVA_EXPORT(checkfieldentry);
    int column = 0, line = 64'999, slot = -5;
    init();
    enter(&column, &line, &slot, 1, u"S");
    EXPECT_EQ(moduleError().code, 0);
    line = 65'000;
    column = 3;
    enter(&column, &line, &slot, 1, u"Sheet of the cell");
    ReportedError error = moduleError();
    EXPECT_EQ(error.code, -15);
    EXPECT_EQ(std::make_pair(error.line, error.column), std::make_pair(65'000, 3));
    EXPECT_EQ(error.texts, Texts{u"Sheet of the cell"});

    init();
    line = 10;
    column = 256;
    enter(&column, &line, &slot, 1, u"S");
    EXPECT_EQ(moduleError().code, -15);

    // A row has 255 entries, yet column 255 is accepted: it shares its entry with the next row's first cell. Intended.
    init();
    QUORVA_EXPORT(setFieldInfo)(255, 10, 0, 77);
    EXPECT_EQ(QUORVA_EXPORT(getFieldInfo)(0, 11, 0), 77U);
    column = 0;
    line = 11;
    enter(&column, &line, &slot, 1, u"S");
    EXPECT_EQ(moduleError().code, -10);
    init();
    column = 255;
    line = 64'999;
    enter(&column, &line, &slot, 1, u"S");
    EXPECT_EQ(QUORVA_EXPORT(getFieldInfo)(255, 64'999, 0), QUORVA_EXPORT(getFieldInfo)(255, 64'999, 0));
}

TEST_F(RunContract, ACellRegisteredTwiceKeepsItsFirstNumber) {
    normal({sheet, 2, 2}, "first");
    result({"[Book]2", 2, 2}, "other sheet", [] { return 0.0; });
    init(false);
    recalculate();
    const ReportedError error = moduleError();
    EXPECT_EQ(error.code, -10) << "a single-sheet model has one grid for all sheets";
    EXPECT_EQ(error.texts, Texts{u"[Book]2"});
    EXPECT_EQ(numberAt(0), 1);
    EXPECT_EQ(init2(), -10);
}

TEST_F(RunContract, SheetsAreLookedUpByTheirIdentifier) {
    normal({"[Book]5", 0, 0}, "in");
    result({"[Book]6", 0, 0}, "out", [] { return 0.0; });
    init(true);
    recalculate();
    const auto find = QUORVA_EXPORT(getSheetId);
    int column = 4, line = 3, slot = -5;
    find(&column, &line, &slot, '6', u"named");
    EXPECT_EQ(slot, 2);
    find(&column, &line, &slot, '5', u"named");
    EXPECT_EQ(slot, 1);
    EXPECT_EQ(moduleError().code, 0);
    slot = -5;
    find(&column, &line, &slot, '7', u"unknown");
    EXPECT_EQ(slot, -5);
    const ReportedError error = moduleError();
    EXPECT_EQ(error.code, -16);
    EXPECT_EQ(std::make_pair(error.line, error.column), std::make_pair(3, 4));
    EXPECT_EQ(error.texts, Texts{u"unknown"});

    QUORVA_EXPORT(setFieldInfo)(0, 0, 11, 99);
    QUORVA_EXPORT(setFieldInfo)(0, 0, 0, 99);
    EXPECT_EQ(QUORVA_EXPORT(getFieldInfo)(0, 0, 1), 1U) << "slots outside 1..10 are not written";
    EXPECT_EQ(QUORVA_EXPORT(getFieldInfo)(0, 0, 2), 2U);

    init(false);
    find(&column, &line, &slot, '7', u"unknown");
    EXPECT_EQ(slot, 0) << "a single-sheet model has slot 0";
    EXPECT_EQ(moduleError().code, 0);
}

TEST_F(RunContract, APlainOneIsNotTrue) {
    normal({sheet, 0, 0}, "in");
    result({"[Book]2", 0, 0}, "out", [] { return 0.0; });
    int seed = 1, used = 0;
    QUORVA_EXPORT(Cpp_SimInit)(1, &seed, hostTrue, &used);
    recalculate();
    EXPECT_EQ(moduleError().code, -10) << "not a workbook model";

    cells.clear();
    smallModel();
    init();
    recalculate();
    std::vector<double> asymmetric{1, 0.5, 0.2, 1};
    Labels labels({u"in", u"nobody"});
    double limit = 0;
    EXPECT_EQ(QUORVA_EXPORT(Cpp_SimInit2)(1, 2, asymmetric.data(), labels.get(), 1, 1, 0.95, &limit, &limit, &limit,
                                          labels.get()),
              0)
        << "neither correlations nor limits are used";
    recalculate();
    EXPECT_EQ(start(1), 0);
}

TEST_F(RunContract, AGivenSeedIsUsedAndReported) {
    smallModel();
    int seed = 4711, used = 0, again = 0;
    QUORVA_EXPORT(Cpp_SimInit)(0, &seed, 0, &used);
    EXPECT_EQ(seed, 4711) << "the caller's seed is not written";
    EXPECT_GT(used, 0);
    const auto draws = [&](int from, HostBool given) {
        QUORVA_EXPORT(Cpp_SimInit)(0, &from, given, &again);
        recalculate();
        init2();
        recalculate();
        start(5);
        run(5);
        return storedValues(5);
    };
    const auto drawn = draws(4711, 0);
    const int reported = again;
    EXPECT_EQ(draws(reported, hostTrue), drawn) << "the reported seed reproduces the run";
    EXPECT_EQ(again, reported);
}

TEST_F(RunContract, AnErrorWhileRunningIsReportedByTheNextCallAndValuesStayNeutral) {
    smallModel();
    prepare();
    ASSERT_EQ(start(5), 0);
    ASSERT_EQ(step(), 0);
    normal({sheet, 30, 7}, "unknown", 5, 1);
    EXPECT_EQ(evaluate(2), 5.0) << "its default";
    EXPECT_EQ(evaluate(0), 0.0) << "every field shows its default now";
    EXPECT_EQ(evaluate(1), 0.0);
    const ReportedError error = moduleError();
    EXPECT_EQ(error.code, -11);
    EXPECT_EQ(std::make_pair(error.line, error.column), std::make_pair(30, 7));
    EXPECT_EQ(error.texts, Texts{u"[Book]1"});
    EXPECT_EQ(next(), -1);
    EXPECT_EQ(status(), 3);
}

TEST_F(RunContract, ASheetThatJoinsLaterIsNotListed) {
    smallModel();
    prepare(true);
    ASSERT_EQ(start(5), 0);
    ASSERT_EQ(step(), 0);
    statistic({"[Book]8", 1, 2}, "stranger", {"[Book]8", 0, 0}, 13);
    EXPECT_EQ(evaluate(2), 0.0);
    const ReportedError error = moduleError();
    EXPECT_EQ(error.code, -16);
    EXPECT_EQ(error.texts, Texts{u"[Book]8"});
}

TEST_F(RunContract, ExactlySixtyFourMillionCellsAreSimulated) {
    smallModel();
    prepare();
    EXPECT_EQ(start(32'000'001), -12);
    EXPECT_EQ(status(), 0);
    prepare();
    ASSERT_EQ(start(32'000'000), 0);
    run(2);
    EXPECT_EQ(storedAt(2), storedAt(1));
    EXPECT_NE(storedAt(1), 0.0);
}

}  // namespace
