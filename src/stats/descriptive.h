// One statistic of one field at the current point of a run: the place where the statistic identifiers get their
// meaning.
#pragma once

extern "C" {

/// Statistic `statistic` of field `field` over its first nObs values: from the running moments where the catalogue says
/// so, otherwise from the stored values, the field's law or its specification limits. An identifier that does not exist
/// gives MissingValue; nObs below 1 gives 0 outside the running moments. ownField, the number of the field that shows
/// the statistic, takes no part. Exported.
double SimCalcStat(int nObs, int field, int ownField, int statistic);
}
