// Workbooks as models of the module: registration, arguments by type text, references, and whole runs.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "quorva/front_end.h"
#include "quorva/host_value.h"
#include "workbook/recalculation/book.h"

namespace quorva::workbook {
namespace {

constexpr HostBool yes = -1;
constexpr HostBool no = 0;

struct ModelRun {
    explicit ModelRun(const std::string& lines) : book(Book::fromText(lines)) {
        book.attach();
        book.recalculate();
    }
    ~ModelRun() {
        int seed = 1;
        int drawn = 0;
        Cpp_SimReset(&seed, yes, &drawn);
    }

    double number(const std::string& cell) const {
        const auto range = book.resolve(cell);
        const CellValue value = book.value({range->sheet, range->firstRow, range->firstColumn});
        EXPECT_EQ(value.type, CellValue::Type::Number) << cell << " is " << value.text;
        return value.number;
    }

    /// The whole of a run up to its last iteration; the code of the first call that failed, else 0.
    int simulate(int iterations) {
        int seed = 4711;
        int drawn = 0;
        int code = Cpp_SimInit(yes, &seed, yes, &drawn);
        if (code != 0) {
            return code;
        }
        book.recalculate();
        code = Cpp_SimInit2(no, 0, nullptr, nullptr, no, 0, 0.95, nullptr, nullptr, nullptr, nullptr);
        if (code != 0) {
            return code;
        }
        book.recalculate();
        code = Cpp_SimBegin(iterations, iterations, no, 100, 3, 0.95, yes, 1, 0.5, &fields, &kinds[0], &kinds[1],
                            &kinds[2], &kinds[3]);
        for (int i = 0; i < iterations && code == 0; ++i) {
            code = Cpp_SimNext();
            if (code == 0) {
                book.recalculate();
                sum += number("A3");
            }
        }
        return code;
    }

    Book book;
    int fields = 0;
    std::array<int, 4> kinds{};
    double sum = 0;
};

TEST(ModuleModel, GivesPlainValuesOutsideARun) {
    const ModelRun run(
        "A1: =QUORVA_SimNormal(\"x\",100,15,0,0,0,FALSE,0,1)\n"
        "A2: =QUORVA_SimNormal(\"y\",100,15,0,0,0,TRUE,7,1)*2\n"
        "A3: =IF(A1>50,QUORVA_SimRes(\"sum\",A1+A2,0,FALSE,1),0)\n"
        "B1: 1\nB2: 2\nB3: 6\n"
        "A4: =QUORVA_SimEmpiricUniform(\"list\",B1:B3,FALSE,0,1)\n");
    EXPECT_EQ(run.number("A1"), 100);
    EXPECT_EQ(run.number("A2"), 14);
    EXPECT_EQ(run.number("A3"), 114);
    EXPECT_EQ(run.number("A4"), 3);
    EXPECT_EQ(run.book.modelCells().size(), 4u);
}

TEST(ModuleModel, RunsASimulationWithTheMeanOfItsLaws) {
    ModelRun run(
        "A1: =QUORVA_SimNormal(\"x\",100,15,0,0,0,FALSE,0,1)\n"
        "A2: =_xll.QUORVA_SimUniform(\"y\",0,10,0,0,0,FALSE,0,1)\n"
        "Sheet2!A1: =QUORVA_SimExponential(\"z\",0.5,0,0,0,FALSE,0,1)\n"
        "A3: =QUORVA_SimRes(\"sum\",A1+A2+Sheet2!A1*0,0,FALSE,1)\n"
        "A5: =QUORVA_SimStatMean(\"mean\",A3,1)\n");
    const int iterations = 2000;
    ASSERT_EQ(run.simulate(iterations), 0);
    EXPECT_EQ(run.fields, 5);
    // Latin hypercube: the mean is far nearer than the standard error of plain sampling.
    EXPECT_NEAR(run.sum / iterations, 105, 0.5);
    EXPECT_NEAR(run.number("A5"), run.sum / iterations, 1e-9);
}

TEST(ModuleModel, CallsOnlyTheBranchThatIsChosen) {
    ModelRun run(
        "A1: =QUORVA_SimNormal(\"x\",0,1,0,0,0,FALSE,0,1)\n"
        "A3: =QUORVA_SimRes(\"sum\",A1,0,FALSE,1)\n"
        "A4: =IF(A1>1000,QUORVA_SimNormal(\"never\",1,1,0,0,0,FALSE,0,1),5)\n");
    ASSERT_EQ(run.simulate(50), 0);
    EXPECT_EQ(run.fields, 2);
    EXPECT_EQ(run.number("A4"), 5);
}

TEST(ModuleModel, ReportsTwoModelFunctionsInOneCell) {
    ModelRun run(
        "A1: =QUORVA_SimNormal(\"x\",0,1,0,0,0,FALSE,0,1)+QUORVA_SimNormal(\"y\",0,1,0,0,0,FALSE,0,1)\n"
        "A3: =QUORVA_SimRes(\"sum\",A1,0,FALSE,1)\n");
    EXPECT_NE(run.simulate(5), 0);
}

TEST(ModuleModel, PassesAnArgumentThatIsNoNumberAsAnErrorOfTheCell) {
    ModelRun run("A1: \"text\"\nA2: =QUORVA_SimNormal(\"x\",A1,1,0,0,0,FALSE,0,1)\n");
    EXPECT_EQ(run.book.value({0, 1, 0}).text, "#VALUE!");
}

TEST(ModuleModel, AnswersTheSheetsOfABook) {
    ModelRun run("A1: 1\nSheet2!A1: =QUORVA_SimNormal(\"x\",0,1,0,0,0,FALSE,0,1)\n");
    char name[] = "\x06Sheet2";
    XLOPER text{};
    text.type = hosttype::text;
    text.value.text = name;
    XLOPER* argument = &text;
    XLOPER sheet{};
    ASSERT_EQ(Excel4v(hostfunction::sheetId, &sheet, 1, &argument), 0);
    EXPECT_EQ(sheet.type, hosttype::reference);
    XLOPER* reference = &sheet;
    XLOPER answer{};
    ASSERT_EQ(Excel4v(hostfunction::sheetName, &answer, 1, &reference), 0);
    ASSERT_EQ(answer.type, hosttype::text);
    EXPECT_EQ(std::string(answer.value.text + 1, static_cast<unsigned char>(*answer.value.text)), "[Book.xlsx]Sheet2");
    XLOPER* released = &answer;
    EXPECT_EQ(Excel4v(hostfunction::free, nullptr, 1, &released), 0);
    XLOPER caller{};
    EXPECT_EQ(Excel4v(hostfunction::caller, &caller, 0, nullptr), 0);
    EXPECT_EQ(caller.type, hosttype::error);
}

}  // namespace
}  // namespace quorva::workbook
