// How the mathematical library is called: in double, errors as NaN or infinity, never as exceptions.
#pragma once

// Assertions inside the library would end the host's process.
#ifndef BOOST_DISABLE_ASSERTS
#define BOOST_DISABLE_ASSERTS
#endif

#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/erf.hpp>
#include <boost/math/special_functions/gamma.hpp>

namespace quorva {

namespace policies = boost::math::policies;

template <bool Promote>
using PolicyOf = policies::policy<
    policies::domain_error<policies::ignore_error>, policies::pole_error<policies::ignore_error>,
    policies::overflow_error<policies::ignore_error>, policies::underflow_error<policies::ignore_error>,
    policies::denorm_error<policies::ignore_error>, policies::rounding_error<policies::ignore_error>,
    policies::evaluation_error<policies::ignore_error>, policies::indeterminate_result_error<policies::ignore_error>,
    policies::promote_double<Promote>, policies::promote_float<false>, policies::max_series_iterations<200000>>;

using NumericPolicy = PolicyOf<false>;

}  // namespace quorva
