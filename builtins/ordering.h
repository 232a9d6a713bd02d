// The order of things that have several keys each: complex numbers, rows, texts.
#ifndef ARRLIB_BUILTINS_ORDERING_H
#define ARRLIB_BUILTINS_ORDERING_H

#include "builtins/args.h"
#include "builtins/sort_keys.h"
#include "core/heap_array.h"

#include <cstddef>

namespace arrlib {

// Things numbered from 0 that are ordered by their first keys, those that agree in it by their second
// ones, and so on.
class KeySource {
public:
    virtual ~KeySource() = default;
    virtual std::ptrdiff_t keys() const = 0;
    // Writes key number `which`, from 0, of the things that `items` hold the positions of. False when
    // they agree in this key and all further ones; nothing needs to be written then.
    virtual bool load(Keyed* items, int count, std::ptrdiff_t which) const = 0;
    // Whether the thing equals nothing, not even itself: there is a NaN in it.
    virtual bool stands_alone(int position) const = 0;
};

// The numbers of one or two operands, those of the second one after those of the first: complex ones in
// the order of modulus, then angle.
class ElementKeys : public KeySource {
public:
    // What is left tied after the angle: nothing but equal numbers, or what sorts as equal as well.
    enum class Ties { equal, by_angle };

    // Full values, which outlive it.
    explicit ElementKeys(M<double> const& a, Ties ties = Ties::equal) : ElementKeys(a.addr(), a.addi(), a.size(), ties) {}
    ElementKeys(M<double> const& a, M<double> const& b) : first_{a.addr(), a.addi(), a.size()}, second_{b.addr(), b.addi(), b.size()}, complex_(a.isc() || b.isc()) {}
    // `im` is null for real ones.
    ElementKeys(double const* re, double const* im, int count, Ties ties) : first_{re, im, count}, complex_(im != nullptr), ties_(ties) {}

    std::ptrdiff_t keys() const override { return !complex_ ? 1 : ties_ == Ties::equal ? 4 : 2; }
    bool load(Keyed* items, int count, std::ptrdiff_t which) const override;
    bool stands_alone(int position) const override;

private:
    struct Numbers {
        double const *re = nullptr, *im = nullptr;
        int count = 0;
    };

    Numbers first_, second_;
    bool complex_;
    Ties ties_ = Ties::equal;
};

// The rows of one or two matrices of as many columns, in the order of some of their columns.
class RowKeys : public KeySource {
public:
    // Columns numbered from 1, negative for downward.
    RowKeys(M<double> const& a, int const* columns, int column_count) : RowKeys(a, a, columns, column_count) {}
    // All columns.
    RowKeys(M<double> const& a, M<double> const& b) : RowKeys(a, b, nullptr, a.size() > 0 ? a.cols() : b.cols()) {}

    std::ptrdiff_t keys() const override { return std::ptrdiff_t{complex_ ? 4 : 1} * column_count_; }
    bool load(Keyed* items, int count, std::ptrdiff_t which) const override;
    bool stands_alone(int position) const override;

private:
    RowKeys(M<double> const& a, M<double> const& b, int const* columns, int column_count)
        : a_(a), b_(b), columns_(columns), column_count_(column_count), complex_(a.isc() || b.isc())
    {
    }

    M<double> const &a_, &b_;
    int const* columns_;
    int column_count_;
    bool complex_;
};

// The texts in one or two cell arrays: by their characters' codes, the beginning of a text before it.
class TextKeys : public KeySource {
public:
    // The cells outlive it.
    explicit TextKeys(M<M<double>> const& a, bool downward = false) : TextKeys(a.addr(), a.size(), nullptr, 0, downward) {}
    TextKeys(M<M<double>> const& a, M<M<double>> const& b) : TextKeys(a.addr(), a.size(), b.addr(), b.size(), false) {}

    std::ptrdiff_t keys() const override { return longest_; }
    bool load(Keyed* items, int count, std::ptrdiff_t which) const override;
    bool stands_alone(int) const override { return false; }

private:
    TextKeys(M<double> const* a, int a_count, M<double> const* b, int b_count, bool downward);
    M<double> const& text(int position) const { return position < a_count_ ? a_[position] : b_[position - a_count_]; }

    M<double> const *a_, *b_;
    int a_count_;
    int longest_ = 0;
    bool downward_;
};

// False after "%s: argument must be a cell array of strings": every cell holds one row of text, or is
// empty.
bool holds_texts(Arguments const& args, M<M<double>> const& cells);

// Things in their order, equal ones in that of their positions; may be used again and again.
class Ordering {
public:
    // False after "Out of memory!".
    bool sort(KeySource const& source, int count);

    int count() const { return count_; }
    // The thing at place k, from 0.
    int position(int k) const { return items_.data()[k].position; }
    // Whether the things at places k - 1 and k are equal; only for k of at least 1.
    bool same(int k) const { return same_.data()[k] != 0; }

private:
    struct Group {
        int from, to;
    };
    // The groups of several things in [from, to) that have the same key go to `tied_`.
    bool split(int from, int to, bool last_key);

    HeapArray<Keyed> items_, spare_;
    HeapArray<unsigned char> same_;
    HeapArray<Group> tied_, before_;
    std::size_t tied_count_ = 0;
    int count_ = 0;
    bool saw_nan_ = false;
};

} // namespace arrlib

#endif
