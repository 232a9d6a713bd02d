// Sorting gives the same whatever the number of threads that share in it.
#include "builtins/sets.h"
#include "builtins/sort.h"
#include "runtime/constants.h"
#include "runtime/workers.h"
#include "support/values.h"

#include <functional>
#include <random>

using namespace values;

TEST(SortThreads, MakeNoDifference)
{
    std::mt19937 random(1);
    Numbers drawn(300000);
    for (double& x : drawn)
        x = static_cast<double>(random() % 70000);
    M<double> const list = column(drawn), columns = matrix(300, 1000, drawn), rows = matrix(60000, 5, drawn), set = column(Numbers(drawn.begin(), drawn.begin() + 50));
    using Call = std::function<M<double>(M<double>&)>; // gives the positions to its argument
    M<double> y;
    Call const calls[] = {
        [&](M<double>&) { return sort(list); },
        [&](M<double>& i) { return sort(list, i_o, y, i); },
        [&](M<double>& i) { return sort(columns, i_o, y, i); },
        [&](M<double>& i) { return sort(rows, 2, i_o, y, i); },
        [&](M<double>& i) { return unique(list, i_o, y, i); },
        [&](M<double>& k) { return ismember(list, set, i_o, y, k); },
    };
    int const before = arrlib::set_parallel_limit(1);
    for (Call const& call : calls) {
        M<double> one_i, many_i;
        arrlib::set_parallel_limit(1);
        M<double> const one = call(one_i);
        arrlib::set_parallel_limit(4);
        M<double> const many = call(many_i);
        EXPECT_TRUE(numbers(one) == numbers(many) && numbers(one_i) == numbers(many_i)) << &call - calls;
    }
    arrlib::set_parallel_limit(before);
}
