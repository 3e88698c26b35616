#include "frontend/reports/model_terms.h"

#include <gtest/gtest.h>

#include "quorva/catalogue.h"

namespace quorva::frontend {
namespace {

TEST(Terms, EveryLawOfTheCatalogueHasANameAndParameters) {
    for (const LawEntry& law : lawTable) {
        EXPECT_FALSE(lawName(law.law).empty());
        for (int i = 0; i < lawParameterCount(law.law); ++i) {
            EXPECT_FALSE(lawParameterName(law.law, i).empty()) << law.wrapper;
        }
    }
    EXPECT_EQ(lawName(empiricLaw), "Empirical");
    for (const StatisticEntry& statistic : statisticTable) {
        EXPECT_FALSE(statisticName(statistic.statistic).empty());
    }
}

TEST(Terms, CapabilityNamesFollowTheCatalogue) {
    int capability = 0;
    for (const StatisticEntry& statistic : statisticTable) {
        capability += statistic.path == StatisticPath::Capability ? 1 : 0;
    }
    EXPECT_EQ(capability, capabilityIndices);
}

}  // namespace
}  // namespace quorva::frontend
