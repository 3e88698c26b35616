// What the module registers when the host loads it, and how the model functions change between calculating when needed
// and always calculating.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "module_under_test.h"
#include "quorva/add_in.h"
#include "quorva/front_end.h"

namespace {

using namespace quorva;
using namespace quorva::testing;
using ::testing::EndsWith;
using ::testing::Not;

constexpr std::size_t modelFunctions = 40;
constexpr std::size_t statisticFunctions = 59;
constexpr int plainRegister = 149;
constexpr int internationalRegister = 8341;
constexpr int plainUnregister = 201;
constexpr int internationalUnregister = 8393;

using Row = std::vector<std::string>;

std::vector<Row> expectedRows() {
    std::ifstream file(QUORVA_SOURCE_DIR "/tests/module/registrations.txt");
    std::vector<Row> rows;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#')) {
            continue;
        }
        Row row;
        for (std::size_t from = 0, end = 0; end != std::string::npos; from = end + 1) {
            end = line.find('|', from);
            row.push_back(line.substr(from, end == std::string::npos ? end : end - from));
        }
        rows.push_back(row);
    }
    return rows;
}

std::vector<Row> expectedModelRows() {
    auto rows = expectedRows();
    rows.resize(modelFunctions);
    return rows;
}

/// The texts of a registration; the module's path comes before them.
Row textsOf(const HostCall& call) {
    Row texts;
    for (std::size_t i = 1; i < call.arguments.size(); ++i) {
        EXPECT_EQ(call.arguments[i].type, hosttype::text);
        texts.push_back(call.arguments[i].text);
    }
    return texts;
}

std::vector<HostCall> callsBetween(std::size_t from, std::size_t count) {
    const auto& calls = host().calls;
    EXPECT_LE(from + count, calls.size());
    return {calls.begin() + static_cast<std::ptrdiff_t>(std::min(from, calls.size())),
            calls.begin() + static_cast<std::ptrdiff_t>(std::min(from + count, calls.size()))};
}

class Registration : public ::testing::Test {
protected:
    void SetUp() override {
        host().reset();
        ASSERT_EQ(QUORVA_EXPORT(xlAutoOpen)(), 1);
        opening = host().calls;
        host().calls.clear();
    }
    void TearDown() override {
        QUORVA_EXPORT(Cpp_SimNotVolatile)();
        EXPECT_EQ(QUORVA_EXPORT(xlAutoClose)(), 1);
        EXPECT_EQ(host().outstanding(), 0u);
        EXPECT_EQ(host().foreignFrees, 0);
    }

    /// The three loops of a re-registration, with the type texts' ending.
    void expectReregistration(int unregisterForm, double firstOldIdentifier, const std::string& ending) {
        const auto rows = expectedModelRows();
        ASSERT_EQ(host().calls.size(), 3 * modelFunctions);
        const auto unregistered = callsBetween(0, modelFunctions);
        const auto detached = callsBetween(modelFunctions, modelFunctions);
        const auto registered = callsBetween(2 * modelFunctions, modelFunctions);
        for (std::size_t i = 0; i < modelFunctions; ++i) {
            EXPECT_EQ(unregistered[i].function, unregisterForm);
            ASSERT_EQ(unregistered[i].arguments.size(), 1u);
            EXPECT_EQ(unregistered[i].arguments[0].number, firstOldIdentifier + static_cast<double>(i));

            EXPECT_EQ(detached[i].function, plainRegister);
            const auto& arguments = detached[i].arguments;
            ASSERT_EQ(arguments.size(), 6u);
            EXPECT_EQ(arguments[0].text, host().modulePath);
            EXPECT_EQ(arguments[1].text, "xlAutoClose");
            EXPECT_EQ(arguments[2].text, "J");
            EXPECT_EQ(arguments[3].text, rows[i][2]);
            EXPECT_EQ(arguments[4].type, hosttype::missing);
            EXPECT_EQ(arguments[5].type, hosttype::integer);
            EXPECT_EQ(arguments[5].integer, 0);

            EXPECT_EQ(registered[i].function, internationalRegister);
            Row expected = rows[i];
            expected[1] += ending;
            EXPECT_EQ(textsOf(registered[i]), expected);
        }
    }

    std::vector<HostCall> opening;
};

TEST_F(Registration, FirstAsksForTheModulesPath) {
    ASSERT_FALSE(opening.empty());
    EXPECT_EQ(opening[0].function, hostfunction::getName);
    EXPECT_TRUE(opening[0].wantsResult);
    EXPECT_TRUE(opening[0].arguments.empty());
}

TEST_F(Registration, RegistersEveryFunctionTextByText) {
    const auto rows = expectedRows();
    ASSERT_EQ(rows.size(), modelFunctions + statisticFunctions);
    ASSERT_EQ(opening.size(), 1 + rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(rows[i][0]);
        const HostCall& call = opening[1 + i];
        EXPECT_EQ(call.function, i < modelFunctions ? internationalRegister : plainRegister);
        EXPECT_TRUE(call.wantsResult);
        EXPECT_EQ(call.arguments.size(), i < modelFunctions ? 22u : 14u);
        EXPECT_EQ(call.arguments[0].type, hosttype::text);
        EXPECT_EQ(call.arguments[0].text, host().modulePath);
        EXPECT_EQ(textsOf(call), rows[i]);
    }
}

TEST_F(Registration, NotVolatileRightAfterLoadingDoesNothing) {
    QUORVA_EXPORT(Cpp_SimNotVolatile)();
    EXPECT_TRUE(host().calls.empty());
}

TEST_F(Registration, VolatileUnregistersDetachesAndRegistersTheModelFunctionsAnew) {
    QUORVA_EXPORT(Cpp_SimVolatile)();
    expectReregistration(plainUnregister, 1.0, "!");
}

TEST_F(Registration, NotVolatileUnregistersThroughTheInternationalForm) {
    QUORVA_EXPORT(Cpp_SimVolatile)();
    host().calls.clear();
    QUORVA_EXPORT(Cpp_SimNotVolatile)();
    // 99 at load, then 40 detached and 40 volatile.
    expectReregistration(internationalUnregister, 99.0 + 40.0 + 1.0, "");
}

TEST_F(Registration, SecondVolatileAndSecondNotVolatileDoNothing) {
    QUORVA_EXPORT(Cpp_SimVolatile)();
    host().calls.clear();
    QUORVA_EXPORT(Cpp_SimVolatile)();
    EXPECT_TRUE(host().calls.empty());
    QUORVA_EXPORT(Cpp_SimNotVolatile)();
    host().calls.clear();
    QUORVA_EXPORT(Cpp_SimNotVolatile)();
    EXPECT_TRUE(host().calls.empty());
}

TEST_F(Registration, VolatileLeavesTheStatisticFunctionsAlone) {
    QUORVA_EXPORT(Cpp_SimVolatile)();
    const auto rows = expectedRows();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto* registration = host().registered(rows[i][2]);
        ASSERT_NE(registration, nullptr);
        EXPECT_EQ(registration->procedure, rows[i][0]);
        EXPECT_THAT(registration->typeText, EndsWith("!"));
        // The statistic functions are still those of loading: identifiers 41 to 99.
        if (i >= modelFunctions) {
            EXPECT_EQ(host().registrations.at(static_cast<double>(i + 1)).functionText, rows[i][2]);
        }
    }
}

TEST_F(Registration, ReloadingStartsNonVolatile) {
    QUORVA_EXPORT(Cpp_SimVolatile)();
    QUORVA_EXPORT(xlAutoClose)();
    QUORVA_EXPORT(xlAutoOpen)();
    EXPECT_THAT(host().registered("QUORVA_SimNormal")->typeText, Not(EndsWith("!")));
    host().calls.clear();
    QUORVA_EXPORT(Cpp_SimNotVolatile)();
    EXPECT_TRUE(host().calls.empty());
}

// The host calls xlAutoClose before the user can cancel its closing.
TEST_F(Registration, ARunAfterACancelledClosingRegistersAsBefore) {
    QUORVA_EXPORT(xlAutoClose)();
    EXPECT_EQ(host().outstanding(), 0u);
    host().calls.clear();
    QUORVA_EXPORT(Cpp_SimVolatile)();
    expectReregistration(plainUnregister, 1.0, "!");
    for (const HostCall& call : host().callsOf(internationalRegister)) {
        EXPECT_EQ(call.arguments[0].type, hosttype::text);
        EXPECT_EQ(call.arguments[0].text, host().modulePath);
    }
}

TEST_F(Registration, ClosingReleasesThePathAndUnregistersNothing) {
    const auto before = host().registrations.size();
    QUORVA_EXPORT(xlAutoClose)();
    ASSERT_EQ(host().calls.size(), 1u);
    EXPECT_EQ(host().calls[0].function, hostfunction::free);
    EXPECT_FALSE(host().calls[0].wantsResult);
    ASSERT_EQ(host().calls[0].arguments.size(), 1u);
    EXPECT_EQ(host().calls[0].arguments[0].text, host().modulePath);
    EXPECT_EQ(host().registrations.size(), before);
    EXPECT_EQ(host().outstanding(), 0u);
}

}  // namespace
