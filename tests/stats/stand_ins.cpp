#include "stand_ins.h"

#include "engine/field_registry.h"
#include "numerics/law_table.h"

TheoStatCall lastTheoStat;

double TheoStat(int law, int statistic, double Param1, double Param2, double Param3, double Param4) {
    lastTheoStat = {law, statistic, {Param1, Param2, Param3, Param4}, lastTheoStat.calls + 1};
    return 1000.0 * law + statistic;
}

std::uint32_t getFieldInfo(int, int, int) { return 0; }
