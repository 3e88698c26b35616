// The functions through which a front end drives a run. All run on the host's calculation thread, one at a time.
//
// Tables are flat arrays of doubles in column-major order, dimensioned by the caller; lists of strings are arrays of
// automation strings in which an entry is replaced only when its text differs. Codes: 0 success, 2 success after the
// correlation matrix was repaired, negative failure (Cpp_SimError tells where).
#pragma once

#include "quorva/automation.h"

extern "C" {

void Cpp_SimReset(int* mioSeed, quorva::HostBool miSeedInit, int* moSeed);
int Cpp_SimInit(quorva::HostBool iWorkbookModel, int* mioSeed, quorva::HostBool miSeedInit, int* moSeed);
int Cpp_SimGetStatus();
int Cpp_SimInit2(quorva::HostBool UseCorr, int nCorr, double* iCorrMat, quorva::HostStringArray** LabelCorrMat,
                 quorva::HostBool iUseSpc, int inSpc, double iSpcConf, double* iLSL, double* iUSL, double* itarget,
                 quorva::HostStringArray** LabelSPC);
int Cpp_SimBegin(int nSim, int inbuckets, quorva::HostBool iCheckConv, int iVerifInt, double iconvPerc, double iconf,
                 quorva::HostBool iallRes, int inCrit, double ipercentile, int* oFieldNbr, int* oFNbrTyp1,
                 int* oFNbrTyp2, int* oFNbrTyp3, int* oFNbrTyp4);
int Cpp_SimNext();
void Cpp_SimError(int* oSimError, int* oEline, int* oEcol, quorva::HostStringArray** oESheet);
void Cpp_SimError2(int* oSimError2, int* oEline, int* oEcol, quorva::HostStringArray** oESheet);
void Cpp_SimVolatile();
void Cpp_SimNotVolatile();
int Cpp_SimConv();
void Cpp_SimEnd(double TorProb, int nSim, double* ResGen, quorva::HostString* ResStr, double* ResConv,
                quorva::HostString* ConvStr, int* pConv, double* IntT);
void Cpp_GetSimRes(int iFieldNbr, int nSim, double* Res);
void Cpp_GetSimMat(int nSim, int nFields, double* Res);
void Cpp_GetSimMatGrp(int nSim, int nFields, double* Res, int FType, quorva::HostString* ResStr);
void Cpp_GetSimMatRed(int nSim, int nFields, double* Res, quorva::HostString* ResStr);
void Cpp_GetSimMatSorted(int nSim, int nFields, double* Res, quorva::HostString* ResStr);
void Cpp_PrepareTor(int iDefCase, int iIntMeth, double ialpha, int inbrPts, int p, int* onCases, double* IntT,
                    quorva::HostString* SpiderLabels);
void Cpp_GetTornado(int nCases, int nFields, double* TorT, int* FieldInd, int* ResInd, quorva::HostString* FieldName);
void Cpp_GetTornadoItem(int nCases, int nFields, int iField, double* TorT, int* FieldInd, double* oTornado,
                        double* oSpider);
void Cpp_GetSensitivity(int nFields, double* VarCovT, int nFtyp1, int iField, int order, double* SensT);

// Life cycle of the add-in, called by the host.
int xlAutoOpen();
int xlAutoClose();
}
