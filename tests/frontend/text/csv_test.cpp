#include "frontend/text/csv.h"

#include <gtest/gtest.h>

namespace quorva::frontend {
namespace {

TEST(Csv, ReadsQuotesLineBreaksAndSemicolons) {
    EXPECT_EQ(parseCsv("\xEF\xBB\xBF"
                       "a,\"b,\"\"c\n\"\r\n1,2\n\n"),
              (std::vector<std::vector<std::string>>{{"a", "b,\"c\n"}, {"1", "2"}}));
    EXPECT_EQ(parseCsv("a;b\n1,5;2"), (std::vector<std::vector<std::string>>{{"a", "b"}, {"1,5", "2"}}));
    EXPECT_EQ(parseCsv(";\"Sales, net\";b,c\n"), (std::vector<std::vector<std::string>>{{"", "Sales, net", "b,c"}}));
    EXPECT_EQ(parseCsv(",a;b,c\n"), (std::vector<std::vector<std::string>>{{"", "a;b", "c"}}));
}

TEST(Csv, NamesThatLookLikeFormulasAreNeverRun) {
    EXPECT_EQ(csvName("=cmd|' /C calc'!A0"), "'=cmd|' /C calc'!A0");
    EXPECT_EQ(csvName("@sum,1"), "\"'@sum,1\"");
    EXPECT_EQ(csvName("plain"), "plain");
}

}  // namespace
}  // namespace quorva::frontend
