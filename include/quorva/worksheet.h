// The worksheet functions of a model, with the argument kinds of their registered type texts. Names are zero-terminated
// byte texts. DefaultType counts as true when it is not 0, ConvCheck only when it is -1. Every function returns the
// plain value of its cell outside a run and never an error value.
#pragma once

#include <cstdint>

#include "quorva/host_value.h"

// The functions of one law each, by the number of the law's parameters.
// clang-format off
#define QUORVA_LAWS_WITH_0_PARAMETERS(ENTRY) ENTRY(QUORVA_SimGumbel) ENTRY(QUORVA_SimNormalStd)
#define QUORVA_LAWS_WITH_1_PARAMETER(ENTRY)                                                                            \
    ENTRY(QUORVA_SimChiSquare) ENTRY(QUORVA_SimExponential) ENTRY(QUORVA_SimFisherTippett1) ENTRY(QUORVA_SimGamma1)    \
    ENTRY(QUORVA_SimPoisson) ENTRY(QUORVA_SimStudent) ENTRY(QUORVA_SimWeibull1) ENTRY(QUORVA_SimBernoulli)             \
    ENTRY(QUORVA_SimArcsineG)
#define QUORVA_LAWS_WITH_2_PARAMETERS(ENTRY)                                                                           \
    ENTRY(QUORVA_SimBeta) ENTRY(QUORVA_SimBinomial) ENTRY(QUORVA_SimBinomialNeg1) ENTRY(QUORVA_SimBinomialNeg2)        \
    ENTRY(QUORVA_SimFisher) ENTRY(QUORVA_SimFisherTippett2) ENTRY(QUORVA_SimGamma2) ENTRY(QUORVA_SimLogNormal)         \
    ENTRY(QUORVA_SimNormal) ENTRY(QUORVA_SimPareto) ENTRY(QUORVA_SimUniform) ENTRY(QUORVA_SimWeibull2)                 \
    ENTRY(QUORVA_SimErlang) ENTRY(QUORVA_SimLogistic) ENTRY(QUORVA_SimUniformDisc) ENTRY(QUORVA_SimLogNormal2)
#define QUORVA_LAWS_WITH_3_PARAMETERS(ENTRY)                                                                           \
    ENTRY(QUORVA_SimGamma3) ENTRY(QUORVA_SimGEV) ENTRY(QUORVA_SimWeibull3) ENTRY(QUORVA_SimTriangular)                 \
    ENTRY(QUORVA_SimPert)
#define QUORVA_LAWS_WITH_4_PARAMETERS(ENTRY) ENTRY(QUORVA_SimBeta4) ENTRY(QUORVA_SimTrapezoidal)

// The functions of one statistic each, in the order of registration.
#define QUORVA_STATISTIC_FUNCTIONS(ENTRY)                                                                              \
    ENTRY(QUORVA_SimStatNbrObs) ENTRY(QUORVA_SimStatNbrMiss) ENTRY(QUORVA_SimStatSumOfWeights)                         \
    ENTRY(QUORVA_SimStatMinimum) ENTRY(QUORVA_SimStatMaximum) ENTRY(QUORVA_SimStatFreqMin)                             \
    ENTRY(QUORVA_SimStatFreqMax) ENTRY(QUORVA_SimStatAmplitude) ENTRY(QUORVA_SimStat1stQuartile)                       \
    ENTRY(QUORVA_SimStatMedian) ENTRY(QUORVA_SimStat3rdQuartile) ENTRY(QUORVA_SimStatSum)                              \
    ENTRY(QUORVA_SimStatMean) ENTRY(QUORVA_SimStatVarianceN) ENTRY(QUORVA_SimStatVarianceN1)                           \
    ENTRY(QUORVA_SimStatStdevN) ENTRY(QUORVA_SimStatStdevN1) ENTRY(QUORVA_SimStatVariation)                            \
    ENTRY(QUORVA_SimStatSkewnessPearson) ENTRY(QUORVA_SimStatSkewnessFisher) ENTRY(QUORVA_SimStatSkewnessBowley)       \
    ENTRY(QUORVA_SimStatKurtosisPearson) ENTRY(QUORVA_SimStatKurtosisFisher) ENTRY(QUORVA_SimStatStdErrorOfMean)       \
    ENTRY(QUORVA_SimStatLowerBound95Perc) ENTRY(QUORVA_SimStatUpperBound95Perc)                                        \
    ENTRY(QUORVA_SimStatStdErrorOfSkewness) ENTRY(QUORVA_SimStatStdErrorOfKurtosis)                                    \
    ENTRY(QUORVA_SimStatMeanAbsDeviation) ENTRY(QUORVA_SimStatMedianAbsDeviation) ENTRY(QUORVA_SimStatGeometricMean)   \
    ENTRY(QUORVA_SimStatGSD) ENTRY(QUORVA_SimStatHarmonicMean) ENTRY(QUORVA_SimTheoMean)                               \
    ENTRY(QUORVA_SimTheoVariance) ENTRY(QUORVA_SimTheoStdev) ENTRY(QUORVA_SimSPCCp) ENTRY(QUORVA_SimSPCCpl)            \
    ENTRY(QUORVA_SimSPCCpu) ENTRY(QUORVA_SimSPCCpk) ENTRY(QUORVA_SimSPCPp) ENTRY(QUORVA_SimSPCPpl)                     \
    ENTRY(QUORVA_SimSPCPpu) ENTRY(QUORVA_SimSPCPpk) ENTRY(QUORVA_SimSPCCpm) ENTRY(QUORVA_SimSPCCpmBoyles)              \
    ENTRY(QUORVA_SimSPCCp55) ENTRY(QUORVA_SimSPCCpk55) ENTRY(QUORVA_SimSPCCpmk) ENTRY(QUORVA_SimSPCCsWright)           \
    ENTRY(QUORVA_SimSPCZbelow) ENTRY(QUORVA_SimSPCZabove) ENTRY(QUORVA_SimSPCZtotal) ENTRY(QUORVA_SimSPCpNCbelow)      \
    ENTRY(QUORVA_SimSPCpNCabove) ENTRY(QUORVA_SimSPCpNCtotal) ENTRY(QUORVA_SimSPCPPMbelow)                             \
    ENTRY(QUORVA_SimSPCPPMabove) ENTRY(QUORVA_SimSPCPPMtotal)

// What follows the parameters of every law.
#define QUORVA_LAW_OPTIONS                                                                                             \
    int TruncMode, double TruncLower, double TruncUpper, short DefaultType, double DefaultValue, int Visible
// clang-format on

extern "C" {

/// A distribution field. Law and parameters as in the law table; TruncMode 1 bounds the values, 2 the probabilities (0
/// to 1), anything else nothing. Returns the draw of the iteration; outside a run DefaultValue, or the theoretical mean
/// when DefaultValue is MissingValue.
double QUORVA_SimDist(const char* VarName, int Law, double Param1, double Param2, double Param3, double Param4,
                      double DefaultValue, int TruncMode, double TruncLower, double TruncUpper, int Visible);

/// A distribution field that takes each of the first `rows` values with equal probability; outside a run DefaultValue,
/// or the mean of the values.
double QUORVA_SimEmpiricUniform(const char* VarName, std::uint16_t* rows, std::uint16_t* columns, double* values,
                                short DefaultType, double DefaultValue, int Visible);

/// A triangular distribution given by its mode m and its q1 and q2 percentiles (in percent) a and b.
double QUORVA_SimTriangularQ(const char* VarName, double a, double m, double b, double q1, double q2,
                             QUORVA_LAW_OPTIONS);

/// A scenario variable: DefaultValue, or the middle of the interval (rounded down for Type 2, qualitative).
double QUORVA_SimSVar(const char* SVarName, double LowerBound, double UpperBound, int Type, int Step, short DefaultType,
                      double DefaultValue, int Visible);

/// A result field: records Formula and returns it. DefaultValue is never read; intended.
double QUORVA_SimRes(const char* ResName, double Formula, double DefaultValue, short ConvCheck, int Visible);

/// A statistic (StatisticId) of the field in the cell that Reference refers to; 0 outside a run.
double QUORVA_SimStat(const char* StatName, quorva::XLOPER* Reference, int Statistic, int Visible);

#define QUORVA_DECLARE_LAW_0(NAME) double NAME(const char* VarName, QUORVA_LAW_OPTIONS);
#define QUORVA_DECLARE_LAW_1(NAME) double NAME(const char* VarName, double Param1, QUORVA_LAW_OPTIONS);
#define QUORVA_DECLARE_LAW_2(NAME) double NAME(const char* VarName, double Param1, double Param2, QUORVA_LAW_OPTIONS);
#define QUORVA_DECLARE_LAW_3(NAME) \
    double NAME(const char* VarName, double Param1, double Param2, double Param3, QUORVA_LAW_OPTIONS);
#define QUORVA_DECLARE_LAW_4(NAME) \
    double NAME(const char* VarName, double Param1, double Param2, double Param3, double Param4, QUORVA_LAW_OPTIONS);
#define QUORVA_DECLARE_STATISTIC(NAME) double NAME(const char* StatName, quorva::XLOPER* Reference, int Visible);
QUORVA_LAWS_WITH_0_PARAMETERS(QUORVA_DECLARE_LAW_0)
QUORVA_LAWS_WITH_1_PARAMETER(QUORVA_DECLARE_LAW_1)
QUORVA_LAWS_WITH_2_PARAMETERS(QUORVA_DECLARE_LAW_2)
QUORVA_LAWS_WITH_3_PARAMETERS(QUORVA_DECLARE_LAW_3)
QUORVA_LAWS_WITH_4_PARAMETERS(QUORVA_DECLARE_LAW_4)
QUORVA_STATISTIC_FUNCTIONS(QUORVA_DECLARE_STATISTIC)
#undef QUORVA_DECLARE_LAW_0
#undef QUORVA_DECLARE_LAW_1
#undef QUORVA_DECLARE_LAW_2
#undef QUORVA_DECLARE_LAW_3
#undef QUORVA_DECLARE_LAW_4
#undef QUORVA_DECLARE_STATISTIC
}
