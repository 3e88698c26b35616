#include "numerics/studies.h"

#include <algorithm>
#include <cmath>

#include "numerics/core.h"
#include "quorva/wire_format.h"

namespace quorva {
namespace {

/// What the indices are made of. A limit that is absent is MissingValue.
struct Process {
    int n;
    double LSL;
    double USL;
    double target;
    double stdev;
    double mean;

    bool hasLower() const { return LSL != MissingValue; }
    bool hasUpper() const { return USL != MissingValue; }
    bool hasBoth() const { return hasLower() && hasUpper(); }
    double offTarget() const { return mean - target; }
};

/// (USL - LSL) / spread; the spread is the width that the process needs.
double twoSided(const Process& process, double spread) {
    return process.hasBoth() ? (process.USL - process.LSL) / spread : MissingValue;
}

double lowerSide(const Process& process, double spread) {
    return process.hasLower() ? (process.mean - process.LSL) / spread : MissingValue;
}

double upperSide(const Process& process, double spread) {
    return process.hasUpper() ? (process.USL - process.mean) / spread : MissingValue;
}

double worseSide(const Process& process, double spread) {
    return process.hasBoth() ? std::min(lowerSide(process, spread), upperSide(process, spread)) : MissingValue;
}

double beyondLower(const Process& process) {
    return process.hasLower() ? CDFNormalStd(-lowerSide(process, process.stdev)) : 0.0;
}

double beyondUpper(const Process& process) {
    return process.hasUpper() ? CDFNormalStd(-upperSide(process, process.stdev)) : 0.0;
}

double beyondEither(const Process& process) { return beyondLower(process) + beyondUpper(process); }

/// Deviation about the target instead of the mean, from a variance.
double aboutTarget(const Process& process, double variance) {
    return std::sqrt(variance + process.offTarget() * process.offTarget());
}

double capability(const Process& process, int index) {
    const double s = process.stdev;
    const double variance = s * s;
    const double populationVariance = variance * (process.n - 1.0) / process.n;
    constexpr double partsPerMillion = 1e6;
    switch (index) {
        case 1:
        case 5:
            return twoSided(process, 6 * s);
        case 2:
        case 6:
            return lowerSide(process, 3 * s);
        case 3:
        case 7:
            return upperSide(process, 3 * s);
        case 4:
        case 8:
            return worseSide(process, 3 * s);
        case 9:
            return twoSided(process, 6 * aboutTarget(process, variance));
        case 10:
            return twoSided(process, 6 * aboutTarget(process, populationVariance));
        case 11:
            return twoSided(process, 5.15 * s);
        case 12:
            return worseSide(process, 2.575 * s);
        case 13:
        case 14:  // Wright's skewness term is 0 for the normal model.
            return worseSide(process, 3 * aboutTarget(process, variance));
        case 15:
            return lowerSide(process, s);
        case 16:
            return upperSide(process, s);
        case 17:
            return -InvCDFNormalStd(beyondEither(process));
        case 18:
            return beyondLower(process);
        case 19:
            return beyondUpper(process);
        case 20:
            return beyondEither(process);
        case 21:
            return partsPerMillion * beyondLower(process);
        case 22:
            return partsPerMillion * beyondUpper(process);
        default:
            return partsPerMillion * beyondEither(process);
    }
}

bool usesTarget(int index) { return index == 9 || index == 10 || index == 13 || index == 14; }

}  // namespace

int calcPcapDescOne(int n, double LSL, double USL, double target, double, double stdev, double mean, double& result,
                    int index) {
    result = MissingValue;
    if (index < 1 || index > 23) {
        return -1;
    }
    const bool defined = stdev != MissingValue && std::isfinite(stdev) && stdev > 0 && n > 0;
    if (defined && !(usesTarget(index) && target == MissingValue)) {
        result = capability({n, LSL, USL, target, stdev, mean}, index);
    }
    return 0;
}

}  // namespace quorva
