#include "engine/field_registry.h"

#include <gtest/gtest.h>

using namespace quorva;

namespace {

/// An error with its first cell.
struct RecordedError {
    int code, line, column;
    std::u16string sheet;
};

class Registry : public testing::Test {
protected:
    void TearDown() override { run = RunState{}; }

    /// A model without fields.
    static void init(bool workbook = false) {
        run = RunState{};
        run.sheets.workbookModel = toHostBool(workbook);
        ASSERT_TRUE(run.sheets.grids.front().clear());
    }
    static RecordedError recorded() {
        const ErrorRecord& error = run.error;
        return {isTrue(error.flag) ? error.code : runerror::none, error.first.line, error.first.column,
                error.first.sheet};
    }
    static void enter(int row, int column, std::uint32_t sheet = 1, int* slot = nullptr) {
        ++run.fields.registered;
        int ignored = 0;
        checkfieldentry(&column, &row, slot ? slot : &ignored, sheet,
                        u"[B]S" + std::u16string(1, static_cast<char16_t>(u'0' + sheet % 10)));
    }
};

TEST_F(Registry, ACellMetTwiceIsAnErrorAndKeepsItsFirstNumber) {
    init();
    enter(4, 2);
    enter(9, 9);
    enter(4, 2);
    EXPECT_EQ(getFieldInfo(2, 4, 0), 1U);
    const RecordedError error = recorded();
    EXPECT_EQ(error.code, -10);
    EXPECT_EQ(error.line, 4);
    EXPECT_EQ(error.column, 2);
    EXPECT_EQ(error.sheet, u"[B]S1");
}

TEST_F(Registry, TenSheetsAreListedInTheOrderMetAndTheEleventhIsRefused) {
    init(true);
    int slot = 0;
    for (std::uint32_t sheet = 1; sheet <= 10; ++sheet) {
        enter(1, 1, 1000 - sheet, &slot);
        EXPECT_EQ(slot, static_cast<int>(sheet));
        EXPECT_EQ(getFieldInfo(1, 1, slot), sheet);
    }
    EXPECT_EQ(run.error.flag, hostFalse);
    slot = 77;
    enter(12, 34, 5, &slot);
    EXPECT_EQ(slot, 77);
    const RecordedError error = recorded();
    EXPECT_EQ(error.code, -16);
    EXPECT_EQ(error.line, 12);
    EXPECT_EQ(error.column, 34);
    EXPECT_EQ(error.sheet, u"[B]S5");
}

TEST_F(Registry, RowsEndAt65000AndColumnsAt256) {
    init();
    enter(64'999, 3);
    EXPECT_EQ(run.error.flag, hostFalse);
    EXPECT_EQ(getFieldInfo(3, 64'999, 0), 1U);
    enter(0, 255);
    EXPECT_EQ(run.error.flag, hostFalse);
    enter(65'000, 3);
    EXPECT_EQ(recorded().code, -15);
    EXPECT_EQ(recorded().line, 65'000);
    EXPECT_EQ(recorded().column, 3);
    EXPECT_EQ(recorded().sheet, u"[B]S1");
    run.error.flag = hostFalse;
    enter(3, 256);
    EXPECT_EQ(recorded().code, -15);
    EXPECT_EQ(recorded().line, 3);
    EXPECT_EQ(recorded().column, 256);
}

TEST_F(Registry, Column255SharesItsEntryWithTheNextRow) {
    init();
    enter(7, 255);
    EXPECT_EQ(getFieldInfo(0, 8, 0), 1U);
    enter(8, 0);
    EXPECT_EQ(recorded().code, -10);
}

TEST_F(Registry, TheVeryLastCellHasAnEntryOfItsOwn) {
    init();
    enter(64'999, 255);
    EXPECT_EQ(run.error.flag, hostFalse);
    EXPECT_EQ(getFieldInfo(255, 64'999, 0), 1U);
    EXPECT_EQ(getFieldInfo(254, 64'999, 0), 0U);
    enter(64'999, 255);
    EXPECT_EQ(recorded().code, -10);
}

TEST_F(Registry, NothingPastTheEndIsEverTouched) {
    init();
    for (const int wild : {-1, -2'147'483'647, 65'000, 2'147'483'647}) {
        setFieldInfo(0, wild, 0, 5);
        setFieldInfo(wild, 0, 0, 5);
        EXPECT_EQ(getFieldInfo(0, wild, 0), 0U);
        EXPECT_EQ(getFieldInfo(wild, 0, 0), 0U);
    }
}

TEST_F(Registry, ASingleSheetModelHasOneGridForAllSheets) {
    init();
    enter(4, 2, 1);
    enter(4, 2, 2);
    EXPECT_EQ(recorded().code, -10);
    EXPECT_EQ(recorded().sheet, u"[B]S2");
    EXPECT_EQ(run.sheets.inUse, 0) << "its sheets are not listed";
    for (const int slot : {-1, 0, 1, 2, 10, 11}) {
        EXPECT_EQ(getFieldInfo(2, 4, slot), 1U);
        setFieldInfo(9, 9, slot, static_cast<std::uint32_t>(slot + 20));
        EXPECT_EQ(getFieldInfo(9, 9, 0), static_cast<std::uint32_t>(slot + 20));
    }
}

TEST_F(Registry, ATakenCellOfAWorkbookStillTellsItsSlot) {
    init(true);
    enter(1, 1, 50);
    int slot = 77;
    enter(1, 1, 60, &slot);
    EXPECT_EQ(slot, 2);
    slot = 77;
    enter(1, 1, 60, &slot);
    EXPECT_EQ(slot, 2);
    EXPECT_EQ(recorded().code, -10);
    EXPECT_EQ(getFieldInfo(1, 1, 2), 2U);
}

TEST_F(Registry, ACellBeyondTheGridListsNoSheet) {
    init(true);
    int slot = 77;
    enter(65'000, 1, 50, &slot);
    enter(1, 256, 50, &slot);
    EXPECT_EQ(recorded().code, -15);
    EXPECT_EQ(slot, 77);
    EXPECT_EQ(run.sheets.inUse, 0);
}

TEST_F(Registry, TheGridOfTheFirstSheetIsTheOneMadeAtTheStart) {
    init(true);
    setFieldInfo(1, 1, 1, 5);
    enter(1, 1, 50);
    EXPECT_EQ(recorded().code, -10) << "not emptied when its sheet is met";
    EXPECT_EQ(getFieldInfo(1, 1, 1), 5U);
}

TEST_F(Registry, SlotsOutsideTheListReadTheFirstGridAndWriteNothing) {
    init(true);
    enter(1, 1, 50);
    EXPECT_EQ(getFieldInfo(1, 1, 0), 1U);
    EXPECT_EQ(getFieldInfo(1, 1, 11), 1U);
    setFieldInfo(1, 1, 0, 9);
    setFieldInfo(1, 1, 11, 9);
    EXPECT_EQ(getFieldInfo(1, 1, 1), 1U);
    setFieldInfo(1, 1, 1, 9);
    EXPECT_EQ(getFieldInfo(1, 1, 1), 9U);
    EXPECT_EQ(getFieldInfo(1, 1, 7), 0U) << "a slot whose grid does not exist";
}

TEST_F(Registry, SheetLookUp) {
    int column = 3;
    int row = 2;
    int slot = 5;
    init();
    getSheetId(&column, &row, &slot, 50, u"S");
    EXPECT_EQ(slot, 0) << "single-sheet models have no slots";
    init(true);
    enter(1, 1, 50);
    enter(1, 1, 60);
    getSheetId(&column, &row, &slot, 60, u"S");
    EXPECT_EQ(slot, 2);
    getSheetId(&column, &row, &slot, 70, u"S");
    EXPECT_EQ(slot, 2) << "left as it was";
    EXPECT_EQ(recorded().code, -16);
    EXPECT_EQ(recorded().line, 2);
    EXPECT_EQ(recorded().column, 3);
}

}  // namespace
