// The model of the module's golden run as a workbook: the embedded host must lead the module to the same values as the
// scripted host did.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "quorva/front_end.h"
#include "workbook/recalculation/book.h"

namespace quorva::workbook {
namespace {

constexpr int iterations = 40;
constexpr int fieldCount = 14;

const char* const modelLines = R"(
A1: =QUORVA_SimNormal("price",20,3,0,0,0,FALSE,0,1)
A2: =QUORVA_SimLogNormal2("volume",100,15,1,60,150,FALSE,0,1)
A3: =QUORVA_SimTriangular("cost",5,8,14,2,0.1,0.9,TRUE,9,0)
A4: =QUORVA_SimPoisson("failures",2.5,0,0,0,FALSE,0,1)
B1: 1
B2: 2
B3: 2
B4: 7
A5: =QUORVA_SimEmpiricUniform("observed",B1:B4,FALSE,0,1)
A6: =QUORVA_SimSVar("discount",0,8,1,2,FALSE,0,1)
A7: =QUORVA_SimSVar("staff",1,4,2,1,FALSE,0,1)
A8: =QUORVA_SimRes("profit",(A1-A3)*A2-50*A4-10*A6,0,TRUE,1)
A9: =QUORVA_SimRes("share",A5/(A7+A2),0,FALSE,1)
A10: =QUORVA_SimStatMean("mean of profit",A8,1)
A11: =QUORVA_SimStatMedian("median of cost",A3,1)
A12: =QUORVA_SimSPCCpk("cpk of price",A1,1)
A13: =QUORVA_SimTheoVariance("theory of volume",A2,1)
A14: =QUORVA_SimStatGSD("a spread of volume",A2,1)
)";

/// The numbers of a table of the golden run.
std::vector<double> golden(const std::string& title) {
    std::ifstream file(QUORVA_SOURCE_DIR "/tests/module/golden/run.txt");
    std::vector<double> numbers;
    bool inside = false;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#')) {
            inside = line == "# " + title;
        } else if (inside) {
            numbers.push_back(std::strtod(line.c_str(), nullptr));
        }
    }
    return numbers;
}

class Labels {
public:
    explicit Labels(const std::vector<std::u16string>& texts)
        : array_(SafeArrayCreateVector(hostStringVariant, 0, static_cast<std::uint32_t>(texts.size()))) {
        void* data = nullptr;
        SafeArrayAccessData(array_, &data);
        for (std::size_t i = 0; i < texts.size(); ++i) {
            static_cast<HostString*>(data)[i] = SysAllocString(texts[i].c_str());
        }
        SafeArrayUnaccessData(array_);
    }
    Labels(const Labels&) = delete;
    Labels& operator=(const Labels&) = delete;
    ~Labels() { SafeArrayDestroy(array_); }
    HostStringArray** address() { return &array_; }

private:
    HostStringArray* array_;
};

void expectSame(const std::vector<double>& found, const std::vector<double>& expected, const char* what) {
    ASSERT_EQ(found.size(), expected.size()) << what;
    for (std::size_t i = 0; i < found.size(); ++i) {
        const bool same = found[i] == expected[i] ||
                          std::fabs(found[i] - expected[i]) <= 1e-12 * std::fabs(expected[i]) ||
                          (std::isnan(found[i]) && std::isnan(expected[i]));
        ASSERT_TRUE(same) << what << ", number " << i << ": " << found[i] << " instead of " << expected[i];
    }
}

TEST(GoldenModel, AWorkbookLeadsTheModuleToTheValuesOfTheScriptedHost) {
    Book book = Book::fromText(modelLines);
    book.attach();
    book.recalculate();
    int seed = 20260, drawn = 0;
    ASSERT_EQ(Cpp_SimInit(-1, &seed, -1, &drawn), 0);
    book.recalculate();
    Labels correlated({u"price", u"volume", u"cost"});
    Labels limited({u"price", u"cost"});
    double correlations[] = {1, -0.5, 0.25, -0.5, 1, 0, 0.25, 0, 1};
    double lower[] = {11, 4}, upper[] = {29, 14}, target[] = {20, 9};
    ASSERT_EQ(
        Cpp_SimInit2(-1, 3, correlations, correlated.address(), -1, 2, 0.95, lower, upper, target, limited.address()),
        0);
    book.recalculate();
    int counts[5] = {};
    ASSERT_EQ(Cpp_SimBegin(iterations, iterations, -1, 0, 3, 0.975, 0, 1, 50, &counts[0], &counts[1], &counts[2],
                           &counts[3], &counts[4]),
              0);
    ASSERT_EQ(counts[0], fieldCount);
    for (int k = 1; k <= iterations; ++k) {
        ASSERT_EQ(Cpp_SimNext(), 0);
        book.recalculate();
    }
    std::vector<double> cells;
    for (int row = 0; row < fieldCount; ++row) {
        cells.push_back(book.value({0, row, 0}).number);
    }
    expectSame(cells, golden("cells after the last iteration"), "cells");
    std::vector<double> values(static_cast<std::size_t>(iterations) * fieldCount);
    Cpp_GetSimMat(iterations, fieldCount, values.data());
    expectSame(values, golden("all values, 40 x 14"), "values");
    Cpp_SimReset(&seed, -1, &drawn);
}

TEST(GoldenModel, AReferenceToAnotherSheetArrivesAsOneAndStaysUnresolved) {
    Book book = Book::fromText(
        "A1: =QUORVA_SimNormal(\"x\",0,1,0,0,0,FALSE,0,1)\n"
        "A2: =QUORVA_SimRes(\"y\",A1,0,FALSE,1)\n"
        "Other!B3: =QUORVA_SimNormal(\"z\",5,1,0,0,0,FALSE,0,1)\n"
        "A4: =QUORVA_SimStatMean(\"elsewhere\",Other!B3,1)\n"
        "A5: =QUORVA_SimStatMean(\"here\",A2,1)\n");
    book.attach();
    book.recalculate();
    int seed = 1, drawn = 0;
    ASSERT_EQ(Cpp_SimInit(-1, &seed, -1, &drawn), 0);
    book.recalculate();
    ASSERT_EQ(Cpp_SimInit2(0, 0, nullptr, nullptr, 0, 0, 0.95, nullptr, nullptr, nullptr, nullptr), 0);
    book.recalculate();
    int counts[5] = {};
    ASSERT_EQ(Cpp_SimBegin(1, 0, 0, 0, 3, 0.95, -1, 1, 50, &counts[0], &counts[1], &counts[2], &counts[3], &counts[4]),
              0);
    ASSERT_EQ(counts[0], 5);
    ASSERT_EQ(Cpp_SimNext(), 0);
    book.recalculate();
    constexpr int n = 5;
    std::vector<double> general(n * 14), intervals(n * 5), convergence(4);
    std::vector<HostString> names(2 * n), monitored(2);
    int last = 0;
    Cpp_SimEnd(0.05, 1, general.data(), names.data(), convergence.data(), monitored.data(), &last, intervals.data());
    for (HostString text : names) {
        SysFreeString(text);
    }
    // In name order: elsewhere, here, x, y, z. Columns 7 to 9: row, column and sheet of the described cell.
    const auto at = [&](int field, int column) { return general[(column - 1) * n + field - 1]; };
    EXPECT_EQ(at(1, 7), 0);
    EXPECT_EQ(at(1, 8), 0);
    EXPECT_EQ(at(1, 9), 0);
    EXPECT_EQ(at(2, 7), 1);
    EXPECT_EQ(at(2, 8), 0);
    EXPECT_EQ(at(2, 9), 1);
    Cpp_SimReset(&seed, -1, &drawn);
}

}  // namespace
}  // namespace quorva::workbook
