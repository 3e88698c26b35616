// What a front end needs for the summary of a finished run.
#pragma once

#include <string>

#include "common/matrix.h"

// Exported.
extern "C" {

/// Ends the run and fills its summary. N fields, M results:
///   ResGen   N x 14           columns 1 to 14 of the field table
///   ResStr   N x 2            names of the fields and of their sheets
///   ResConv  2 x max(1, 2 M)  convergence bounds and movements, when the run was monitored
///   ConvStr  2 M              the name of the field of each convergence column
///   pConv                     last convergence column that carries a field; not written without one
///   IntT     N x 5            quantiles TorProb, 0.5, 1 - TorProb, minimum and maximum of the first nSim values
void SimEnd(double TorProb, int nSim, quorva::matrix<double>* ResGen, quorva::matrix<std::u16string>* ResStr,
            quorva::matrix<double>* ResConv, quorva::matrix<std::u16string>* ConvStr, int* pConv,
            quorva::matrix<double>* IntT);
}
