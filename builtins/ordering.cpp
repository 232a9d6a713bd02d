#include "builtins/ordering.h"

#include "runtime/workers.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace arrlib {

namespace {

constexpr std::ptrdiff_t least_keys = std::ptrdiff_t{1} << 15;

// Modulus, angle, and for what has both in common, by rounding, the two parts. Zeros are taken without
// their signs, which would turn the angle round.
OrderKey complex_key(double re, double im, std::ptrdiff_t which)
{
    if (re != re || im != im)
        return nan_key;
    switch (which) {
    case 0:
        return order_key(std::hypot(re, im));
    case 1:
        return order_key(std::atan2(im + 0.0, re + 0.0));
    case 2:
        return order_key(re);
    default:
        return order_key(im);
    }
}

// Key number `which` of an element; `im` may be null.
OrderKey element_key(double const* re, double const* im, std::ptrdiff_t at, bool complex, std::ptrdiff_t which)
{
    return complex ? complex_key(re[at], im ? im[at] : 0, which) : order_key(re[at]);
}

bool has_nan(double const* re, double const* im, std::ptrdiff_t at)
{
    return re[at] != re[at] || (im && im[at] != im[at]);
}

bool is_text(M<double> const& x)
{
    return x.size() == 0 || (x.isstr() && !x.issparse() && x.getndims() == 2 && x.rows() == 1);
}

} // namespace

// --- elements -------------------------------------------------------------------------------------

bool ElementKeys::load(Keyed* items, int count, std::ptrdiff_t which) const
{
    parallel_for(count, least_keys, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        for (std::ptrdiff_t k = from; k < to; ++k) {
            int const at = items[k].position, in_second = at - first_.count;
            items[k].key = in_second < 0 ? element_key(first_.re, first_.im, at, complex_, which) : element_key(second_.re, second_.im, in_second, complex_, which);
        }
    });
    return true;
}

bool ElementKeys::stands_alone(int position) const
{
    Numbers const& of = position < first_.count ? first_ : second_;
    return has_nan(of.re, of.im, position - (position < first_.count ? 0 : first_.count));
}

// --- rows -----------------------------------------------------------------------------------------

bool RowKeys::load(Keyed* items, int count, std::ptrdiff_t which) const
{
    std::ptrdiff_t const of_column = complex_ ? 4 : 1, listed = which / of_column;
    std::ptrdiff_t const column = columns_ ? columns_[listed] : listed + 1;
    std::ptrdiff_t const first = (column < 0 ? -column : column) - 1;
    OrderKey const downward = column < 0 ? ~OrderKey{0} : 0;
    for (int k = 0; k < count; ++k) {
        bool const second = items[k].position >= a_.rows();
        M<double> const& from = second ? b_ : a_;
        std::ptrdiff_t const row = items[k].position - (second ? a_.rows() : 0);
        items[k].key = downward ^ element_key(from.addr(), from.addi(), row + first * from.rows(), complex_, which % of_column);
    }
    return true;
}

bool RowKeys::stands_alone(int position) const
{
    bool const second = position >= a_.rows();
    M<double> const& from = second ? b_ : a_;
    std::ptrdiff_t const row = position - (second ? a_.rows() : 0);
    for (std::ptrdiff_t column = 0; column < from.cols(); ++column)
        if (has_nan(from.addr(), from.addi(), row + column * from.rows()))
            return true;
    return false;
}

// --- texts ----------------------------------------------------------------------------------------

bool holds_texts(Arguments const& args, M<M<double>> const& cells)
{
    return std::all_of(cells.addr(), cells.addr() + cells.size(), is_text) || args.report("argument must be a cell array of strings");
}

TextKeys::TextKeys(M<double> const* a, int a_count, M<double> const* b, int b_count, bool downward) : a_(a), b_(b), a_count_(a_count), downward_(downward)
{
    for (int k = 0; k < a_count + b_count; ++k)
        longest_ = std::max(longest_, text(k).size());
}

bool TextKeys::load(Keyed* items, int count, std::ptrdiff_t which) const
{
    OrderKey const turned = downward_ ? ~OrderKey{0} : 0;
    bool any = false;
    for (int k = 0; k < count; ++k) {
        M<double> const& x = text(items[k].position);
        any |= which < x.size();
        items[k].key = turned ^ (which < x.size() ? order_key(x.addr()[which]) : 0);
    }
    return any;
}

// --- the order ------------------------------------------------------------------------------------

bool Ordering::split(int from, int to, bool last_key)
{
    Keyed const* const items = items_.data();
    for (int k = from; k < to;) {
        OrderKey const key = items[k].key;
        saw_nan_ |= key == nan_key || key == ~nan_key;
        int end = k + 1;
        while (end < to && items[end].key == key)
            ++end;
        if (end - k > 1) {
            if (last_key) {
                std::fill(same_.data() + k + 1, same_.data() + end, static_cast<unsigned char>(1));
            } else {
                if (!tied_.grow(tied_count_ + 1))
                    return false;
                tied_[tied_count_++] = {k, end};
            }
        }
        k = end;
    }
    return true;
}

bool Ordering::sort(KeySource const& source, int count)
{
    auto const size = static_cast<std::size_t>(count);
    if (!items_.grow(size + 1) || !spare_.grow(size + 1) || !same_.grow(size + 1) || !tied_.grow(16))
        return false;
    count_ = count;
    saw_nan_ = false;
    for (int k = 0; k < count; ++k)
        items_.data()[k].position = k;
    std::fill_n(same_.data(), size, static_cast<unsigned char>(0));
    tied_[0] = {0, count};
    tied_count_ = 1;
    std::ptrdiff_t const keys = source.keys();
    if (keys == 0)
        std::fill_n(same_.data(), size, static_cast<unsigned char>(1));
    for (std::ptrdiff_t which = 0; which < keys && tied_count_ > 0; ++which) {
        std::swap(tied_, before_);
        std::size_t const groups = std::exchange(tied_count_, 0);
        for (std::size_t g = 0; g < groups; ++g) {
            auto const [from, to] = before_[g];
            if (!source.load(items_.data() + from, to - from, which)) {
                std::fill(same_.data() + from + 1, same_.data() + to, static_cast<unsigned char>(1));
                continue;
            }
            sort_stable(items_.data() + from, spare_.data() + from, to - from);
            if (!split(from, to, which == keys - 1))
                return false;
        }
    }
    for (int k = 1; saw_nan_ && k < count; ++k)
        if (same_.data()[k] && source.stands_alone(position(k)))
            same_.data()[k] = 0;
    return true;
}

} // namespace arrlib
