#include "workbook/values/number_format.h"

#include <gtest/gtest.h>

namespace quorva::workbook {
namespace {

struct Case {
    Value value;
    const char* format;
    const char* shown;
};

void expectShown(std::initializer_list<Case> cases) {
    for (const Case& one : cases) {
        const auto shown = formatValue(one.value, one.format, false);
        EXPECT_EQ(shown.value_or("(refused)"), one.shown) << one.format;
    }
}

// Expected values: examples of the documentation of number formats and of TEXT, and the rules stated there.
TEST(NumberFormat, WritesDigitsPointsAndThousands) {
    expectShown({
        {1234.567, "0", "1235"},
        {1234.567, "0.00", "1234.57"},
        {1234.567, "#,##0.00", "1,234.57"},
        {1234.567, "$#,##0.00", "$1,234.57"},
        {0.5, "#.##", ".5"},
        {5.0, "#.##", "5."},
        {0.0, "#", ""},
        {5.0, "000", "005"},
        {5.0, "0,000", "0,005"},
        {1234567.0, "#,###", "1,234,567"},
        {1.5, "0.0?", "1.5 "},
        {44.398, "????.????", "  44.398 "},
        {1e15, "#,##0", "1,000,000,000,000,000"},
        {1234567898.0, "(000) 000-0000", "(123) 456-7898"},
        {1234.0, "0000000", "0001234"},
        {-1.5, "0.0", "-1.5"},
        {2.5, "0", "3"},
        {1.005, "0.00", "1.01"},  // half away from zero on the decimal digits
        {0.285, "0%", "29%"},
        {0.285, "0.0%", "28.5%"},
        {12200000.0, "0.0,,", "12.2"},
        {12345.0, "0,", "12"},
        {5.0, "0 \"units\"", "5 units"},
        {5.0, "0 \\k\\g", "5 kg"},
        {5.0, "0_)", "5 "},
        {1234.0, "0 K", "1234 K"},
        {999.995, "0.00", "1000.00"},
        {5.25, ".00", "5.25"},
        {0.25, ".00", ".25"},
        {1234567890.0, "0,## ## ,##", "1,234,56 7,8 ,90"},
        {1234567.0, ",0", ",1234567"},
        {5.0, "0!", "5!"},
    });
}

TEST(NumberFormat, ChoosesSectionsBySignAndCondition) {
    expectShown({
        {-5.0, "0;(0)", "(5)"},
        {5.0, "0;(0)", "5"},
        {0.0, "0;(0);\"-\"", "-"},
        {"x", "0;(0);\"-\";\"<\"@\">\"", "<x>"},
        {"x", "0.00", "x"},
        {-5.0, "0;", ""},
        {5.0, "[Red]0;[Blue]-0", "5"},
        {150.0, "[>100]\"big\";\"small\"", "big"},
        {50.0, "[>100]\"big\";\"small\"", "small"},
        {-50.0, "[<0]\"loss \"0;0", "loss 50"},
        {75.0, "[<50]\"low\";[<100]\"mid\";\"high\"", "mid"},
        {175.0, "[<50]\"low\";[<100]\"mid\";\"high\"", "high"},
        {true, "0.00", "TRUE"},
        {Value(), "0.0", "0.0"},
        {5.0, "@", "5"},
        {5.0, "", ""},
        {5.0, "0;0;0;@;0", "(refused)"},
        {5.0, "[Pink]0", "(refused)"},
        {11.0, "[<10]#\" Wow\"", "11"},
        {9.0, "[<10]#\" Wow\"", "9 Wow"},
        {-11.5, "[>10]0", "-11.5"},
        {true, "0;0;0;-@-", "-TRUE-"},
        {false, "\"is \"@", "is FALSE"},
        {5.0, "[$\xE2\x82\xAC-407] 0.00", "\xE2\x82\xAC 5.00"},
    });
}

TEST(NumberFormat, WritesPowersOfTen) {
    expectShown({
        {12200000.0, "0.00E+00", "1.22E+07"},
        {12345.0, "##0.0E+0", "12.3E+3"},
        {0.00012, "0.0E+00", "1.2E-04"},
        {0.00012, "0.0E-00", "1.2E-04"},
        {12000.0, "0.0E-00", "1.2E04"},
        {9.996, "0.00E+00", "1.00E+01"},
        {0.0, "0.00E+00", "0.00E+00"},
        {123456.0, "##0E+0", "123E+3"},
        {12345.0, "0.0e+0", "1.2e+4"},
        {0.00012, "0.0e-00", "1.2e-04"},
        {123456.789, "#,e-#", "1e5"},
        {0.0, "#E+0", "0E+0"},
        {0.0, "0.0e+0", "0.0e+0"},
        {123456.789, "#.#\\|E+\\|#", "1.2|E|+5"},
    });
}

TEST(NumberFormat, WritesFractions) {
    expectShown({
        {1.25, "# ?/?", "1 1/4"},
        {0.5, "# ?/?", " 1/2"},
        {0.5, "# ?\?/?\?", "  1/2 "},
        {5.0, "# ?/?", "5    "},
        {3.14159265358979, "# ?\?/?\?", "3  1/7 "},
        {3.14159265358979, "?\?/?\?", "22/7 "},
        {0.3, "# ?/8", " 2/8"},
        {123.456, "# ?/?", "123 1/2"},
        {123.456, "# ?\?/?\?", "123 26/57"},
        {123.456, "# ?\?\?/?\?\?", "123  57/125"},
        {1.999, "# ?/?", "2    "},
        {-1.5, "# ?/?", "-1 1/2"},
        {0.0, "# ?/?", "0    "},
        {5.3, "# ?\?/100", "5 30/100"},
        {0.75, "#\\:#/#", "3/4"},
        {3.75, "#\\:#/#", "3:3/4"},
        {3.75, "#_#/#", "15 /4"},
    });
}

TEST(NumberFormat, WritesDatesAndTimes) {
    const double moment = 43861.604305555556;  // 31 January 2020 14:30:12
    expectShown({
        {moment, "yyyy-mm-dd", "2020-01-31"},
        {moment, "m/d/yy", "1/31/20"},
        {moment, "dddd, mmmm d, yyyy", "Friday, January 31, 2020"},
        {moment, "ddd mmm", "Fri Jan"},
        {moment, "mmmmm", "J"},
        {moment, "hh:mm:ss", "14:30:12"},
        {moment, "h:mm AM/PM", "2:30 PM"},
        {moment, "h:mm a/p", "2:30 p"},
        {moment, "mm:ss", "30:12"},
        {moment, "yyyy-mm-dd hh:mm", "2020-01-31 14:30"},
        {1.5, "[h]:mm", "36:00"},
        {1.5, "[mm]", "2160"},
        {0.000011574074074, "[s]", "1"},
        {0.5 / 86400, "s.00", "0.50"},
        {59.999 / 86400, "m:ss.00", "1:00.00"},
        {0.0, "yyyy-mm-dd", "1900-01-00"},
        {60.0, "d mmm yyyy", "29 Feb 1900"},
        {1.0, "dddd", "Sunday"},
        {-1.0, "yyyy", "(refused)"},
        {3e6, "yyyy", "(refused)"},
        {0.0, "h:mm AM/PM", "12:00 AM"},
        {0.5, "h AM/PM", "12 PM"},
        {moment, "[$-409]mmmm", "January"},
        {moment, "aaa", "Fri"},
        {moment, "aaaa", "Friday"},
        {1.5, "[h]:[h]", "36:36"},
        {-0.5, "[h]:mm", "(refused)"},
    });
    EXPECT_EQ(formatValue(-0.5, "[h]:mm", true), "-12:00");
    EXPECT_EQ(formatValue(-1.0, "h:mm;(h:mm)", true), "(0:00)");
    EXPECT_EQ(formatValue(-1.0, "yyyy-mm-dd", true), "-1904-01-02");
    EXPECT_EQ(formatValue(0.0, "yyyy-mm-dd", true), "1904-01-01");
}

TEST(NumberFormat, WritesGeneral) {
    expectShown({
        {1234.5, "General", "1234.5"},
        {-1234.5, "General", "-1234.5"},
        {123456789012.0, "General", "1.23457E+11"},
        {12345678901.0, "General", "12345678901"},
        {0.1234567890123, "General", "0.123456789"},
        {1.0 / 3, "General", "0.333333333"},
        {0.0000123456789, "General", "1.23457E-05"},
        {1e-7, "General", "0.0000001"},
        {1e20, "General", "1E+20"},
        {5.0, "General\" m\"", "5 m"},
        {-5.0, "General;\"minus \"General", "minus 5"},
    });
}

TEST(NumberFormat, RoundsToWhatIsShown) {
    EXPECT_EQ(roundAsShown(1234.5678, "#,##0.00"), 1234.57);
    EXPECT_EQ(roundAsShown(-1234.5678, "#,##0.00_);(#,##0.0)"), -1234.6);
    EXPECT_EQ(roundAsShown(0.12345, "0.0%"), 0.123);
    EXPECT_EQ(roundAsShown(1250, "0,"), 1000);
    EXPECT_EQ(roundAsShown(1.2345e-7, "0.00E+00"), 1.23e-7);
    EXPECT_EQ(roundAsShown(9.996, "0.00E+00"), 10);
    EXPECT_EQ(roundAsShown(0.3, "# ?/8"), 0.25);
    EXPECT_EQ(roundAsShown(0.004, "0.00"), 0);
    EXPECT_EQ(roundAsShown(1.0 / 3, "General"), 1.0 / 3);
    EXPECT_EQ(roundAsShown(1.0 / 3, "@"), 1.0 / 3);
    EXPECT_EQ(roundAsShown(1.0 / 3, ";;;"), 1.0 / 3);
    EXPECT_EQ(roundAsShown(1.23456789, "h:mm"), 1.23456789);
    EXPECT_EQ(roundAsShown(1.5, "0;0;0;0;0"), 1.5);
}

}  // namespace
}  // namespace quorva::workbook
