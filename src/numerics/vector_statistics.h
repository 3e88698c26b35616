// Descriptive statistics of a vector of n values. `flags` excludes an observation where it is not 0 (null: none);
// `weights` are the observations' weights (null: all 1). What is undefined (too few values, zero variance, a value
// that the statistic does not admit) is MissingValue.
//
// A NaN observation is counted. Quantiles take it for larger than every number; the minimum and the maximum pass it by
// unless there is nothing else; mean, variance, standard and mean absolute deviation become NaN; skewness, kurtosis,
// geometric and harmonic mean become MissingValue; V_Freq finds it equal to nothing. Beside
// numbers that are all equal it is no different.
#pragma once

namespace quorva {

void InitVectorToFalse(short* flags, int n);
double V_Mean2(const double* values, int n);
double V_Sum(const double* values, int n);
double V_Min(const double* values, int n, const short* flags);
double V_Max(const double* values, int n, const short* flags);
/// Quantile at position 1 + (n - 1) p between order statistics (Hyndman and Fan 1996, type 7).
double V_QuantileM(const double* values, int n, const short* flags, double p);
/// Weighted quantile at position 1 + (W - 1) p of the step-expanded sample; whole weights equal repetition.
double V_QuantileMW(const double* values, int n, const short* flags, const double* weights, double p);
/// `sample` -1 divides by the sum of weights - 1, 0 by the sum of weights; the last argument is 0.
void V_MeanStdev(const double* values, int n, double& mean, double& stdev, const short* flags, const double* weights,
                 short sample, short option);
void V_MeanVarSkewPKurtP(const double* values, int n, double& mean, double& variance, double& skewnessPearson,
                         double& kurtosisPearson, double& skewnessFisher, double& kurtosisFisher,
                         double& standardErrorSkewness, double& standardErrorKurtosis, const short* flags,
                         const double* weights, short option1, short option2);
void V_GMeanGSD(const double* values, int n, const short* flags, const double* weights, double& mean,
                double& deviation);
double V_HarmonicMean(const double* values, int n, const short* flags, const double* weights);
double V_MeanAbsDev(const double* values, int n, double mean, const short* flags, const double* weights);
double V_MedianAbsDev(const double* values, int n, double median, const short* flags, const double* weights);
/// Sum of the weights of the values with abs(x - value) <= tolerance.
double V_Freq(const double* values, int n, const double* weights, double value, double tolerance);
/// Host true (-1) when all n values are equal, else 0. The options are accepted and not used.
short V_IsConstant(const double* values, int n, int option1, int option2);

}  // namespace quorva
