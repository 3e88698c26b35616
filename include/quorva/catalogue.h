// What a model can be made of: the laws and the statistics with their worksheet functions. The one source for wrappers,
// registration, dispatch, type library, documentation and tests.
#pragma once

#include <array>
#include <string_view>

namespace quorva {

/// Law identifiers; the numerical library's index of a law is one less. No law has 34.
namespace law {
constexpr int beta = 1;
constexpr int binomial = 2;
constexpr int negativeBinomial1 = 3;
constexpr int negativeBinomial2 = 4;
constexpr int chiSquare = 5;
constexpr int exponential = 6;
constexpr int fisher = 7;
constexpr int gumbel = 8;
constexpr int fisherTippett1 = 9;
constexpr int fisherTippett2 = 10;
constexpr int gamma1 = 11;
constexpr int gamma2 = 12;
constexpr int gamma3 = 13;
constexpr int logNormal = 14;
constexpr int normal = 15;
constexpr int normalStd = 16;
constexpr int pareto = 17;
constexpr int poisson = 18;
constexpr int student = 19;
constexpr int uniform = 20;
constexpr int weibull1 = 21;
constexpr int weibull2 = 22;
constexpr int weibull3 = 23;
constexpr int gev = 24;
constexpr int erlang = 25;
constexpr int triangular = 26;
constexpr int pert = 27;
constexpr int logistic = 28;
constexpr int uniformDiscrete = 29;
constexpr int beta4 = 30;
constexpr int trapezoidal = 31;
constexpr int bernoulli = 32;
constexpr int logNormal2 = 33;
constexpr int arcsine = 35;
constexpr int last = 35;
}  // namespace law

/// A worksheet function that defines a distribution field of one law.
struct LawEntry {
    int law;  ///< identifier
    std::string_view wrapper;
    int parameters;
    std::array<std::string_view, 5> parameterNames;
    bool lowerBoundNamedFirst;  ///< the argument text names TruncLower before TruncMode, unlike the function; intended
    std::string_view help;
};

/// In the order of registration. TriangularQ shares the law of Triangular.
constexpr std::array<LawEntry, 35> lawTable{{
    // The help of Binomial reads like the one of Beta, with a blank behind; this is the text users know.
    {law::beta, "QUORVA_SimBeta", 2, {"alpha", "beta"}, false, "Beta Distribution."},
    {law::binomial, "QUORVA_SimBinomial", 2, {"n", "p"}, false, "Beta Distribution. "},
    {law::negativeBinomial1, "QUORVA_SimBinomialNeg1", 2, {"n", "p"}, false, "Negative Binomiale (1) Distribution."},
    {law::negativeBinomial2, "QUORVA_SimBinomialNeg2", 2, {"k", "p"}, false, "Negative Binomial (2) Distribution."},
    {law::chiSquare, "QUORVA_SimChiSquare", 1, {"df"}, true, "Chi Sqr Distribution."},
    {law::exponential, "QUORVA_SimExponential", 1, {"lambda"}, false, "Exponential Distribution."},
    {law::fisher, "QUORVA_SimFisher", 2, {"df1", "df2"}, false, "Fisher Distribution."},
    {law::fisherTippett1, "QUORVA_SimFisherTippett1", 1, {"beta"}, false, "Fisher Tippett (1) Distribution."},
    {law::fisherTippett2, "QUORVA_SimFisherTippett2", 2, {"beta", "mu"}, false, "Fisher Tippett (2) Distribution."},
    {law::gumbel, "QUORVA_SimGumbel", 0, {}, false, "Gumbel Distribution."},
    {law::gamma1, "QUORVA_SimGamma1", 1, {"k"}, false, "Gamma (1) Distribution."},
    {law::gamma2, "QUORVA_SimGamma2", 2, {"k", "beta"}, false, "Gamma (2) Distribution."},
    {law::gamma3, "QUORVA_SimGamma3", 3, {"k", "beta", "mu"}, false, "Gamma (3) Distribution."},
    {law::gev, "QUORVA_SimGEV", 3, {"beta", "k", "mu"}, false, "GEV Distribution."},
    {law::logNormal, "QUORVA_SimLogNormal", 2, {"mu", "sigma"}, false, "Lognormal Distribution."},
    {law::normal, "QUORVA_SimNormal", 2, {"mu", "sigma"}, false, "Normal Distribution."},
    {law::normalStd, "QUORVA_SimNormalStd", 0, {}, false, "Normal standard Distribution."},
    {law::pareto, "QUORVA_SimPareto", 2, {"a", "b"}, false, "Pareto Distribution."},
    {law::poisson, "QUORVA_SimPoisson", 1, {"lambda"}, false, "Poisson Distribution."},
    {law::student, "QUORVA_SimStudent", 1, {"df"}, false, "Student Distribution."},
    {law::uniform, "QUORVA_SimUniform", 2, {"a", "b"}, false, "Uniform Distribution."},
    {law::weibull1, "QUORVA_SimWeibull1", 1, {"beta"}, false, "Weibull (1) Distribution."},
    {law::weibull2, "QUORVA_SimWeibull2", 2, {"beta", "gamma"}, false, "Weibull (2) Distribution."},
    {law::weibull3, "QUORVA_SimWeibull3", 3, {"beta", "gamma", "mu"}, false, "Weibull (3) Distribution."},
    {law::erlang, "QUORVA_SimErlang", 2, {"beta", "gamma"}, false, "Erlang Distribution."},
    {law::triangular, "QUORVA_SimTriangular", 3, {"a", "m", "b"}, false, "Triangular Distribution."},
    {law::pert, "QUORVA_SimPert", 3, {"a", "m", "b"}, false, "Pert Distribution."},
    {law::logistic, "QUORVA_SimLogistic", 2, {"mu", "sigma"}, false, "Logistic Distribution."},
    {law::uniformDiscrete, "QUORVA_SimUniformDisc", 2, {"a", "b"}, false, "Uniform discrete Distribution."},
    {law::beta4, "QUORVA_SimBeta4", 4, {"alpha", "beta", "c", "d"}, false, "Beta4 Distribution."},
    {law::trapezoidal, "QUORVA_SimTrapezoidal", 4, {"a", "b", "c", "d"}, false, "Trapezoidal Distribution."},
    {law::bernoulli, "QUORVA_SimBernoulli", 1, {"p"}, false, "Bernoulli Distribution."},
    {law::logNormal2, "QUORVA_SimLogNormal2", 2, {"mu", "sigma"}, false, "Lognormal2 Distribution."},
    {law::triangular, "QUORVA_SimTriangularQ", 5, {"a", "m", "b", "q1", "q2"}, false, "Triangular Distribution."},
    {law::arcsine, "QUORVA_SimArcsineG", 1, {"theta"}, true, "Arcus Sinus distribution."},
}};

constexpr int empiricLaw = 61;  ///< a list of values given by the user

/// Where the value of a statistic comes from.
enum class StatisticPath { RunningMoments, StoredSamples, Theoretical, Capability };

/// A worksheet function that reports one statistic of a field.
struct StatisticEntry {
    int statistic;  ///< StatisticId
    std::string_view wrapper;
    std::string_view help;
    StatisticPath path;
};

/// In the order of registration.
constexpr std::array<StatisticEntry, 59> statisticTable{{
    {1, "QUORVA_SimStatNbrObs", "Number of observations. ", StatisticPath::RunningMoments},
    {2, "QUORVA_SimStatNbrMiss", "Number of missing observations. ", StatisticPath::RunningMoments},
    {3, "QUORVA_SimStatSumOfWeights", "Sum of weights. ", StatisticPath::RunningMoments},
    {4, "QUORVA_SimStatMinimum", "Minimum. ", StatisticPath::RunningMoments},
    {5, "QUORVA_SimStatMaximum", "Maximum. ", StatisticPath::RunningMoments},
    {6, "QUORVA_SimStatFreqMin", "Frequency of the minimum. ", StatisticPath::StoredSamples},
    {7, "QUORVA_SimStatFreqMax", "Frequency of the maximum. ", StatisticPath::StoredSamples},
    {8, "QUORVA_SimStatAmplitude", "Amplitude. ", StatisticPath::RunningMoments},
    {9, "QUORVA_SimStat1stQuartile", "First quartile. ", StatisticPath::StoredSamples},
    {10, "QUORVA_SimStatMedian", "Median. ", StatisticPath::StoredSamples},
    {11, "QUORVA_SimStat3rdQuartile", "Third quartile. ", StatisticPath::StoredSamples},
    {12, "QUORVA_SimStatSum", "Sum of observations. ", StatisticPath::RunningMoments},
    {13, "QUORVA_SimStatMean", "Mean. ", StatisticPath::RunningMoments},
    {14, "QUORVA_SimStatVarianceN", "Variance N (Population). ", StatisticPath::RunningMoments},
    {15, "QUORVA_SimStatVarianceN1", "Variance N - 1 (Sample). ", StatisticPath::RunningMoments},
    {16, "QUORVA_SimStatStdevN", "Standard deviation N (Population). ", StatisticPath::RunningMoments},
    {17, "QUORVA_SimStatStdevN1", "Standard deviation N - 1 (Sample). ", StatisticPath::RunningMoments},
    {18, "QUORVA_SimStatVariation", "Variation. ", StatisticPath::RunningMoments},
    {19, "QUORVA_SimStatSkewnessPearson", "Skewness (Pearson). ", StatisticPath::RunningMoments},
    {20, "QUORVA_SimStatSkewnessFisher", "Skewness (Fisher). ", StatisticPath::RunningMoments},
    {21, "QUORVA_SimStatSkewnessBowley", "Skewness (Bowley). ", StatisticPath::StoredSamples},
    {22, "QUORVA_SimStatKurtosisPearson", "Kurtosis (Pearson). ", StatisticPath::RunningMoments},
    {23, "QUORVA_SimStatKurtosisFisher", "Kurtosis (Fisher). ", StatisticPath::RunningMoments},
    {24, "QUORVA_SimStatStdErrorOfMean", "Standard error of the mean. ", StatisticPath::RunningMoments},
    {25, "QUORVA_SimStatLowerBound95Perc", "Lower bound of the confidence intervall around the mean 95 %. ",
     StatisticPath::RunningMoments},
    {26, "QUORVA_SimStatUpperBound95Perc", "Upper bound of the confidence intervall around the mean 95 %. ",
     StatisticPath::RunningMoments},
    {27, "QUORVA_SimStatStdErrorOfSkewness", "Standard error of the skewness. ", StatisticPath::RunningMoments},
    {28, "QUORVA_SimStatStdErrorOfKurtosis", "Standard error of the kurtosis. ", StatisticPath::RunningMoments},
    {29, "QUORVA_SimStatMeanAbsDeviation", "Absolute deviation of the mean. ", StatisticPath::StoredSamples},
    {30, "QUORVA_SimStatMedianAbsDeviation", "Absolute deviation of the median. ", StatisticPath::StoredSamples},
    {31, "QUORVA_SimStatGeometricMean", "Geometric mean. ", StatisticPath::StoredSamples},
    {32, "QUORVA_SimStatGSD", "GSD (geometric standard deviation). ", StatisticPath::StoredSamples},
    {33, "QUORVA_SimStatHarmonicMean", "Harmonic mean. ", StatisticPath::StoredSamples},
    {51, "QUORVA_SimTheoMean", "Theoretic mean. ", StatisticPath::Theoretical},
    {52, "QUORVA_SimTheoVariance", "Theoretic variance. ", StatisticPath::Theoretical},
    {53, "QUORVA_SimTheoStdev", "Theoretic standard deviation. ", StatisticPath::Theoretical},
    {81, "QUORVA_SimSPCCp", "Cp. ", StatisticPath::Capability},
    {82, "QUORVA_SimSPCCpl", "Cp lower. ", StatisticPath::Capability},
    {83, "QUORVA_SimSPCCpu", "Cp upper. ", StatisticPath::Capability},
    {84, "QUORVA_SimSPCCpk", "Cpk. ", StatisticPath::Capability},
    {85, "QUORVA_SimSPCPp", "Pp. ", StatisticPath::Capability},
    {86, "QUORVA_SimSPCPpl", "Pp lower. ", StatisticPath::Capability},
    {87, "QUORVA_SimSPCPpu", "Pp upper. ", StatisticPath::Capability},
    {88, "QUORVA_SimSPCPpk", "Ppk. ", StatisticPath::Capability},
    {89, "QUORVA_SimSPCCpm", "Cpm. ", StatisticPath::Capability},
    {90, "QUORVA_SimSPCCpmBoyles", "Cpm Boyles. ", StatisticPath::Capability},
    {91, "QUORVA_SimSPCCp55", "Cp 5.15. ", StatisticPath::Capability},
    {92, "QUORVA_SimSPCCpk55", "Cpk 5.15. ", StatisticPath::Capability},
    {93, "QUORVA_SimSPCCpmk", "Cpmk. ", StatisticPath::Capability},
    {94, "QUORVA_SimSPCCsWright", "Wright's Cs. ", StatisticPath::Capability},
    {95, "QUORVA_SimSPCZbelow", "Z below. ", StatisticPath::Capability},
    {96, "QUORVA_SimSPCZabove", "Z above. ", StatisticPath::Capability},
    {97, "QUORVA_SimSPCZtotal", "Z total. ", StatisticPath::Capability},
    {98, "QUORVA_SimSPCpNCbelow", "p(not conform) below. ", StatisticPath::Capability},
    {99, "QUORVA_SimSPCpNCabove", "p(not conform) above. ", StatisticPath::Capability},
    {100, "QUORVA_SimSPCpNCtotal", "p(not conform) total. ", StatisticPath::Capability},
    {101, "QUORVA_SimSPCPPMbelow", "PPM below. ", StatisticPath::Capability},
    {102, "QUORVA_SimSPCPPMabove", "PPM above. ", StatisticPath::Capability},
    {103, "QUORVA_SimSPCPPMtotal", "PPM total. ", StatisticPath::Capability},
}};

}  // namespace quorva
