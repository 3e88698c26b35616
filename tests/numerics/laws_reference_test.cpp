// The laws against tables made by independent programs (reference/laws.py, reference/large_laws.py).
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "numerics/core.h"
#include "numerics/laws.h"

namespace quorva {
namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

struct Row {
    std::string text;
    std::vector<double> fields;

    int law() const { return static_cast<int>(fields[0]); }
    double p(int i) const { return fields[static_cast<std::size_t>(i)]; }
    double input() const { return fields[5]; }
    double expected() const { return fields[6]; }
    double sensitivity() const { return fields[7]; }
    bool discrete() const {
        const int id = law();
        return (id >= 2 && id <= 4) || id == 18 || id == 29 || id == 32;
    }
    /// A shape, degree of freedom or count above 100.
    bool large() const {
        const bool both = law() == 1 || law() == 7 || law() == 30;
        return law() != 14 && law() != 20 && (std::abs(p(1)) > 100 || (both && std::abs(p(2)) > 100));
    }
};

std::vector<Row> table(const std::string& name) {
    std::ifstream file(std::string(QUORVA_SOURCE_DIR) + "/tests/numerics/reference/" + name);
    std::vector<Row> rows;
    for (std::string line; std::getline(file, line);) {
        Row row{line, {}};
        std::istringstream words(line);
        for (std::string word; words >> word;) {
            row.fields.push_back(std::strtod(word.c_str(), nullptr));
        }
        rows.push_back(row);
    }
    return rows;
}

/// The worst error of each law, for the report.
class Worst {
public:
    void see(const Row& row, double error) {
        auto& entry = rows_[row.law()];
        if (!(error <= entry.first)) {
            entry = {error, row.text};
        }
    }

    void report(const char* what) const {
        for (const auto& [law, entry] : rows_) {
            std::printf("law %2d: worst %s %10.3g epsilon at %s\n", law, what, entry.first / epsilon,
                        entry.second.c_str());
        }
    }

private:
    std::map<int, std::pair<double, std::string>> rows_;
};

double relativeError(double value, double expected) {
    return value == expected ? 0 : std::abs(value - expected) / std::abs(expected);
}

/// Distribution functions or quantiles: ordinary laws, then laws with huge parameters.
std::vector<Row> tables(const std::string& what) {
    auto rows = table("laws_" + what + ".txt");
    const auto large = table("large_laws_" + what + ".txt");
    EXPECT_GT(rows.size(), 4000u);
    EXPECT_GT(large.size(), 250u);
    rows.insert(rows.end(), large.begin(), large.end());
    return rows;
}

TEST(LawsReference, DistributionFunctions) {
    const auto rows = tables("cdf");
    Worst worst;
    for (const auto& row : rows) {
        const double value = CDFFunction(row.law() - 1, row.input(), row.p(1), row.p(2), row.p(3), row.p(4));
        const double error = relativeError(value, row.expected());
        worst.see(row, error);
        EXPECT_LE(error, row.large() ? 1e-10 : 1e-12) << row.text << " got " << value;
    }
    worst.report("F");
}

/// Quantiles as a first draw gets them, from the laws, and as a long run gets them, out of tables.
class LawsReferenceQuantiles : public testing::TestWithParam<bool> {
protected:
    LawsReferenceQuantiles() { useQuantileTables(GetParam()); }
    ~LawsReferenceQuantiles() override { useQuantileTables(true); }
};

/// More draws than a law needs to be given a table; rows of one law and shape follow each other.
void drawOften(const Row& row) {
    for (int i = 0; i < 4100; ++i) {
        InvCDFFunction(row.law() - 1, 0.375, row.p(1), row.p(2), row.p(3), row.p(4));
    }
}

TEST_P(LawsReferenceQuantiles, AreWithinTheirAccuracy) {
    const auto rows = tables("quantile");
    Worst worst;
    std::vector<double> drawn;
    for (const auto& row : rows) {
        const std::vector<double> lawAndParameters(row.fields.begin(), row.fields.begin() + 5);
        if (GetParam() && lawAndParameters != drawn) {
            drawOften(row);
            drawn = lawAndParameters;
        }
        const double value = InvCDFFunction(row.law() - 1, row.input(), row.p(1), row.p(2), row.p(3), row.p(4));
        if (row.discrete()) {
            EXPECT_EQ(value, row.expected()) << row.text;
            continue;
        }
        const double difference = std::abs(value - row.expected());
        const double unit = std::nextafter(std::abs(row.expected()), 1e308) - std::abs(row.expected());
        if (value == row.expected() || difference <= 4 * unit) {
            continue;
        }
        const double error = relativeError(value, row.expected()) * row.sensitivity();
        worst.see(row, error);
        EXPECT_LE(error, 1e-11) << row.text << " got " << value;
    }
    worst.report("F(Q(u))");
}

INSTANTIATE_TEST_SUITE_P(Tables, LawsReferenceQuantiles, testing::Bool(),
                         [](const auto& given) { return given.param ? "On" : "Off"; });

/// Within 1e-15 or two units in the last place.
bool isExact(double value, double expected) {
    const double unit = std::nextafter(std::abs(expected), 1e308) - std::abs(expected);
    return value == expected || relativeError(value, expected) <= 1e-15 || std::abs(value - expected) <= 2 * unit;
}

TEST(CoreReference, NormalFunctions) {
    std::ifstream file(std::string(QUORVA_SOURCE_DIR) + "/tests/numerics/reference/normal.txt");
    std::string what;
    std::string input;
    std::string expected;
    std::map<std::string, double> worst;
    int rows = 0;
    while (file >> what >> input >> expected) {
        const double at = std::strtod(input.c_str(), nullptr);
        const double exact = std::strtod(expected.c_str(), nullptr);
        const double value = what == "cdf" ? CDFNormalStd(at) : InvCDFNormalStd(at);
        EXPECT_TRUE(isExact(value, exact)) << what << " " << input << " got " << value << ", error "
                                           << relativeError(value, exact) / epsilon << " epsilon";
        worst[what] = std::max(worst[what], relativeError(value, exact));
        ++rows;
    }
    EXPECT_GT(rows, 700);
    for (const auto& [name, error] : worst) {
        std::printf("normal %s: worst %.3g epsilon\n", name.c_str(), error / epsilon);
    }
}

TEST(CoreReference, StudentQuantile) {
    double worst = 0;
    for (const auto& row : tables("quantile")) {
        if (row.law() == 19) {
            const double value = InvCDFStudent(row.input(), row.p(1));
            EXPECT_TRUE(isExact(value, row.expected())) << row.text << " got " << value;
            worst = std::max(worst, relativeError(value, row.expected()));
        }
    }
    std::printf("Student quantile: worst %.3g epsilon\n", worst / epsilon);
}

}  // namespace
}  // namespace quorva
