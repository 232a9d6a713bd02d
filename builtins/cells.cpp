#include "builtins/cells.h"

#include "builtins/args.h"
#include "core/arguments.h"
#include "core/blocks.h"
#include "core/cell.h"
#include "core/read.h"
#include "ops/engine.h"
#include "runtime/errors.h"

#include <algorithm>
#include <string_view>

using namespace arrlib;

namespace {

M<M<double>> no_cells()
{
    return x_M_of<M<double>>();
}

// A full value of the same kind as another one, with uninitialised elements.
M<double> piece_of(M<double> const& whole, Dims const& shape)
{
    M<double> piece = full_result(shape, whole.isc());
    Access<double>::copy_kind(piece, whole);
    return piece;
}

// --- num2cell ------------------------------------------------------------------------------------

// Which dimensions of A stay together in a cell; false after a report.
bool read_kept(M<double> const& A, M<double> const& dims, bool (&kept)[max_dims])
{
    for (int k = 1; k <= dims.size(); ++k) {
        int const dim = check_dim_arg("num2cell", A, M<double>(dims[k]));
        if (dim < 0 || dim >= A.getndims())
            return false;
        kept[dim] = true;
    }
    return true;
}

// The elements of one cell: `size` of them along each dimension, `step` apart.
struct Block {
    int size[max_dims];
    std::ptrdiff_t step[max_dims];

    void copy(double const* from, double* to) const
    {
        for (int l = 0; l < size[3]; ++l)
            for (int k = 0; k < size[2]; ++k)
                for (int j = 0; j < size[1]; ++j)
                    for (int i = 0; i < size[0]; ++i)
                        *to++ = from[i * step[0] + j * step[1] + k * step[2] + l * step[3]];
    }
};

// --- cellfun -------------------------------------------------------------------------------------

struct CellFunction {
    std::string_view name;
    bool logical, takes_argument;
    double (*value)(M<double> const& content, M<double> const& argument);
};

double size_along(M<double> const& content, M<double> const& dim)
{
    int const d = integer_argument(dim);
    return d <= content.getndims() ? content.getdims()[d - 1] : content.size() > 0;
}

constexpr CellFunction cell_functions[] = {
    {"isempty", true, false, [](M<double> const& content, M<double> const&) { return content.size() < 1 ? 1.0 : 0.0; }},
    {"islogical", true, false, [](M<double> const& content, M<double> const&) { return static_cast<double>(content.islogical()); }},
    {"isreal", true, false, [](M<double> const& content, M<double> const&) { return content.isc() ? 0.0 : 1.0; }},
    {"length", false, false, [](M<double> const& content, M<double> const&) { return static_cast<double>(content.length()); }},
    {"ndims", false, false, [](M<double> const& content, M<double> const&) { return static_cast<double>(content.getndims()); }},
    {"prodofsize", false, false, [](M<double> const& content, M<double> const&) { return static_cast<double>(content.size()); }},
    {"size", false, true, size_along},
    {"isclass", true, true, [](M<double> const& content, M<double> const& name) { return isa(content, name)[1]; }},
};

// --- cell2mat ------------------------------------------------------------------------------------

// Joins `count` values from number `first` on, which `part` delivers, halves first: every element is
// moved a few times only. False after a report.
template <class Part> bool join_all(int dim, int first, int count, Part part, M<double>& joined)
{
    if (count == 1)
        return part(first, joined);
    int const half = count / 2;
    M<double> front, back;
    return join_all(dim, first, half, part, front) && join_all(dim, first + half, count - half, part, back) && join(dim, front, back, joined);
}

// --- mat2cell ------------------------------------------------------------------------------------

// Whether a list of sizes adds up to a size of A; false after a report.
bool divides(Arguments const& args, M<double> const& A, M<double> const& sizes, int size)
{
    if (!args.integer(sizes))
        return false;
    double sum = 0;
    for (int k = 1; k <= sizes.size(); ++k) {
        sum += sizes[k];
        if (sizes[k] < 0)
            return args.report("sizes must not be negative");
    }
    return sum == size || args.sizes_differ(A, sizes);
}

M<double> cut(M<double> const& A, int row, int col, int rows, int cols)
{
    M<double> piece = piece_of(A, Dims(rows, cols));
    if (!has_storage(piece) || piece.size() < 1)
        return piece;
    copy_columns(piece.addr(), rows, A.addr(row + 1, col + 1), A.rows(), rows, cols);
    if (A.isc())
        copy_columns(piece.addi(), rows, A.addi(row + 1, col + 1), A.rows(), rows, cols);
    return piece;
}

} // namespace

M<M<double>> num2cell(M<double> const& A)
{
    return num2cell(A, nop_M);
}

M<M<double>> num2cell(M<double> const& A, M<double> const& dims)
{
    bool kept[max_dims] = {};
    M<double> const full = full_form(A);
    if (!read_kept(A, dims, kept) || !has_storage(full))
        return no_cells();
    int outer[max_dims];
    Block block;
    std::ptrdiff_t step = 1;
    for (int d = 0; d < max_dims; ++d) {
        block.size[d] = kept[d] ? A.getdims()[d] : 1;
        outer[d] = kept[d] ? 1 : A.getdims()[d];
        block.step[d] = step;
        step *= A.getdims()[d];
    }
    Dims const shape(max_dims, block.size);
    M<M<double>> cells = Access<M<double>>::full(false, A.size() < 1 ? Dims() : Dims(max_dims, outer));
    std::ptrdiff_t at[max_dims] = {};
    for (int k = 0; k < cells.size(); ++k) {
        M<double> piece = piece_of(full, shape);
        if (!has_storage(piece))
            return no_cells();
        std::ptrdiff_t offset = 0;
        for (int d = 0; d < max_dims; ++d)
            offset += at[d] * block.step[d];
        block.copy(full.addr() + offset, piece.addr());
        if (piece.isc())
            block.copy(full.addi() + offset, piece.addi());
        cells.addr()[k] = std::move(piece);
        for (int d = 0; d < max_dims && ++at[d] == outer[d]; ++d)
            at[d] = 0;
    }
    return cells;
}

M<double> cellfun(M<double> const& name, M<M<double>> const& C)
{
    return cellfun(name, C, nop_M);
}

M<double> cellfun(M<double> const& name, M<M<double>> const& C, M<double> const& x)
{
    Arguments const args("cellfun");
    if (!args.string(name))
        return x_M;
    std::string const wanted = text_of(name);
    auto const* const function = std::find_if(std::begin(cell_functions), std::end(cell_functions), [&](CellFunction const& one) { return one.name == wanted; });
    if (function == std::end(cell_functions)) {
        error("cellfun: unknown function %s", wanted.c_str());
        return x_M;
    }
    if (function->takes_argument != given(x))
        return nx_wrong_narg(args.builtin(), given(x) ? 3 : 2);
    if (function->value == size_along && !(x[1] >= 1)) {
        args.report("dimension must be a positive integer");
        return x_M;
    }
    M<double> values = full_result(shape_of(C));
    if (!has_storage(values))
        return x_M;
    for (int k = 0; k < values.size(); ++k)
        values.addr()[k] = function->value(C.addr()[k], x);
    values.setlogical(function->logical);
    return values;
}

M<double> cell2mat(M<M<double>> const& C)
{
    Arguments const args("cell2mat");
    if (!args.two_dimensional(C) || C.size() < 1)
        return x_M;
    auto const row_of = [&](int row, M<double>& joined) {
        auto const content = [&](int col, M<double>& part) {
            part = share(*C.addr(row + 1, col + 1));
            return true;
        };
        return join_all(1, 0, C.cols(), content, joined);
    };
    M<double> whole;
    return join_all(0, 0, C.rows(), row_of, whole) ? whole : x_M;
}

M<M<double>> mat2cell(M<double> const& A, M<double> const& rowsizes)
{
    return mat2cell(A, rowsizes, M<double>(static_cast<double>(A.cols())));
}

M<M<double>> mat2cell(M<double> const& A, M<double> const& rowsizes, M<double> const& colsizes)
{
    Arguments const args("mat2cell");
    if (!args.two_dimensional(A) || !divides(args, A, rowsizes, A.rows()) || !divides(args, A, colsizes, A.cols()))
        return no_cells();
    M<double> const full = full_form(A);
    M<M<double>> cells = Access<M<double>>::full(false, Dims(rowsizes.size(), colsizes.size()));
    if (!has_storage(full))
        return no_cells();
    int col = 0;
    for (int j = 1; j <= cells.cols(); ++j) {
        int const cols = integer_argument(colsizes[j]);
        int row = 0;
        for (int i = 1; i <= cells.rows(); ++i) {
            int const rows = integer_argument(rowsizes[i]);
            *cells.addr(i, j) = cut(full, row, col, rows, cols);
            row += rows;
        }
        col += cols;
    }
    return cells;
}
