// How the mathematical library is called: in the precision of its arguments, errors as NaN or infinity.
#pragma once

// Assertions inside the library would end the host's process.
#ifndef BOOST_DISABLE_ASSERTS
#define BOOST_DISABLE_ASSERTS
#endif

#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/erf.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <limits>

namespace quorva {

namespace policies = boost::math::policies;

template <policies::error_policy_type unconverged>
using PolicyOf =
    policies::policy<policies::domain_error<policies::ignore_error>, policies::pole_error<policies::ignore_error>,
                     policies::overflow_error<policies::ignore_error>,
                     policies::underflow_error<policies::ignore_error>, policies::denorm_error<policies::ignore_error>,
                     policies::rounding_error<policies::ignore_error>, policies::evaluation_error<unconverged>,
                     policies::indeterminate_result_error<policies::ignore_error>, policies::promote_double<false>,
                     policies::promote_float<false>, policies::max_series_iterations<200000>>;

/// What does not converge is thrown, because the library returns the last value of such a series to its caller whatever
/// it is told to: see orNaN.
using NumericPolicy = PolicyOf<policies::throw_on_error>;

/// For first estimates, which are improved and judged by what NumericPolicy evaluates: better a rough one than none.
using GuessPolicy = PolicyOf<policies::ignore_error>;

/// Value of an evaluation under NumericPolicy that may fail to converge: NaN where it does.
template <class Evaluation>
auto orNaN(Evaluation evaluation) -> decltype(evaluation()) {
    try {
        return evaluation();
    } catch (const boost::math::evaluation_error&) {
        return std::numeric_limits<decltype(evaluation())>::quiet_NaN();
    }
}

}  // namespace quorva
