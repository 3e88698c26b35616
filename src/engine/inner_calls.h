// Exported routines that work on matrices and on the run state: called by the entry points, by each other across
// folders, and by other programs of the suite. Rows, columns and field numbers count from 1; cells' rows and columns
// are the host's, from 0.
#pragma once

#include <cstdint>
#include <string>

#include "common/matrix.h"

extern "C" {

// Field registry
void checkfieldentry(int* column, int* row, int* slot, std::uint32_t sheetId, std::u16string sheetName);
void getSheetId(int* column, int* row, int* slot, std::uint32_t sheetId, std::u16string sheetName);
std::uint32_t getFieldInfo(int column, int row, int slot);
void setFieldInfo(int column, int row, int slot, std::uint32_t value);

// Set-up and checks
void FindSubGroups(quorva::matrix<double>* factor, int n, quorva::matrix<double>* groups, int* nGroups);
int checkVarlistDoubles();
int checkVarlistCorr();
int checkVarlistSPC();

// Sampling
double getLHSRandom01(int ignored, int stream, double lower, double upper, int* seed, short seedInit, int* seedUpdate);
double getNormalCorr(int field, int* seed, short seedInit, int* seedUpdate);

// Statistics
void CalcSimStat(int field, double value);
void SimUpdateStat();
double SimCalcStat(int nObs, int field, int ownField, int statistic);

// Results
void SimEnd(double TorProb, int nSim, quorva::matrix<double>* ResGen, quorva::matrix<std::u16string>* ResStr,
            quorva::matrix<double>* ResConv, quorva::matrix<std::u16string>* ConvStr, int* pConv,
            quorva::matrix<double>* IntT);
void GetSimRes(int iFieldNbr, int nSim, quorva::matrix<double>* Res);
void GetSimMat(int nSim, int nFields, quorva::matrix<double>* Res);
void GetSimMatGrp(int nSim, int nFields, quorva::matrix<double>* Res, int FType,
                  quorva::matrix<std::u16string>* ResStr);
void GetSimMatRed(int nSim, int nFields, quorva::matrix<double>* Res, quorva::matrix<std::u16string>* ResStr);
void GetSimMatSorted(int nSim, int nFields, quorva::matrix<double>* Res, quorva::matrix<std::u16string>* ResStr);
void PrepareTor(int iDefCase, int iIntMeth, double ialpha, int inbrPts, int p, int* onCases,
                quorva::matrix<double>* IntT, quorva::matrix<std::u16string>* SpiderLabels);
void GetTornado(int nCases, int nFields, quorva::matrix<double>* TorT, quorva::matrix<int>* FieldInd,
                quorva::matrix<int>* ResInd, quorva::matrix<std::u16string>* FieldName);
void GetTornadoItem(int nCases, int nFields, int iField, quorva::matrix<double>* TorT, quorva::matrix<int>* FieldInd,
                    quorva::matrix<double>* oTornado, quorva::matrix<double>* oSpider);
void GetSensitivity(int nFields, quorva::matrix<double>* VarCovT, int nFtyp1, int iField, int order,
                    quorva::matrix<double>* SensT);
}
