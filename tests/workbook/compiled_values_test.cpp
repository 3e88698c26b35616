// Where compiled formulas could differ from evaluated ones: each value once more with the live part.
#include <gtest/gtest.h>
#include <malloc.h>

#include <cmath>
#include <random>

#include "random_model.h"
#include "workbook/recalculation/book.h"
#include "workbook/recalculation/slot_runs.h"

namespace quorva::workbook {
namespace {

CellValue valueOf(const Book& book, std::string_view cell) {
    const auto range = book.resolve(cell);
    return book.value({range->sheet, range->firstRow, range->firstColumn});
}

/// A1 is 1, A2 is -1 and A3 is 0, computed anew at every recalculation; B1 is TRUE, B2 empty, B3 a text.
CellValue live(const std::string& formula, bool date1904 = false) {
    Book book = Book::fromText(std::string(date1904 ? "date1904\n" : "") +
                               "A1: =1+RAND()*0\nA2: =-1+RAND()*0\nA3: =RAND()*0\n"
                               "B1: TRUE\nB3: \"text\"\nF1: =" +
                               formula + "\n");
    book.recalculate();
    return valueOf(book, "F1");
}

TEST(CompiledValues, AreErrorsWhereAStepOverflows) {
    EXPECT_EQ(live("MIN(A1*1E308*10,5)").text, "#NUM!");
    EXPECT_EQ(live("MAX(A2*1E308*10,5)").text, "#NUM!");
    EXPECT_EQ(live("SUM(A1*1E308*10,A2*1E308*10)").text, "#NUM!");
}

TEST(CompiledValues, AreErrorsWhereAFunctionRefusesBooleans) {
    EXPECT_EQ(live("GESTEP(A1>0)").text, "#VALUE!");
    EXPECT_EQ(live("GESTEP(B1,A1)").text, "#VALUE!");
    EXPECT_EQ(live("GESTEP(IF(A1>0,A1>0,A1<0))").text, "#VALUE!");
    EXPECT_EQ(live("GESTEP(A1)").number, 1);
}

TEST(CompiledValues, CountDaysFromTheBooksFirstDay) {
    EXPECT_EQ(live("YEAR(A1*366)", true).number, 1905);
    EXPECT_EQ(live("YEAR(A1*366)", false).number, 1900);
}

TEST(CompiledValues, LeaveOutWhatIsNoNumberInTheCellsThatIfRefersTo) {
    EXPECT_EQ(live("SUM(IF(A1>0,B1,A2),2)").number, 2);
    EXPECT_EQ(live("MIN(IF(A1>0,B2,A2),7)").number, 7);
    EXPECT_EQ(live("IF(AND(IF(A1>0,B2,A2),A1>0),1,0)").number, 1);
}

TEST(CompiledValues, RefuseSeveralAreasWhereOneIsMeant) {
    EXPECT_EQ(live("COUNTIF((A1:A2,A3),\">=0\")+A1").text, "#VALUE!");
}

TEST(CompiledValues, AreExactWithTheLongestArgumentLists) {
    std::string lines;
    std::string first = "=SUM(SUM(";
    std::string second = "SUM(";
    for (int i = 1; i <= 255; ++i) {
        const std::string row = std::to_string(i);
        lines += "A" + row + ": =" + row + "+RAND()*0\nB" + row + ": =1000*A" + row + "\n";
        first += (i > 1 ? "," : "") + std::string("A") + row + "*1";
        second += (i > 1 ? "," : "") + std::string("B") + row + "*1";
    }
    lines += "C1: " + first + ")," + second + "))\nC2: =A1*1+7\n";
    lines += "C3: =SUM(SUM(A1:A255),SUM(B1:B255))\n";
    Book book = Book::fromText(lines);
    for (int pass = 0; pass < 3; ++pass) {
        book.recalculate();
        EXPECT_EQ(valueOf(book, "C1").number, 1001 * 255 * 128);
        EXPECT_EQ(valueOf(book, "C2").number, 8);
        EXPECT_EQ(valueOf(book, "C3").number, 1001 * 255 * 128);
    }
}

TEST(CompiledValues, DrawOnceWhenTheEvaluatorTakesOver) {
    // Drawn again after the compiled square root failed, half of the errors would become numbers.
    constexpr int passes = 2000;
    Book book = Book::fromText("A1: =SQRT(RAND()-0.5)\n");
    book.seed(1);
    int errors = 0;
    for (int pass = 0; pass < passes; ++pass) {
        book.recalculate();
        errors += valueOf(book, "A1").type == CellValue::Type::Error ? 1 : 0;
    }
    EXPECT_NEAR(errors, passes / 2.0, 5 * std::sqrt(passes / 4.0));  // fails by chance once in a million
}

TEST(CompiledValues, OfCellsFoundByNameComeAfterWhatTheyDependOn) {
    Book book = Book::fromText("A1: =INDIRECT(\"B1\")\nB1: =C1+1\nC1: =RAND()\n");
    for (int pass = 0; pass < 3; ++pass) {
        book.recalculate();
        EXPECT_EQ(valueOf(book, "A1").number, valueOf(book, "C1").number + 1);
    }
}

TEST(SlotRuns, HoldARectangleOfARegularSheetAsOne) {
    SlotPacker packer;
    std::vector<Slot> slots;
    for (Slot row = 0; row < 1000; ++row) {
        for (Slot column = 3; column < 6; ++column) {
            slots.push_back(row * 10 + column);
            packer.add(slots.back());
        }
    }
    EXPECT_EQ(packer.size(), slots.size());
    EXPECT_EQ(packer.first(), 3);
    EXPECT_EQ(packer.take().size(), 1u);
    for (Slot row = 0; row < 1000; ++row) {
        packer.add(7 * row);
    }
    EXPECT_EQ(packer.take().size(), 1u);
}

TEST(SlotRuns, GiveBackAnySlotsInOrder) {
    std::mt19937 random(7);
    for (int round = 0; round < 500; ++round) {
        std::vector<Slot> slots;
        const auto width = static_cast<Slot>(1 + random() % 4);
        for (Slot next = 0; slots.size() < random() % 60;) {
            next += static_cast<Slot>(random() % 5 == 0 ? random() % 9 : 1 + width);
            for (Slot i = 0; i < width; ++i) {
                slots.push_back(next + i);
            }
        }
        SlotPacker packer;
        for (const Slot slot : slots) {
            packer.add(slot);
        }
        const auto runs = packer.take();
        std::vector<Slot> walked;
        forEachOf(runs, [&](std::ptrdiff_t slot) {
            walked.push_back(static_cast<Slot>(slot));
            return true;
        });
        EXPECT_EQ(walked, slots);
        walked.clear();
        for (SlotStretches at(runs); at.left() > 0;) {
            const auto length = static_cast<Slot>(1 + random() % static_cast<unsigned>(at.left()));
            for (Slot i = 0; i < length; ++i) {
                walked.push_back(at.slot() + i * at.stride());
            }
            at.advance(length);
        }
        EXPECT_EQ(walked, slots);
    }
}

/// Bytes in use for a recalculated column of running totals over a live column.
double bytesOfTotals(int rows) {
    const auto inUse = [] {
        const struct mallinfo2 now = mallinfo2();
        return static_cast<double>(now.uordblks) + static_cast<double>(now.hblkhd);
    };
    std::string lines;
    for (int row = 1; row <= rows; ++row) {
        const std::string number = std::to_string(row);
        lines += "A" + number + ": =RAND()\nB" + number + ": =SUM(A$1:A" + number + ")\n";
    }
    const double before = inUse();
    Book book = Book::fromText(lines);
    book.recalculate();
    return inUse() - before;
}

TEST(CompiledValues, OfRunningTotalsTakeRoomForTheFormulasAndNotForTheirCells) {
    const double small = bytesOfTotals(1000);
    if (small == 0) {
        GTEST_SKIP() << "the memory allocator does not tell what is in use";
    }
    // Lists of cells would take four times the room for twice the rows, and 32 MB.
    const double large = bytesOfTotals(2000);
    EXPECT_LT(large, 2.5 * small);
    EXPECT_LT(large, 8e6);
}

}  // namespace
}  // namespace quorva::workbook
