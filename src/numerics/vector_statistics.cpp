#include "numerics/vector_statistics.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

#include "numerics/quantiles.h"
#include "quorva/automation.h"
#include "quorva/wire_format.h"

namespace quorva {
namespace {

/// The observations that take part: not excluded, with a positive weight. The values may be given in extended
/// precision.
template <class Value = double>
struct Sample {
    const Value* values;
    int n;
    const short* flags;
    const double* weights;

    bool has(int i) const { return (flags == nullptr || flags[i] == 0) && (weights == nullptr || weights[i] > 0); }
    long double weight(int i) const { return weights == nullptr ? 1.0L : weights[i]; }

    template <class Visit>
    void each(Visit visit) const {
        for (int i = 0; i < n; ++i) {
            if (has(i)) {
                visit(static_cast<long double>(values[i]), weight(i));
            }
        }
    }
};

/// Central moments as weighted means (divisor: the sum of the weights).
struct Moments {
    long double weight = 0;
    long double mean = 0;
    long double m2 = 0;
    long double m3 = 0;
    long double m4 = 0;
};

/// Two passes; the second takes out what rounding left in the mean. Extended precision keeps a large common offset
/// from eating the digits of the deviations. Equal values have moments of exactly 0.
template <class Value>
Moments momentsOf(const Sample<Value>& sample) {
    Moments result;
    long double sum = 0;
    sample.each([&](long double x, long double w) {
        result.weight += w;
        sum += w * x;
    });
    if (result.weight <= 0) {
        return result;
    }
    const long double first = sum / result.weight;
    long double lowest = INFINITY;
    long double highest = -INFINITY;
    long double drift = 0;
    sample.each([&](long double x, long double w) {
        drift += w * (x - first);
        lowest = std::min(lowest, x);
        highest = std::max(highest, x);
    });
    // The bounds pass over NaN, the sum does not.
    if (lowest == highest && !std::isnan(first)) {
        result.mean = lowest;
        return result;
    }
    result.mean = first + drift / result.weight;
    sample.each([&](long double x, long double w) {
        const long double d = x - result.mean;
        const long double d2 = d * d;
        result.m2 += w * d2;
        result.m3 += w * d2 * d;
        result.m4 += w * d2 * d2;
    });
    result.m2 /= result.weight;
    result.m3 /= result.weight;
    result.m4 /= result.weight;
    return result;
}

double orMissing(bool defined, long double value) { return defined ? static_cast<double>(value) : MissingValue; }

}  // namespace

void InitVectorToFalse(short* flags, int n) { std::fill_n(flags, std::max(n, 0), hostFalse); }

double V_Sum(const double* values, int n) {
    return static_cast<double>(std::accumulate(values, values + std::max(n, 0), 0.0L));
}

double V_Mean2(const double* values, int n) {
    const Moments moments = momentsOf(Sample<>{values, n, nullptr, nullptr});
    return orMissing(moments.weight > 0, moments.mean);
}

double V_Min(const double* values, int n, const short* flags) {
    return extremeOf(values, n, flags, std::less<double>());
}

double V_Max(const double* values, int n, const short* flags) {
    return extremeOf(values, n, flags, std::greater<double>());
}

double V_QuantileM(const double* values, int n, const short* flags, double p) {
    return quantileOf(values, n, flags, nullptr, p);
}

double V_QuantileMW(const double* values, int n, const short* flags, const double* weights, double p) {
    return quantileOf(values, n, flags, weights, p);
}

void V_MeanStdev(const double* values, int n, double& mean, double& stdev, const short* flags, const double* weights,
                 short sample, short) {
    const Moments moments = momentsOf(Sample<>{values, n, flags, weights});
    const long double divisor = moments.weight - (isTrue(sample) ? 1 : 0);
    mean = orMissing(moments.weight > 0, moments.mean);
    stdev = orMissing(divisor > 0, std::sqrt(moments.m2 * moments.weight / divisor));
}

void V_MeanVarSkewPKurtP(const double* values, int n, double& mean, double& variance, double& skewnessPearson,
                         double& kurtosisPearson, double& skewnessFisher, double& kurtosisFisher,
                         double& standardErrorSkewness, double& standardErrorKurtosis, const short* flags,
                         const double* weights, short, short) {
    const Moments moments = momentsOf(Sample<>{values, n, flags, weights});
    const long double w = moments.weight;
    const bool varies = moments.m2 > 0;
    const long double g1 = moments.m3 / (moments.m2 * std::sqrt(moments.m2));
    const long double g2 = moments.m4 / (moments.m2 * moments.m2) - 3;
    const long double seSkewness = std::sqrt(6 * w * (w - 1) / ((w - 2) * (w + 1) * (w + 3)));
    mean = orMissing(w > 0, moments.mean);
    variance = orMissing(w > 1, moments.m2 * w / (w - 1));
    skewnessPearson = orMissing(varies, g1);
    kurtosisPearson = orMissing(varies, g2);
    skewnessFisher = orMissing(varies && w > 2, std::sqrt(w * (w - 1)) / (w - 2) * g1);
    kurtosisFisher = orMissing(varies && w > 3, (w - 1) / ((w - 2) * (w - 3)) * ((w + 1) * g2 + 6));
    standardErrorSkewness = orMissing(w > 2, seSkewness);
    standardErrorKurtosis = orMissing(w > 3, 2 * seSkewness * std::sqrt((w * w - 1) / ((w - 3) * (w + 5))));
}

void V_GMeanGSD(const double* values, int n, const short* flags, const double* weights, double& mean,
                double& deviation) {
    const Sample<> sample{values, n, flags, weights};
    bool positive = true;
    sample.each([&](long double x, long double) { positive = positive && x > 0; });
    mean = deviation = MissingValue;
    if (!positive) {
        return;
    }
    std::vector<long double> logs(static_cast<std::size_t>(std::max(n, 0)));
    std::transform(values, values + logs.size(), logs.begin(),
                   [](long double x) { return x > 0 ? std::log(x) : 0.0L; });
    const Moments moments = momentsOf(Sample<long double>{logs.data(), n, flags, weights});
    const long double w = moments.weight;
    mean = orMissing(w > 0, std::exp(moments.mean));
    deviation = orMissing(w > 1, std::exp(std::sqrt(moments.m2 * w / (w - 1))));
}

double V_HarmonicMean(const double* values, int n, const short* flags, const double* weights) {
    bool positive = true;
    long double weight = 0;
    long double inverses = 0;
    Sample<>{values, n, flags, weights}.each([&](long double x, long double w) {
        positive = positive && x > 0;
        weight += w;
        inverses += w / x;
    });
    return orMissing(positive && weight > 0, weight / inverses);
}

double V_MeanAbsDev(const double* values, int n, double mean, const short* flags, const double* weights) {
    long double weight = 0;
    long double sum = 0;
    Sample<>{values, n, flags, weights}.each([&](long double x, long double w) {
        weight += w;
        sum += w * std::abs(x - static_cast<long double>(mean));
    });
    return orMissing(weight > 0, sum / weight);
}

double V_MedianAbsDev(const double* values, int n, double median, const short* flags, const double* weights) {
    std::vector<double> deviations(static_cast<std::size_t>(std::max(n, 0)));
    std::transform(values, values + deviations.size(), deviations.begin(),
                   [median](double x) { return std::abs(x - median); });
    return quantileOf(deviations.data(), n, flags, weights, 0.5);
}

double V_Freq(const double* values, int n, const double* weights, double value, double tolerance) {
    long double weight = 0;
    Sample<>{values, n, nullptr, weights}.each([&](long double x, long double w) {
        if (std::abs(x - static_cast<long double>(value)) <= static_cast<long double>(tolerance)) {
            weight += w;
        }
    });
    return static_cast<double>(weight);
}

short V_IsConstant(const double* values, int n, int, int) {
    return toHostBool(std::all_of(values, values + std::max(n, 0), [values](double x) { return x == values[0]; }));
}

}  // namespace quorva
