// The theoretical moments of the laws.
#pragma once

extern "C" {

/// Theoretical statistic of a law, by its identifier: 1 the mean, 3 the standard deviation, any other number the
/// variance. 0 for an identifier without a law; MissingValue for the deviation of a negative variance. Exported.
double TheoStat(int law, int statistic, double Param1, double Param2, double Param3, double Param4);
}
