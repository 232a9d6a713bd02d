// With ARRLIB_TEST_CHAINS in the environment all tests of the program run with results of that many elements
// waiting for the end of their statement, so that whatever forgets to ask for elements that are due is found.
#include "ops/chain.h"

#include <cstdlib>

static bool const shortened = [] {
    if (char const* const least = std::getenv("ARRLIB_TEST_CHAINS"))
        arrlib::least_in_chain = std::atoi(least);
    return true;
}();
