#include "builtins/sort.h"

#include "builtins/args.h"
#include "builtins/ordering.h"
#include "builtins/sort_short.h"
#include "builtins/sort_sparse.h"
#include "core/arguments.h"
#include "core/read.h"
#include "ops/engine.h"
#include "runtime/workers.h"

#include <algorithm>
#include <utility>

using namespace arrlib;

namespace {

constexpr std::ptrdiff_t least_work = std::ptrdiff_t{1} << 15;

// The numbers of a cell array or matrix in sorted order, and where each one was.
template <class Value> struct Sorted {
    Value values;
    M<double> positions;
    bool done = false;
};

// --- along a dimension ----------------------------------------------------------------------------

// The vectors of a value along one dimension.
struct Lines {
    std::ptrdiff_t stride = 1, length, count;

    Lines(M<double> const& x, int dim) : length(x.getdims()[dim]), count(x.size() / length)
    {
        for (int d = 0; d < dim; ++d)
            stride *= x.getdims()[d];
    }
    std::ptrdiff_t start(std::ptrdiff_t line) const { return line / stride * stride * length + line % stride; }
};

// Sorts lines one after the other, in work memory of its own.
class LineSorter {
public:
    // Neighbouring lines are copied together where their elements lie apart.
    static constexpr std::ptrdiff_t together = lists_together;

    LineSorter(Lines const& lines, double const* from, double* to, double* positions) : lines_(lines), from_(from), to_(to), positions_(positions) {}

    // False after a report.
    bool take_memory(int workers)
    {
        auto const length = static_cast<std::size_t>(lines_.length), number = static_cast<std::size_t>(workers);
        if (positions_)
            keyed_ = HeapArray<Keyed>(2 * length * number);
        block_size_ = lines_.stride > 1 || is_short() ? together * lines_.length : 0;
        numbers_size_ = lines_.length + 3 * block_size_;
        numbers_ = HeapArray<double>(static_cast<std::size_t>(numbers_size_) * number);
        return numbers_ && (!positions_ || keyed_);
    }

    void sort(std::ptrdiff_t worker, std::ptrdiff_t first, std::ptrdiff_t last) const
    {
        double* const spare = numbers_.data() + worker * numbers_size_;
        if (is_short()) {
            sort_short_lines(spare + lines_.length, first, last);
            return;
        }
        Keyed* const keyed = positions_ ? keyed_.data() + worker * 2 * lines_.length : nullptr;
        if (lines_.stride == 1) {
            for (std::ptrdiff_t line = first; line < last; ++line) {
                std::ptrdiff_t const start = line * lines_.length;
                sort_line(from_ + start, to_ + start, positions_ ? positions_ + start : nullptr, spare, keyed);
            }
            return;
        }
        double *const block = spare + lines_.length, *const sorted = block + block_size_, *const places = sorted + block_size_;
        for (std::ptrdiff_t line = first; line < last;) {
            std::ptrdiff_t const start = lines_.start(line);
            std::ptrdiff_t const width = neighbours(line, last);
            for (std::ptrdiff_t k = 0; k < lines_.length; ++k)
                for (std::ptrdiff_t l = 0; l < width; ++l)
                    block[l * lines_.length + k] = from_[start + k * lines_.stride + l];
            for (std::ptrdiff_t l = 0; l < width; ++l)
                sort_line(block + l * lines_.length, sorted + l * lines_.length, positions_ ? places + l * lines_.length : nullptr, spare, keyed);
            write_block(sorted, to_ + start, width);
            if (positions_)
                write_block(places, positions_ + start, width);
            line += width;
        }
    }

private:
    bool is_short() const { return lines_.length <= longest_short; }
    // Lines from `line` on whose elements lie beside each other, up to `together` of them.
    std::ptrdiff_t neighbours(std::ptrdiff_t line, std::ptrdiff_t last) const
    {
        return lines_.stride == 1 ? std::min(together, last - line) : std::min({together, last - line, lines_.stride - line % lines_.stride});
    }
    void sort_short_lines(double* block, std::ptrdiff_t first, std::ptrdiff_t last) const
    {
        std::ptrdiff_t const length = lines_.length, size = together * length;
        double* const places = positions_ ? block + size : nullptr;
        // Lists without a line are sorted as well.
        std::fill_n(block, size, 0.0);
        for (std::ptrdiff_t line = first, width; line < last; line += width) {
            std::ptrdiff_t const start = lines_.start(line), step = lines_.stride == 1 ? length : 1;
            width = neighbours(line, last);
            for (std::ptrdiff_t l = 0; l < width; ++l)
                for (std::ptrdiff_t k = 0; k < length; ++k)
                    block[k * together + l] = from_[start + k * lines_.stride + l * step];
            for (std::ptrdiff_t k = 0; places && k < length; ++k)
                std::fill_n(places + k * together, together, static_cast<double>(k + 1));
            sort_lists(block, places, length);
            for (std::ptrdiff_t l = 0; l < width; ++l)
                for (std::ptrdiff_t k = 0; k < length; ++k) {
                    to_[start + k * lines_.stride + l * step] = block[k * together + l];
                    if (places)
                        positions_[start + k * lines_.stride + l * step] = places[k * together + l];
                }
        }
    }
    void sort_line(double const* from, double* to, double* positions, double* spare, Keyed* keyed) const
    {
        std::ptrdiff_t const n = lines_.length;
        if (!positions) {
            std::copy(from, from + n, to);
            sort_stable(to, spare, n);
            return;
        }
        parallel_for(n, least_work, [=](std::ptrdiff_t first, std::ptrdiff_t last) {
            for (std::ptrdiff_t k = first; k < last; ++k)
                keyed[k] = {order_key(from[k]), static_cast<int>(k)};
        });
        sort_stable(keyed, keyed + n, n);
        // Keys tell the numbers but for the sign of zeros and the bits of a NaN.
        parallel_for(n, least_work, [=](std::ptrdiff_t first, std::ptrdiff_t last) {
            for (std::ptrdiff_t k = first; k < last; ++k) {
                auto const [key, position] = keyed[k];
                to[k] = key == zero_key || key == nan_key ? from[position] : number_of_key(key);
                positions[k] = position + 1.0;
            }
        });
    }
    void write_block(double const* block, double* to, std::ptrdiff_t width) const
    {
        for (std::ptrdiff_t k = 0; k < lines_.length; ++k)
            for (std::ptrdiff_t l = 0; l < width; ++l)
                to[k * lines_.stride + l] = block[l * lines_.length + k];
    }

    Lines lines_;
    double const* from_;
    double *to_, *positions_;
    std::ptrdiff_t block_size_ = 0, numbers_size_ = 0;
    HeapArray<double> numbers_;
    HeapArray<Keyed> keyed_;
};

bool sort_real(M<double> const& x, Lines const& lines, M<double>& values, M<double>* positions)
{
    LineSorter sorter(lines, x.addr(), values.addr(), positions ? positions->addr() : nullptr);
    std::ptrdiff_t const total = lines.length * lines.count;
    // A few long lines are better shared each for itself.
    bool const share = total >= 2 * least_work && lines.count >= 2 * LineSorter::together;
    int const workers = share ? parallel_width() : 1;
    if (!sorter.take_memory(workers))
        return false;
    if (workers == 1)
        sorter.sort(0, 0, lines.count);
    else
        parallel_for(workers, 1, [&](std::ptrdiff_t first, std::ptrdiff_t last) {
            for (std::ptrdiff_t w = first; w < last; ++w)
                sorter.sort(w, lines.count * w / workers, lines.count * (w + 1) / workers);
        });
    return true;
}

bool sort_complex(M<double> const& x, Lines const& lines, M<double>& values, M<double>* positions)
{
    auto const length = static_cast<std::size_t>(lines.length);
    HeapArray<double> line(2 * length);
    if (!line)
        return false;
    Ordering order;
    for (std::ptrdiff_t number = 0; number < lines.count; ++number) {
        std::ptrdiff_t const start = lines.start(number);
        for (std::size_t k = 0; k < length; ++k) {
            line[k] = x.addr()[start + static_cast<std::ptrdiff_t>(k) * lines.stride];
            line[length + k] = x.addi()[start + static_cast<std::ptrdiff_t>(k) * lines.stride];
        }
        if (!order.sort(ElementKeys(line.data(), line.data() + length, static_cast<int>(length), ElementKeys::Ties::by_angle), static_cast<int>(length)))
            return false;
        for (std::ptrdiff_t k = 0; k < lines.length; ++k) {
            int const position = order.position(static_cast<int>(k));
            std::ptrdiff_t const to = start + k * lines.stride;
            values.addr()[to] = line.data()[position];
            values.addi()[to] = line.data()[lines.length + position];
            if (positions)
                positions->addr()[to] = position + 1.0;
        }
    }
    return true;
}

// False after a report.
bool sort_along(M<double> const& x, int dim, M<double>& values, M<double>* positions)
{
    if (x.issparse()) {
        values = sort_sparse(x, dim, positions);
        return has_storage(values);
    }
    values = full_result(shape_of(x), x.isc());
    if (!has_storage(values))
        return false;
    if (positions) {
        *positions = full_result(shape_of(x));
        if (!has_storage(*positions))
            return false;
    }
    values.setstr(x.isstr());
    Lines const lines(x, dim);
    return x.isc() ? sort_complex(x, lines, values, positions) : sort_real(x, lines, values, positions);
}

Sorted<M<double>> sorted(M<double> const& A, M<double> const& dim, bool with_positions)
{
    if (A.size() == 0)
        return {share(A), Access<double>::without_storage(), true};
    M<double> const& number = given(dim) ? dim : zero_M;
    int const along = check_dim_arg("sort", A, number);
    if (along < 0 || along >= A.getndims())
        return {x_M, x_M};
    Sorted<M<double>> made{Access<double>::without_storage(), Access<double>::without_storage()};
    made.done = sort_along(A, along, made.values, with_positions ? &made.positions : nullptr);
    return made;
}

// --- by several keys ------------------------------------------------------------------------------

// The positions as numbers from 1 in the given shape; without storage after a report.
M<double> position_list(Ordering const& order, Dims const& shape)
{
    M<double> list = full_result(shape);
    if (has_storage(list))
        for (int k = 0; k < order.count(); ++k)
            list.addr()[k] = order.position(k) + 1.0;
    return list;
}

Sorted<M<M<double>>> cells_in_order(M<M<double>> const& A, TextKeys const& keys)
{
    Sorted<M<M<double>>> made{Access<M<double>>::without_storage(), Access<double>::without_storage()};
    Ordering order;
    if (!order.sort(keys, A.size()))
        return made;
    made.values = Access<M<double>>::full(false, shape_of(A));
    made.positions = position_list(order, shape_of(A));
    if (!made.values.addr() || !has_storage(made.positions))
        return made;
    for (int k = 0; k < A.size(); ++k)
        made.values.addr()[k] = A.addr()[order.position(k)];
    made.done = true;
    return made;
}

Sorted<M<M<double>>> sorted(M<M<double>> const& A)
{
    if (A.size() == 0)
        return {share(A), Access<double>::without_storage(), true};
    if (!holds_texts(Arguments("sort"), A))
        return {x_M_of<M<double>>(), x_M};
    return cells_in_order(A, TextKeys(A));
}

// Columns as RowKeys wants them; false after a report.
bool read_columns(M<double> const& cols, int most, HeapArray<int>& columns)
{
    M<double> const list = full_form(cols);
    columns = HeapArray<int>(static_cast<std::size_t>(list.size()));
    if (!has_storage(list) || !columns)
        return false;
    for (int k = 0; k < list.size(); ++k) {
        int const column = integer_argument(list.addr()[k]);
        if (column == 0 || column > most || column < -most)
            return Arguments("sortrows").report("column out of range");
        columns.data()[k] = column;
    }
    return true;
}

Sorted<M<double>> sorted_rows(M<double> const& given_A, M<double> const& cols)
{
    Sorted<M<double>> made{Access<double>::without_storage(), Access<double>::without_storage()};
    HeapArray<int> columns;
    M<double> const A = full_form(given_A);
    if (!has_storage(A) || !Arguments("sortrows").two_dimensional(given_A) || (given(cols) && !read_columns(cols, A.cols(), columns)))
        return made;
    if (A.size() == 0)
        return {share(A), Access<double>::without_storage(), true};
    Ordering order;
    if (!order.sort(given(cols) ? RowKeys(A, columns.data(), cols.size()) : RowKeys(A, nullptr, A.cols()), A.rows()))
        return made;
    made.values = full_result(shape_of(A), A.isc());
    made.positions = position_list(order, Dims(A.rows(), 1));
    if (!has_storage(made.values) || !has_storage(made.positions))
        return made;
    made.values.setstr(A.isstr());
    for (int part = 0; part < (A.isc() ? 2 : 1); ++part) {
        double const* from = part ? A.addi() : A.addr();
        double* to = part ? made.values.addi() : made.values.addr();
        for (int column = 0; column < A.cols(); ++column, from += A.rows(), to += A.rows())
            for (int row = 0; row < A.rows(); ++row)
                to[row] = from[order.position(row)];
    }
    made.done = true;
    return made;
}

Sorted<M<M<double>>> sorted_rows(M<M<double>> const& A, M<double> const& cols)
{
    Sorted<M<M<double>>> const none{x_M_of<M<double>>(), x_M};
    Arguments const args("sortrows");
    HeapArray<int> columns;
    if (!args.two_dimensional(A) || (A.size() > 0 && A.cols() != 1 && !args.report("cell array must have one column")) || (given(cols) && !read_columns(cols, 1, columns)))
        return none;
    if (A.size() == 0)
        return {share(A), Access<double>::without_storage(), true};
    if (!holds_texts(args, A))
        return none;
    return cells_in_order(A, TextKeys(A, given(cols) && columns.data()[0] < 0));
}

// --- results --------------------------------------------------------------------------------------

template <class Value> struct ElementOf;
template <class T> struct ElementOf<M<T>> {
    using type = T;
};

template <class Value> Value result(Sorted<Value> const& made)
{
    return made.done ? made.values : x_M_of<typename ElementOf<Value>::type>();
}

template <class Value, class Output> Value give(Sorted<Value> const& made, Output& values)
{
    Value const shown = result(made);
    values = shown;
    return shown;
}

template <class Value, class Output> Value give(Sorted<Value> const& made, Output& values, Mr<double>& positions)
{
    positions = made.done ? made.positions : x_M;
    return give(made, values);
}

} // namespace

M<double> sort(M<double> const& A) { return result(sorted(A, nop_M, false)); }
M<double> sort(M<double> const& A, M<double> const& dim) { return result(sorted(A, dim, false)); }
M<double> sort(M<double> const& A, i_o_t, Mr<double> y) { return give(sorted(A, nop_M, false), y); }
M<double> sort(M<double> const& A, i_o_t, Mr<double> y, Mr<double> i) { return give(sorted(A, nop_M, true), y, i); }
M<double> sort(M<double> const& A, M<double> const& dim, i_o_t, Mr<double> y) { return give(sorted(A, dim, false), y); }
M<double> sort(M<double> const& A, M<double> const& dim, i_o_t, Mr<double> y, Mr<double> i) { return give(sorted(A, dim, true), y, i); }
M<M<double>> sort(M<M<double>> const& A) { return result(sorted(A)); }
M<M<double>> sort(M<M<double>> const& A, i_o_t, Mr<M<double>> y) { return give(sorted(A), y); }
M<M<double>> sort(M<M<double>> const& A, i_o_t, Mr<M<double>> y, Mr<double> i) { return give(sorted(A), y, i); }

M<double> sortrows(M<double> const& A) { return result(sorted_rows(A, nop_M)); }
M<double> sortrows(M<double> const& A, M<double> const& cols) { return result(sorted_rows(A, cols)); }
M<double> sortrows(M<double> const& A, i_o_t, Mr<double> B) { return give(sorted_rows(A, nop_M), B); }
M<double> sortrows(M<double> const& A, i_o_t, Mr<double> B, Mr<double> i) { return give(sorted_rows(A, nop_M), B, i); }
M<double> sortrows(M<double> const& A, M<double> const& cols, i_o_t, Mr<double> B) { return give(sorted_rows(A, cols), B); }
M<double> sortrows(M<double> const& A, M<double> const& cols, i_o_t, Mr<double> B, Mr<double> i) { return give(sorted_rows(A, cols), B, i); }
M<M<double>> sortrows(M<M<double>> const& A) { return result(sorted_rows(A, nop_M)); }
M<M<double>> sortrows(M<M<double>> const& A, M<double> const& cols) { return result(sorted_rows(A, cols)); }
M<M<double>> sortrows(M<M<double>> const& A, i_o_t, Mr<M<double>> B) { return give(sorted_rows(A, nop_M), B); }
M<M<double>> sortrows(M<M<double>> const& A, i_o_t, Mr<M<double>> B, Mr<double> i) { return give(sorted_rows(A, nop_M), B, i); }
M<M<double>> sortrows(M<M<double>> const& A, M<double> const& cols, i_o_t, Mr<M<double>> B) { return give(sorted_rows(A, cols), B); }
M<M<double>> sortrows(M<M<double>> const& A, M<double> const& cols, i_o_t, Mr<M<double>> B, Mr<double> i) { return give(sorted_rows(A, cols), B, i); }

M<double> lookup(M<double> const& table, M<double> const& y)
{
    Arguments const args("lookup");
    M<double> const entries = full_form(table), values = full_form(y);
    if (!has_storage(entries) || !has_storage(values) || (table.size() > 0 && !args.vector(table)) || !args.real(table) || !args.real(y))
        return x_M;
    M<double> made = full_result(shape_of(values));
    if (!has_storage(made))
        return x_M;
    double const *const first = entries.addr(), *const end = first + entries.size();
    parallel_for(values.size(), least_work, [&, to = made.addr()](std::ptrdiff_t from, std::ptrdiff_t last) {
        for (std::ptrdiff_t k = from; k < last; ++k) {
            double const value = values.addr()[k];
            to[k] = value == value ? static_cast<double>(std::partition_point(first, end, [=](double entry) { return entry <= value; }) - first) : 0;
        }
    });
    return made;
}

M<double> lookup(M<double> const& table, M<double> const& y, i_o_t, Mr<double> k)
{
    M<double> const made = lookup(table, y);
    k = made;
    return made;
}
