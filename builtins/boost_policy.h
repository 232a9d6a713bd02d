// How the library calls Boost.Math.
#ifndef ARRLIB_BUILTINS_BOOST_POLICY_H
#define ARRLIB_BUILTINS_BOOST_POLICY_H

#include <boost/math/policies/policy.hpp>

namespace arrlib {

namespace boost_policies = boost::math::policies;

// Arguments out of range give NaN and large values infinity, without a word; series that do not end
// throw an evaluation_error, which the caller catches. Doubles are worked on as `long double`.
using BoostPolicy = boost_policies::policy<boost_policies::domain_error<boost_policies::ignore_error>, boost_policies::pole_error<boost_policies::ignore_error>,
    boost_policies::overflow_error<boost_policies::ignore_error>, boost_policies::rounding_error<boost_policies::ignore_error>,
    boost_policies::indeterminate_result_error<boost_policies::ignore_error>, boost_policies::evaluation_error<boost_policies::throw_on_error>>;

} // namespace arrlib

#endif
