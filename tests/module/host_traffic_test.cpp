// What a field asks of its host, and that nothing of the host's memory is kept.
#include <gtest/gtest.h>

#include "module_under_test.h"
#include "quorva/front_end.h"
#include "quorva/worksheet.h"

namespace {

using namespace quorva;
using namespace quorva::testing;

class HostTraffic : public ::testing::Test {
protected:
    void SetUp() override {
        host().reset();
        QUORVA_EXPORT(xlAutoOpen)();
        QUORVA_EXPORT(Cpp_SimInit)(-1, &seed, -1, &newSeed);
        host().calls.clear();
    }
    void TearDown() override {
        QUORVA_EXPORT(Cpp_SimReset)(&seed, -1, &newSeed);
        QUORVA_EXPORT(xlAutoClose)();
        EXPECT_EQ(host().outstanding(), 0u);
        EXPECT_EQ(host().foreignFrees, 0);
    }

    static double normal(const char* name) {
        return QUORVA_EXPORT(QUORVA_SimNormal)(name, 10.0, 2.0, 0, 0.0, 0.0, 0, 0.0, 1);
    }

    int seed = 123;
    int newSeed = 0;
};

TEST_F(HostTraffic, AFieldAsksForItsCellAndItsSheetAndReleasesWhatItWasGiven) {
    host().caller = HostCell{"[Book1]Inputs", 4, 2};
    const std::size_t before = host().outstanding();
    EXPECT_EQ(normal("x"), 10.0);
    EXPECT_EQ(host().outstanding(), before) << "only the add-in's path is kept";
    ASSERT_GE(host().calls.size(), 3u);
    EXPECT_EQ(host().calls[0].function, hostfunction::caller);
    EXPECT_EQ(host().calls[1].function, hostfunction::sheetName);
    EXPECT_EQ(host().calls[1].arguments.at(0).type, hosttype::localReference);
    EXPECT_EQ(host().calls[2].function, hostfunction::sheetId);
    EXPECT_EQ(host().calls[2].arguments.at(0).text, "[Book1]Inputs");
}

TEST_F(HostTraffic, AFieldThatIsNotCalledFromACellReturnsItsPlainValue) {
    host().caller.reset();
    EXPECT_EQ(normal("x"), 10.0);
    EXPECT_EQ(host().callsOf(hostfunction::sheetName).size(), 0u);
}

TEST_F(HostTraffic, AHostThatRefusesEverythingIsSurvived) {
    host().override = [](int function, XLOPER* result, int, XLOPER**) -> std::optional<int> {
        if (result && function != hostfunction::free) {
            result->type = hosttype::error;
            result->value.error = hosterror::value;
        }
        return 32;
    };
    EXPECT_EQ(normal("x"), 10.0);
    XLOPER* reference = host().plainNumber(1.0);
    EXPECT_EQ(QUORVA_EXPORT(QUORVA_SimStatMean)("s", reference, 1), 0.0);
    host().override = nullptr;
}

}  // namespace
