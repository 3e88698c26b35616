// Tornado and spider: one input at a time moves over a few points while the others stay at their base case. The field
// functions step through the plan made here, a recalculation for each case, and record the results in its store.
#pragma once

#include <string>

#include "common/matrix.h"

// Exported.
extern "C" {

/// Makes the plan of a pass and sets the analysing status.
///   iDefCase      base case of the inputs that stay: 0 simulated median, other default value
///   iIntMeth      0: points across the central interval; other: a band of relative half-width ialpha round the base
///   inbrPts       points of each input, at least 2
///   IntT          p x 5, as SimEnd returns it; MissingValue in column 3: the field has no points
///   onCases       receives the rows of the tornado table: results x points
///   SpiderLabels  inbrPts texts, the position of each point in percent
void PrepareTor(int iDefCase, int iIntMeth, double ialpha, int inbrPts, int p, int* onCases,
                quorva::matrix<double>* IntT, quorva::matrix<std::u16string>* SpiderLabels);

/// The table of a pass, which ends with it.
///   TorT       nCases x nFields: a column for each input (distributions and scenario variables in field-number
///              order), inbrPts rows for each result in the order that ResInd gives; MissingValue where clamped
///   FieldInd   nFields: field number of each column
///   ResInd     N: order number of a field as a result, 0 for any other
///   FieldName  nFields: name of each column's field
void GetTornado(int nCases, int nFields, quorva::matrix<double>* TorT, quorva::matrix<int>* FieldInd,
                quorva::matrix<int>* ResInd, quorva::matrix<std::u16string>* FieldName);

/// Spider (nP x nFields) and tornado (nFields x 4: field number, minimum, maximum, swing; widest first) of the result
/// field iField, out of the table and the field numbers that GetTornado returned.
void GetTornadoItem(int nCases, int nFields, int iField, quorva::matrix<double>* TorT, quorva::matrix<int>* FieldInd,
                    quorva::matrix<double>* oTornado, quorva::matrix<double>* oSpider);
}
