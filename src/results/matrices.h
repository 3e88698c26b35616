// The simulated values themselves: columns copied out of the sample store, with the names of their fields. What a
// caller's table has no room for is left out.
#pragma once

#include <string>

#include "common/matrix.h"

// Exported.
extern "C" {

/// Rows 1..nSim of field iFieldNbr into column 1 of Res (nSim x 1). A field number that does not exist leaves Res as
/// it is.
void GetSimRes(int iFieldNbr, int nSim, quorva::matrix<double>* Res);

/// Rows 1..nSim of fields 1..nFields, whatever their kind, into Res (nSim x nFields).
void GetSimMat(int nSim, int nFields, quorva::matrix<double>* Res);

/// All fields of kind FType (1 distribution, 2 scenario variable, 3 result, 4 statistic) with their names.
void GetSimMatGrp(int nSim, int nFields, quorva::matrix<double>* Res, int FType,
                  quorva::matrix<std::u16string>* ResStr);

/// All distributions, then all results, with their names.
void GetSimMatRed(int nSim, int nFields, quorva::matrix<double>* Res, quorva::matrix<std::u16string>* ResStr);

/// All distributions, then all results, then all statistics, with their names. The order is by kind; no values are
/// sorted.
void GetSimMatSorted(int nSim, int nFields, quorva::matrix<double>* Res, quorva::matrix<std::u16string>* ResStr);
}
