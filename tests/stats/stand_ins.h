// What the statistics ask of the model, recorded.
#pragma once

#include <array>

struct TheoStatCall {
    int law = 0;
    int statistic = 0;
    std::array<double, 4> parameters{};
    int calls = 0;
};
extern TheoStatCall lastTheoStat;
