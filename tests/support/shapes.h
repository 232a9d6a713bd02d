// Values of every kind and shape, and a plain model of them.
#ifndef ARRLIB_TESTS_SUPPORT_SHAPES_H
#define ARRLIB_TESTS_SUPPORT_SHAPES_H

#include "core/access.h"

#include <gtest/gtest.h>

#include <array>
#include <complex>
#include <cstddef>
#include <random>
#include <vector>

namespace shapes {

using Sizes = std::array<int, 4>;

struct Kind {
    bool complex = false, sparse = false, string = false, logical = false;
};

// Four sizes and the elements in storage order.
struct Model {
    Sizes size{0, 0, 0, 0};
    std::vector<std::complex<double>> element;

    Model() = default;
    explicit Model(Sizes const& sizes) : size(sizes), element(static_cast<std::size_t>(count(sizes)))
    {
        if (element.empty())
            size = {0, 0, 0, 0};
    }
    std::complex<double>& at(Sizes const& s) { return element[position(s)]; }
    std::complex<double> at(Sizes const& s) const { return element[position(s)]; }
    // Calls for every place of the array.
    template <class Visit> void each(Visit visit) const
    {
        for (std::size_t k = 0; k < element.size(); ++k) {
            Sizes s{};
            int rest = static_cast<int>(k);
            for (std::size_t d = 0; d < 4; rest /= size[d++])
                s[d] = rest % size[d];
            visit(s);
        }
    }
    static int count(Sizes const& s) { return s[0] * s[1] * s[2] * s[3]; }

private:
    std::size_t position(Sizes const& s) const
    {
        return static_cast<std::size_t>(s[0] + size[0] * (s[1] + size[1] * (s[2] + size[2] * s[3])));
    }
};

inline Model model_of(M<double> const& value)
{
    int const* const d = value.getdims();
    Model model({d[0], d[1], d[2], d[3]});
    int last = -1;
    for (int k = 0; k < value.getnnz(); ++k) {
        int const at = value.issparse() ? value.getindex()[k] : k;
        EXPECT_LT(last, at);
        last = at;
        model.element.at(static_cast<std::size_t>(at)) = {value.addr()[k], value.isc() ? value.addi()[k] : 0};
    }
    return model;
}

inline void expect_equal(M<double> const& value, Model const& expected, Kind const& kind)
{
    Model const got = model_of(value);
    EXPECT_EQ(got.size, expected.size);
    EXPECT_EQ(got.element, expected.element);
    EXPECT_EQ(value.isc() != 0, kind.complex);
    EXPECT_EQ(value.issparse() != 0, kind.sparse);
    EXPECT_EQ(value.isstr() != 0, kind.string);
    EXPECT_EQ(value.islogical() != 0, kind.logical);
    EXPECT_EQ(value.getname(), nullptr);
}

class Source {
public:
    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    bool once_in(int n) { return below(n) == 0; }
    // Sparse values are two-dimensional.
    Kind kind() { return {once_in(3), once_in(3), once_in(4), once_in(3)}; }
    M<double> value(Kind const& kind, Sizes const& size)
    {
        using arrlib::Access;
        arrlib::Dims const shape(4, size.data());
        M<double> made = Access<double>::full(kind.complex, shape);
        if (kind.sparse)
            made = Access<double>::sparse_with_room(kind.complex, shape, 0, shape.count + 6);
        int stored = 0;
        for (int k = 0; k < shape.count; ++k) {
            if (kind.sparse && !once_in(3))
                continue;
            made.addr()[stored] = kind.logical ? 1 : 1 + below(100);
            if (kind.complex)
                made.addi()[stored] = below(100);
            if (kind.sparse)
                Access<double>::index(made)[stored] = k;
            ++stored;
        }
        made.getnnz() = stored;
        made.setstr(kind.string);
        made.setlogical(kind.logical);
        return made;
    }

private:
    std::mt19937 random_{20250117};
};

} // namespace shapes

#endif
