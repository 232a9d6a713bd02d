#include "ops/random.h"

#include "core/sparse.h"
#include "core/text.h"
#include "ops/creator.h"
#include "ops/random_generator.h"
#include "runtime/constants.h"
#include "runtime/parallel.h"
#include "support/capture.h"

#include <vector>

namespace {

using capture::Reports;
using capture::Texts;

constexpr char wrong_state[] = "rand('state',y): y must be scalar or 35-element state matrix";

std::vector<double> elements(M<double> const& value)
{
    return {value.addr(), value.addr() + value.size()};
}

class Random : public testing::Test {
protected:
    Random()
    {
        randM(TM("seed"), 0);
        randM(TM("state"), 0);
        randn(TM("seed"), 0);
    }
};

TEST_F(Random, FillsColumnsFirst)
{
    struct {
        M<double> (*none)();
        M<double> (*one)(M<double> const&);
        M<double> (*two)(M<double> const&, M<double> const&);
        M<double> (*three)(M<double> const&, M<double> const&, M<double> const&);
        M<double> (*four)(M<double> const&, M<double> const&, M<double> const&, M<double> const&);
    } const functions[] = {{randM, randM, randM, randM, randM}, {randn, randn, randn, randn, randn}};
    M<double> sizes(0, 1, 2);
    sizes.addr()[0] = 3;
    sizes.addr()[1] = 2;
    for (auto const& f : functions) {
        M<double> const made[] = {f.none(), f.one(2), f.one(sizes), f.two(3, 2), f.three(2, 1, 3), f.four(1, 2, 1, 2)};
        int const expected[][5] = {{2, 1, 1, 1, 1}, {2, 2, 2, 1, 1}, {2, 3, 2, 1, 1}, {2, 3, 2, 1, 1}, {3, 2, 1, 3, 1}, {4, 1, 2, 1, 2}};
        randM(TM("state"), 0);
        randn(TM("state"), 0);
        for (int k = 0; k < 6; ++k) {
            EXPECT_EQ(made[k].getndims(), expected[k][0]);
            EXPECT_TRUE(std::equal(expected[k] + 1, expected[k] + 5, made[k].getdims())) << k;
            for (int e = 1; e <= made[k].size(); ++e)
                EXPECT_EQ(*made[k].addr(e), *f.none().addr()) << k << " " << e;
        }
    }
}

TEST_F(Random, StateComesBack)
{
    randM(TM("state"), 5);
    auto const a = elements(randM(1, 3));
    randM(TM("state"), 5);
    EXPECT_EQ(elements(randM(1, 3)), a);

    M<double> const state = randM(TM("state"));
    EXPECT_EQ(state.rows(), 35);
    EXPECT_EQ(state.cols(), 1);
    auto const b = elements(randM(40, 40));
    // Any value of 35 elements will do.
    M<double> complex(1, 5, 7);
    std::copy_n(state.addr(), 35, complex.addr());
    std::fill_n(complex.addi(), 35, 9.0);
    for (M<double> const& saved : {state, complex, sparse(state)}) {
        EXPECT_TRUE(randM(TM("state"), saved).issamename(x_Mp));
        EXPECT_EQ(elements(randM(40, 40)), b);
    }
}

TEST_F(Random, SelectorFollowsWhatIsSet)
{
    EXPECT_EQ(randM(TM("seed")).r(), 931316785);
    EXPECT_TRUE(randM(TM("seed"), 1).issamename(x_Mp));
    EXPECT_EQ(arrlib::rand_uses_state, 0);
    // Reading either changes nothing.
    randM(TM("state"));
    EXPECT_EQ(randM(TM("seed")).r(), 1);
    EXPECT_EQ(randM().r(), 65536 * 16807.0 * 4.656612875245797e-10);
    randM(TM("state"), 1);
    EXPECT_EQ(arrlib::rand_uses_state, 1);
    double const first = randM().r();
    randM(TM("state"), 1);
    EXPECT_EQ(randM().r(), first);
}

TEST_F(Random, NormalsHaveASeedOfTheirOwn)
{
    for (char const* word : {"state", "seed"}) {
        randM(TM("seed"), 3);
        double const first = randM().r();
        randM(TM("seed"), 3);
        EXPECT_TRUE(randn(TM(word), 7).issamename(x_Mp));
        EXPECT_EQ(randn(TM("state")).r(), 7);
        EXPECT_EQ(randn(TM("seed")).r(), 7);
        EXPECT_EQ(randM().r(), first);
        // The first of many elements counts.
        randn(TM(word), ones(7, 5));
        EXPECT_EQ(randn(TM(word)).r(), 1);
        EXPECT_EQ(randM(TM("seed")).size(), 1);
    }
}

// While it is reported the lock is free, and the selector is set already.
TEST_F(Random, ReportsAStateOfTheWrongSize)
{
    struct Hook {
        static void draw(char const* message)
        {
            EXPECT_STREQ(message, wrong_state);
            EXPECT_EQ(arrlib::rand_uses_state, 1);
            EXPECT_EQ(randM(2).size(), 4);
        }
    };
    int const before = arrlib::multi_thread_switch;
    nx_set_MT(1);
    nx_set_error_handler(Hook::draw);
    for (M<double> const& y : {ones(3), M<double>(), ones(1, 36), TM("ab")}) {
        randM(TM("seed"), 1);
        EXPECT_TRUE(randM(TM("state"), y).issamename(x_Mp));
    }
    nx_set_MT(before);
    nx_set_error_handler(nullptr);

    Reports const reports;
    randM(TM("state"), ones(3));
    EXPECT_EQ(reports.all(), Texts{wrong_state});
}

TEST_F(Random, OtherTextsAreSizes)
{
    Reports const reports;
    // The words are to be written as they are, and to be text.
    EXPECT_TRUE(randM(TM("State")).issamename(x_Mp));
    EXPECT_TRUE(randM(TM("states")).issamename(x_Mp));
    M<double> numbers = TM("state");
    numbers.setstr(0);
    EXPECT_TRUE(randn(numbers).issamename(x_Mp));
    EXPECT_EQ(reports.all(), Texts(3, "eye01: too many dimensions"));
    EXPECT_EQ(randM(TM("\2")).size(), 4);
    EXPECT_EQ(randM(M<double>()).addr(), nop_M.addr());
}

TEST_F(Random, LosesNothingWithoutMemory)
{
    M<double> const word = TM("state"), side(30.0);
    capture::with_every_allocation_refused([&] { randM(word); });
    capture::with_every_allocation_refused([&] { randn(side); });
}

} // namespace
