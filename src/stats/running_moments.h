// Running moments of the fields whose statistics are asked for, and the close of an iteration.
#pragma once

// Exported.
extern "C" {

/// Takes a value of a field into its running moments, if they are kept. MissingValue changes the minimum alone; NaN is
/// counted, makes mean and sums NaN for the rest of the run and leaves the extremes.
void CalcSimStat(int field, double value);

/// Closes an iteration: statistic fields that were not recalculated get their value, and no field counts as done.
void SimUpdateStat();
}
