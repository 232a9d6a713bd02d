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
// The same in plain doubles, several times faster, where that is as good to a few units in 1e-15.
using BoostDoublePolicy = boost_policies::normalise<BoostPolicy, boost_policies::promote_double<false>>::type;

} // namespace arrlib

#endif
