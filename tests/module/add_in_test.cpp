// The add-in manager's question.
#include <gtest/gtest.h>

#include <cstring>

#include "module_under_test.h"
#include "quorva/add_in.h"
#include "quorva/front_end.h"

namespace {

using namespace quorva;
using namespace quorva::testing;

class AddInManager : public ::testing::Test {
protected:
    void SetUp() override { host().reset(); }

    static XLOPER* ask(double action) { return QUORVA_EXPORT(xlAddInManagerInfo)(host().plainNumber(action)); }
};

TEST_F(AddInManager, ActionOneIsAnsweredWithTheNameBehindABlankInPlaceOfItsLength) {
    const XLOPER* answer = ask(1);
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer->type, hosttype::text);
    EXPECT_EQ(std::memcmp(answer->value.text, " QUORVAMC4R\0", 12), 0);
}

TEST_F(AddInManager, AsksTheHostForAnInteger) {
    ask(1);
    ASSERT_EQ(host().calls.size(), 1u);
    const HostCall& call = host().calls[0];
    EXPECT_EQ(call.function, hostfunction::coerce);
    ASSERT_EQ(call.arguments.size(), 2u);
    EXPECT_EQ(call.arguments[0].number, 1.0);
    EXPECT_EQ(call.arguments[1].type, hosttype::integer);
    EXPECT_EQ(call.arguments[1].integer, hosttype::integer);
}

TEST_F(AddInManager, OtherActionsAreAnsweredWithAValueError) {
    for (const double action : {2.0, 0.0, -1.0}) {
        const XLOPER* answer = ask(action);
        EXPECT_EQ(answer->type, hosttype::error);
        EXPECT_EQ(answer->value.error, hosterror::value);
    }
}

TEST_F(AddInManager, AnActionThatIsNoNumberIsAnsweredWithAValueError) {
    char text[] = "\x03one";
    XLOPER action{};
    action.type = hosttype::text;
    action.value.text = text;
    const XLOPER* answer = QUORVA_EXPORT(xlAddInManagerInfo)(&action);
    EXPECT_EQ(answer->type, hosttype::error);
    EXPECT_EQ(answer->value.error, hosterror::value);
    EXPECT_EQ(QUORVA_EXPORT(xlAddInManagerInfo)(nullptr)->type, hosttype::error);
}

TEST_F(AddInManager, AnActionThatTheHostDoesNotMakeAnIntegerIsAnsweredWithAValueError) {
    host().override = [](int, XLOPER* result, int, XLOPER**) -> std::optional<int> {
        result->value.integer = 1;  // the bits of an integer 1 under another type word
        result->type = hosttype::error;
        return 32;
    };
    const XLOPER* answer = ask(1);
    EXPECT_EQ(answer->type, hosttype::error);
    EXPECT_EQ(answer->value.error, hosterror::value);
    host().override = nullptr;
}

TEST_F(AddInManager, AnswersAgainAfterAnError) {
    ask(1);
    ask(2);
    const XLOPER* first = ask(1);
    EXPECT_EQ(first->type, hosttype::text);
    EXPECT_EQ(std::memcmp(first->value.text, " QUORVAMC4R\0", 12), 0);
    EXPECT_EQ(ask(1), first) << "one static value";
}

}  // namespace
