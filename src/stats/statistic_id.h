// Identifiers of the statistics, as the catalogue numbers them.
#pragma once

namespace quorva::statistic {

constexpr int nbrObs = 1;
constexpr int nbrMiss = 2;
constexpr int sumOfWeights = 3;
constexpr int minimum = 4;
constexpr int maximum = 5;
constexpr int freqMin = 6;
constexpr int freqMax = 7;
constexpr int amplitude = 8;
constexpr int firstQuartile = 9;
constexpr int median = 10;
constexpr int thirdQuartile = 11;
constexpr int sum = 12;
constexpr int mean = 13;
constexpr int varianceN = 14;
constexpr int varianceN1 = 15;
constexpr int stdevN = 16;
constexpr int stdevN1 = 17;
constexpr int variation = 18;
constexpr int skewnessPearson = 19;
constexpr int skewnessFisher = 20;
constexpr int skewnessBowley = 21;
constexpr int kurtosisPearson = 22;
constexpr int kurtosisFisher = 23;
constexpr int stdErrorOfMean = 24;
constexpr int lowerBound95Perc = 25;
constexpr int upperBound95Perc = 26;
constexpr int stdErrorOfSkewness = 27;
constexpr int stdErrorOfKurtosis = 28;
constexpr int meanAbsDeviation = 29;
constexpr int medianAbsDeviation = 30;
constexpr int geometricMean = 31;
constexpr int geometricStdev = 32;
constexpr int harmonicMean = 33;
constexpr int lastOfSamples = 50;     ///< up to here statistics describe the values themselves
constexpr int firstTheoretical = 51;  ///< mean; then variance, standard deviation
constexpr int lastTheoretical = 53;
constexpr int lastOfLaw = 80;  ///< up to here statistics describe the law
constexpr int firstCapability = 81;
constexpr int lastCapability = 103;

}  // namespace quorva::statistic
