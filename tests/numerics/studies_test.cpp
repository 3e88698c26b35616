#include "numerics/studies.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "quorva/wire_format.h"

namespace quorva {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr int indices = 23;

struct Process {
    int n = 100;
    double LSL = -6;
    double USL = 7;
    double target = 0.5;
    double stdev = 1;
    double mean = 0.25;

    /// Index `which`, in place of a value that the call has to overwrite.
    double operator()(int which, double confidence = 0.95) const {
        double result = 4242;
        EXPECT_EQ(calcPcapDescOne(n, LSL, USL, target, confidence, stdev, mean, result, which), 0);
        return result;
    }
};

bool usesTarget(int index) { return index == 9 || index == 10 || index == 13 || index == 14; }

TEST(Capability, EveryIndexMatchesItsDefinition) {
    std::ifstream file(QUORVA_SOURCE_DIR "/tests/numerics/reference/capability.txt");
    int rows = 0;
    for (std::string line; std::getline(file, line); ++rows) {
        std::istringstream words(line);
        const auto next = [&words] {
            std::string word;
            words >> word;
            return word == "-" ? MissingValue : std::strtod(word.c_str(), nullptr);
        };
        Process process;
        process.n = static_cast<int>(next());
        for (double* input : {&process.LSL, &process.USL, &process.target, &process.stdev, &process.mean}) {
            *input = next();
        }
        for (int index = 1; index <= indices; ++index) {
            const double expected = next();
            const double found = process(index);
            const bool exact = expected == MissingValue || std::isinf(expected);
            EXPECT_LE(found == expected ? 0 : std::abs(found - expected), exact ? 0 : 1e-14 * std::abs(expected))
                << "process " << rows + 1 << ", index " << index << ": " << found << " for " << expected;
        }
    }
    EXPECT_EQ(rows, 14);
}

TEST(Capability, TheConfidenceLevelChangesNoIndex) {
    const Process process;
    for (int index = 1; index <= indices; ++index) {
        for (const double confidence : {0.0, 0.5, 1.0, -3.0, nan}) {
            EXPECT_EQ(process(index, confidence), process(index)) << index;
        }
    }
}

TEST(Capability, TheNumberOfValuesEntersBoylesIndexAlone) {
    Process few;
    few.n = 3;
    for (int index = 1; index <= indices; ++index) {
        EXPECT_EQ(few(index) == Process()(index), index != 10) << index;
    }
}

TEST(Capability, WithoutASpreadThereIsNoIndex) {
    for (const double stdev : {0.0, -1.0, nan, infinity, MissingValue}) {
        Process process;
        process.stdev = stdev;
        for (int index = 1; index <= indices; ++index) {
            EXPECT_EQ(process(index), MissingValue) << index << " with deviation " << stdev;
        }
    }
}

TEST(Capability, WithoutATargetOnlyTheIndicesAboutItAreMissing) {
    Process process;
    process.target = MissingValue;
    for (int index = 1; index <= indices; ++index) {
        EXPECT_EQ(process(index), usesTarget(index) ? MissingValue : Process()(index)) << index;
    }
}

TEST(Capability, AnUnknownIndexFailsAndIsMissing) {
    for (const int index : {0, -1, 24, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        double result = 4242;
        EXPECT_LT(calcPcapDescOne(100, -6, 6, 0, 0.95, 1, 0, result, index), 0) << index;
        EXPECT_EQ(result, MissingValue) << index;
    }
}

}  // namespace
}  // namespace quorva
