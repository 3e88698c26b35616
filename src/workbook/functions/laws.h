// Boost.Math's laws with the accuracy and the error handling that worksheet functions want, and rows of their tables.
#pragma once

#include <boost/math/distributions/beta.hpp>
#include <boost/math/distributions/binomial.hpp>
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/gamma.hpp>
#include <boost/math/distributions/negative_binomial.hpp>
#include <boost/math/distributions/poisson.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>
#include <exception>
#include <limits>

#include "workbook/evaluation/function_api.h"

namespace quorva::workbook::laws {

namespace policies = boost::math::policies;
/// Plain doubles; what has no value is a NaN, which becomes #NUM!. Discrete quantiles: the least whole number that
/// reaches the probability.
using Policy =
    policies::policy<policies::domain_error<policies::ignore_error>, policies::pole_error<policies::ignore_error>,
                     policies::overflow_error<policies::ignore_error>,
                     policies::underflow_error<policies::ignore_error>, policies::denorm_error<policies::ignore_error>,
                     policies::rounding_error<policies::ignore_error>,
                     policies::evaluation_error<policies::ignore_error>,
                     policies::indeterminate_result_error<policies::ignore_error>, policies::promote_float<false>,
                     policies::promote_double<false>, policies::discrete_quantile<policies::integer_round_up>>;

using Beta = boost::math::beta_distribution<double, Policy>;
using Binomial = boost::math::binomial_distribution<double, Policy>;
using ChiSquared = boost::math::chi_squared_distribution<double, Policy>;
using FisherF = boost::math::fisher_f_distribution<double, Policy>;
using Gamma = boost::math::gamma_distribution<double, Policy>;
using NegativeBinomial = boost::math::negative_binomial_distribution<double, Policy>;
using Poisson = boost::math::poisson_distribution<double, Policy>;
using StudentsT = boost::math::students_t_distribution<double, Policy>;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Degrees of freedom as they are taken: without their fraction, from 1 to 10^10; NaN otherwise.
inline double degreesOfFreedom(double n) { return n >= 1 && n <= 1e10 ? std::trunc(n) : nan; }

/// The quantile that `compute` finds; NaN where the iteration inside finds none (it reports that by an exception,
/// whatever the policy says).
template <class Compute>
double quantileOrNan(Compute&& compute) {
    try {
        return compute();
    } catch (const std::exception&) {
        return nan;
    }
}

inline bool isProbability(double p) { return p >= 0 && p <= 1; }

/// A function of numbers only (the last may be a Boolean: kinds "NNNB"); `optional` arguments at the end may be
/// missing.
constexpr FunctionRow numericRow(std::string_view name, std::string_view kinds, NumericFunction function,
                                 int optional = 0) {
    return {.name = name,
            .minArgs = static_cast<int>(kinds.size()) - optional,
            .maxArgs = static_cast<int>(kinds.size()),
            .kinds = kinds,
            .category = Category::Distribution,
            .numeric = function};
}

}  // namespace quorva::workbook::laws
