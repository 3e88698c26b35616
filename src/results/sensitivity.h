// How much each distribution contributes to the variability of a field.
#pragma once

#include <string>

#include "common/matrix.h"

// Exported.
extern "C" {

/// SensT (nFtyp1 x 4): field number, association with field iField, signed contribution and its size, a row for every
/// distribution in field-number order; ranked by size when order is 1. VarCovT is nFields x nFields, field against
/// field; an iField outside it reads its scratch value.
void GetSensitivity(int nFields, quorva::matrix<double>* VarCovT, int nFtyp1, int iField, int order,
                    quorva::matrix<double>* SensT);
}
