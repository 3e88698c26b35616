#include "numerics/core.h"

#include <cmath>
#include <limits>

#include "numerics/normal.h"
#include "numerics/student.h"

namespace quorva {

double CDFNormalStd(double x) { return normalCdf(x); }

double InvCDFNormalStd(double p) { return normalQuantile(p); }

double InvCDFStudent(double p, double df) {
    if (!(p >= 0 && p <= 1) || !(df > 0)) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    return studentQuantile(p, df);
}

}  // namespace quorva
