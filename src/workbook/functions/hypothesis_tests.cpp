// Tests of hypotheses and confidence intervals.
#include <algorithm>
#include <cmath>

#include "workbook/functions/families.h"
#include "workbook/functions/laws.h"
#include "workbook/functions/normal.h"
#include "workbook/functions/samples.h"

namespace quorva::workbook {

namespace {

using namespace laws;
using boost::math::complement;

/// CONFIDENCE.NORM(alpha, standard deviation, size): half the width of the mean's interval.
double confidenceNormal(const double* x, int) {
    const double size = std::trunc(x[2]);
    return x[0] > 0 && x[0] < 1 && x[1] > 0 && size >= 1 ? -normalQuantile(x[0] / 2) * x[1] / std::sqrt(size) : nan;
}

Value confidenceStudent(Call&, Arguments arguments) {
    const double alpha = arguments[0].number();
    const double deviation = arguments[1].number();
    const double size = std::trunc(arguments[2].number());
    if (alpha <= 0 || alpha >= 1 || deviation <= 0 || size < 1) {
        return ErrorCode::Num;
    }
    return size == 1 ? Value(ErrorCode::Div0) : Value(-quantileOrNan([&] {
        return quantile(StudentsT(size - 1), alpha / 2);
    }) * deviation / std::sqrt(size));
}

double count(Sample sample) { return static_cast<double>(sample.size()); }
double mean(Sample sample) { return sumOf(sample) / count(sample); }
double variance(Sample sample) { return squaredDeviations(sample) / (count(sample) - 1); }

Value tails(double t, double freedom, double tailCount) { return tailCount * cdf(StudentsT(freedom), -std::fabs(t)); }

Value pairedTest(Sample first, Sample second, double tailCount) {
    std::vector<double> differences;
    for (std::size_t i = 0; i < first.size(); ++i) {
        differences.push_back(first[i] - second[i]);
    }
    const Sample sample = differences;
    if (sample.size() < 2 || variance(sample) == 0) {
        return ErrorCode::Div0;
    }
    return tails(mean(sample) / std::sqrt(variance(sample) / count(sample)), count(sample) - 1, tailCount);
}

/// Equal variances are pooled; otherwise the degrees of freedom are Welch's.
Value twoSampleTest(Sample first, Sample second, double tailCount, bool equalVariances) {
    if (first.size() < 2 || second.size() < 2) {
        return ErrorCode::Div0;
    }
    const double a = variance(first) / count(first);
    const double b = variance(second) / count(second);
    double freedom = count(first) + count(second) - 2;
    double squaredError = a + b;
    if (equalVariances) {
        const double pooled = (squaredDeviations(first) + squaredDeviations(second)) / freedom;
        squaredError = pooled * (1 / count(first) + 1 / count(second));
    }
    if (squaredError == 0) {
        return ErrorCode::Div0;
    }
    if (!equalVariances) {
        freedom = (a + b) * (a + b) / (a * a / (count(first) - 1) + b * b / (count(second) - 1));
    }
    return tails((mean(first) - mean(second)) / std::sqrt(squaredError), freedom, tailCount);
}

/// T.TEST(first, second, tails, type): type 1 paired, 2 equal variances, 3 unequal variances.
Value studentTest(Call& call, Arguments arguments) {
    const double tailCount = std::trunc(arguments[2].number());
    const double type = std::trunc(arguments[3].number());
    if (type == 1) {
        const auto pairs = collectPairs(call, arguments[0], arguments[1]);
        if (!pairs) {
            return pairs.error();
        }
        return tailCount == 1 || tailCount == 2 ? pairedTest(pairs->first, pairs->second, tailCount)
                                                : Value(ErrorCode::Num);
    }
    const auto first = collectNumbers(call, arguments.subspan(0, 1));
    const auto second = collectNumbers(call, arguments.subspan(1, 1));
    if (!first || !second) {
        return first ? second.error() : first.error();
    }
    if ((tailCount != 1 && tailCount != 2) || (type != 2 && type != 3)) {
        return ErrorCode::Num;
    }
    return twoSampleTest(*first, *second, tailCount, type == 2);
}

/// F.TEST: the two-tailed probability that the variances do not differ.
Value varianceTest(Call& call, Arguments arguments) {
    const auto first = collectNumbers(call, arguments.subspan(0, 1));
    const auto second = collectNumbers(call, arguments.subspan(1, 1));
    if (!first || !second) {
        return first ? second.error() : first.error();
    }
    if (first->size() < 2 || second->size() < 2 || variance(*first) == 0 || variance(*second) == 0) {
        return ErrorCode::Div0;
    }
    const FisherF law(count(*first) - 1, count(*second) - 1);
    const double ratio = variance(*first) / variance(*second);
    return 2 * std::min(cdf(law, ratio), cdf(complement(law, ratio)));
}

/// CHISQ.TEST(actual, expected): the probability of at least this distance between the two tables.
Value chiSquaredTest(Call& call, Arguments arguments) {
    const auto pairs = collectPairs(call, arguments[0], arguments[1]);
    if (!pairs) {
        return pairs.error();
    }
    const Grid actual = arguments[0].grid(call);
    const Grid expected = arguments[1].grid(call);
    if (actual.rows() != expected.rows() || actual.columns() != expected.columns() || actual.size() < 2) {
        return ErrorCode::NA;
    }
    double distance = 0;
    for (std::size_t i = 0; i < pairs->first.size(); ++i) {
        const double e = pairs->second[i];
        if (e == 0) {
            return ErrorCode::Div0;
        }
        if (e < 0) {
            return ErrorCode::Num;
        }
        distance += (pairs->first[i] - e) * (pairs->first[i] - e) / e;
    }
    const double rows = actual.rows();
    const double columns = actual.columns();
    const double freedom = rows == 1 || columns == 1 ? rows * columns - 1 : (rows - 1) * (columns - 1);
    return cdf(complement(ChiSquared(freedom), distance));
}

/// Z.TEST(sample, x, sigma): the probability of a mean above the sample's; without sigma its standard deviation.
Value normalTest(Call& call, Arguments arguments) {
    const auto sample = collectNumbers(call, arguments.subspan(0, 1));
    if (!sample) {
        return sample.error();
    }
    if (sample->empty()) {
        return ErrorCode::NA;
    }
    double sigma = 0;
    if (arguments.size() > 2 && !arguments[2].missing) {
        sigma = arguments[2].number();
        if (sigma <= 0) {
            return ErrorCode::Num;
        }
    } else if (sample->size() >= 2) {
        sigma = std::sqrt(variance(*sample));
    }
    if (sigma == 0) {
        return ErrorCode::Div0;
    }
    return normalProbability((arguments[1].number() - mean(*sample)) * std::sqrt(count(*sample)) / sigma);
}

constexpr FunctionRow row(std::string_view name, std::string_view kinds, Function function, int optional = 0) {
    return {.name = name,
            .minArgs = static_cast<int>(kinds.size()) - optional,
            .maxArgs = static_cast<int>(kinds.size()),
            .kinds = kinds,
            .category = Category::Distribution,
            .function = function};
}

constexpr FunctionRow table[] = {
    row("CHISQ.TEST", "AA", chiSquaredTest),
    row("CHITEST", "AA", chiSquaredTest),
    numericRow("CONFIDENCE", "NNN", confidenceNormal),
    numericRow("CONFIDENCE.NORM", "NNN", confidenceNormal),
    row("CONFIDENCE.T", "NNN", confidenceStudent),
    row("F.TEST", "AA", varianceTest),
    row("FTEST", "AA", varianceTest),
    row("T.TEST", "AANN", studentTest),
    row("TTEST", "AANN", studentTest),
    row("Z.TEST", "RNN", normalTest, 1),
    row("ZTEST", "RNN", normalTest, 1),
};

}  // namespace

std::span<const FunctionRow> testFunctions() { return table; }

}  // namespace quorva::workbook
