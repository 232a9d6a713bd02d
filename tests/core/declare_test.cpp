// What translated programs state about variables, and the helpers that name and unwrap them.
#include "arrlib.h"
#include "support/capture.h"

#include <cstring>
#include <limits>

using namespace capture;

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();

M<double> complex_value(double re, double im)
{
    M<double> made(1, 1, 1);
    *made.addr() = re;
    *made.addi() = im;
    return made;
}

M<double> row(int cols, double value)
{
    M<double> made(0, 1, cols);
    for (int k = 1; k <= cols; ++k)
        *made.addr(k) = value;
    return made;
}

M<double> square(double value)
{
    M<double> made = row(4, value);
    made.reshape(2, 2);
    return made;
}

M<double> sparse_scalar(double value)
{
    M<double> made(0, 1, 1, 1);
    *made.spaddr() = value;
    return made;
}

// Each checker against each value: the first word of the checker's name that does not hold, 'i' for
// integer, 'r' for real, 's' for scalar, 'v' for vector, '-' for none.
TEST(Declare, CheckersReportTheFirstPropertyThatFails)
{
    struct {
        M<double> value;
        char const* failing; // one letter per checker
    } const values[] = {
        //                            int  iR  iRS  iRV  iS  iV  S  V
        {M<double>(-3), "--------"},
        {M<double>(2.5), "iiiiii--"},
        {row(3, 4), "--s-s-s-"},
        {row(3, 0.5), "iiiiiis-"},
        {square(1), "--svsvsv"},
        {complex_value(1, 2), "-rrr----"},
        {complex_value(1, 0.5), "iiiiii--"},
        {M<double>(), "--svsvsv"},
        {sparse_scalar(0.5), "iiiiii--"},
        {sparse_scalar(2), "--------"},
        {TM("ab"), "--s-s-s-"},
        {M<double>(inf), "--------"},
        {NaN, "iiiiii--"},
    };
    struct {
        char const* name;
        M<double> (*check)(M<double> const&);
    } const checkers[] = {
        {"mbint", mbint}, {"mbintreal", mbintreal}, {"mbintrealscalar", mbintrealscalar}, {"mbintrealvector", mbintrealvector},
        {"mbintscalar", mbintscalar}, {"mbintvector", mbintvector}, {"mbscalar", mbscalar}, {"mbintvector", mbvector},
    };
    auto const word = [](char letter) { return letter == 'i' ? "integer" : letter == 'r' ? "real" : letter == 's' ? "scalar" : "vector"; };
    for (auto const& one : values) {
        M<double> value = one.value;
        value.setname("x");
        for (std::size_t k = 0; k < std::size(checkers); ++k) {
            Reports const reports;
            EXPECT_EQ(checkers[k].check(value).addr(), x_M.addr());
            Texts const expected = one.failing[k] == '-' ? Texts{} : Texts{std::string(checkers[k].name) + ": x not " + word(one.failing[k])};
            EXPECT_EQ(reports.all(), expected) << one.failing << ", checker " << k;
        }
    }
    Reports const reports;
    mbint(M<double>(2.5));
    mbscalar(row(2, 0));
    EXPECT_EQ(reports.all(), (Texts{"mbint: =2 not integer", "mbscalar: (temporary) not scalar"}));
}

TEST(Declare, ScalarUnwrapsOneNumber)
{
    Reports const reports;
    EXPECT_EQ(scalar(M<double>(2.5)), 2.5);
    EXPECT_TRUE(reports.all().empty());
    M<double> text = TM("a"), complex_text = complex_value(7, 0);
    text.setname("t");
    complex_text.setname("c");
    complex_text.setstr(1);
    M<double> sparse = sparse_scalar(3), none;
    sparse.setname("s");
    none.setname("e");
    EXPECT_EQ(scalar(text), 97);
    EXPECT_EQ(scalar(complex_text), 7);
    EXPECT_EQ(scalar(sparse), 3);
    EXPECT_EQ(scalar(none), 0);
    EXPECT_EQ(scalar(row(2, 5)), 5);
    EXPECT_EQ(scalar(M<M<double>>()), 0);
    EXPECT_EQ(reports.all(), (Texts{"scalar: matrix t is string", "scalar: matrix c is complex", "scalar: matrix s is sparse", "scalar: matrix e is not scalar",
                                    "scalar: matrix (temporary) is not scalar", "scalar: cell matrix is not accepted"}));
}

TEST(Declare, TextLiterals)
{
    M<double> const text = TM("a\x7F\x80\xFF");
    EXPECT_EQ(text.rows(), 1);
    EXPECT_EQ(text.cols(), 4);
    EXPECT_EQ(text.isstr(), 1);
    double const codes[] = {97, 127, -128, -1};
    EXPECT_EQ(std::memcmp(text.addr(), codes, sizeof codes), 0);
    EXPECT_EQ(text.getname(), nullptr);
    for (char const* empty : {"", static_cast<char const*>(nullptr)}) {
        M<double> const nothing = TM(empty);
        EXPECT_EQ(nothing.rows() + nothing.cols(), 0);
        EXPECT_EQ(nothing.getndims(), 2);
        EXPECT_EQ(nothing.isstr(), 1);
    }
    // The name goes by address, not by text.
    std::string const same = l_Mp;
    EXPECT_EQ(TM(l_Mp).getname(), l_Mp);
    EXPECT_EQ(TM(same.c_str()).getname(), nullptr);
    EXPECT_EQ(TM(l_Mp).cols(), 3);
}

TEST(Declare, ValuesAsCStrings)
{
    Warnings const warnings;
    Printed const printed;
    char text[8];
    EXPECT_EQ(Mstr(TM("abc"), text, 7), 3);
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(Mstr(TM("abcdefg"), text, 7), 7);
    EXPECT_STREQ(text, "abcdefg");
    EXPECT_EQ(Mstr(M<double>(), text, 7), 0);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(Mstr(TM("\xE4"), text, 7), 1);
    EXPECT_STREQ(text, "\xE4");
    EXPECT_EQ(Mstr(M<double>(65.9), text, 7), 1);
    EXPECT_STREQ(text, "A");
    EXPECT_EQ(Mstr(M<double>(1e300), text, 7), 1);
    EXPECT_EQ(text[0], '\0');
    EXPECT_EQ(Mstr(sparse_scalar(66), text, 7), 1);
    EXPECT_STREQ(text, "B");
    EXPECT_TRUE(warnings.all().empty());
    EXPECT_EQ(Mstr(TM("abcdefgh"), text, 7), 7);
    EXPECT_STREQ(text, "abcdefg");
    EXPECT_EQ(warnings.all(), Texts{"Mstr: buffer too small - chopped"});
    EXPECT_EQ(printed.text(), "abcdefg...\n");
}

template <class Value> void ended(Value* variable)
{
    char* const name = const_cast<char*>(variable->getname());
    delete variable;
    arrlib::platform::heap_release(name);
}

TEST(Declare, VariablesAreMadeOnFirstUse)
{
    std::string name = "made";
    void* slot = nullptr;
    M<double>* const made = void_to_M(name.c_str(), &slot);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->size(), 0);
    name = "gone";
    EXPECT_STREQ(made->getname(), "made");
    EXPECT_EQ(void_to_M("other", &slot), made);
    EXPECT_EQ(slot, made);
    EXPECT_STREQ(made->getname(), "made");
    void* cell_slot = nullptr;
    M<M<double>>* const cell = void_to_MM("c", &cell_slot);
    EXPECT_STREQ(cell->classname(), "cell_double");
    EXPECT_EQ(cell->size(), 0);
    EXPECT_EQ(void_to_MM("c", &cell_slot), cell);
    ended(made);
    ended(cell);
}

TEST(Declare, MemoryThatFailsIsReported)
{
    with_every_allocation_refused([] {
        void* slot = nullptr;
        M<double>* const made = void_to_M("name", &slot);
        EXPECT_EQ(made, slot);
        if (made)
            ended(made);
    });
    with_every_allocation_refused([] {
        M<double> const text = TM("a text that needs a block of the heap, not a chunk of the pool");
        EXPECT_TRUE(text.size() == 0 || text.size() == 62);
    });
    // One entry of many: the full form needs memory of its own.
    M<double> sparse(0, 1, 1, 1000);
    *sparse.spaddr() = 65;
    with_every_allocation_refused([&] {
        char text[1001];
        int const copied = Mstr(sparse, text, 1000);
        EXPECT_TRUE(copied == 0 || copied == 1000);
        EXPECT_EQ(text[copied], '\0');
    });
    // Thrown: nothing is left in the slot.
    void* slot = nullptr;
    {
        FailingHeap const heap(1);
        EXPECT_EQ(thrown_by([&] { void_to_M("name", &slot); }), "Error: Out of memory!\n\n");
        EXPECT_TRUE(heap.balanced());
    }
    EXPECT_EQ(slot, nullptr);
}

} // namespace
