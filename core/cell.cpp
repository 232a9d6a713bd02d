#include "core/cell.h"

#include "core/access.h"
#include "core/arguments.h"
#include "core/read.h"
#include "core/sparse_build.h"
#include "core/text.h"
#include "runtime/constants.h"
#include "runtime/errors.h"

#include <algorithm>
#include <cstring>

using namespace arrlib;

namespace {

constexpr int longest_class_name = 2048;

char const* class_of(M<double> const& x)
{
    return x.isstr() ? "char" : x.issparse() ? "sparse" : "double";
}

bool names(M<double> const& name, char const* word)
{
    char text[longest_class_name + 1];
    Mstr(name, text, longest_class_name);
    return std::strcmp(text, word) == 0;
}

bool is_blank(double code)
{
    return code == ' ' || code == 0 || (code >= '\t' && code <= '\r');
}

// Columns of a full character matrix up to the last one that holds more than blanks.
int columns_of_text(M<double> const& S)
{
    int count = S.size();
    while (count > 0 && is_blank(S.addr()[count - 1]))
        --count;
    int const rows = S.rows();
    return rows > 0 ? count / rows + (count % rows > 0) : 0;
}

// The first `cols` columns; S is full and has two dimensions.
M<double> first_columns(M<double> const& S, int cols)
{
    M<double> text = Access<double>::full(S.isc(), Dims(S.rows(), cols));
    if (!text.addr())
        return x_M;
    Storage<double>::copy(text.addr(), S.addr(), text.size());
    if (S.isc())
        Storage<double>::copy(text.addi(), S.addi(), text.size());
    Access<double>::copy_kind(text, S);
    return text;
}

M<double> row_text(M<double> const& S, int row)
{
    int const rows = S.rows();
    double const* const first = S.addr() + row;
    int length = S.size() / rows;
    while (length > 0 && is_blank(first[static_cast<std::ptrdiff_t>(length - 1) * rows]))
        --length;
    M<double> text = Access<double>::full(false, Dims(1, length));
    text.setstr(1);
    for (std::ptrdiff_t k = 0; k < text.size(); ++k)
        text.addr()[k] = first[k * rows];
    return text;
}

M<M<double>> empty_cells(std::initializer_list<M<double> const*> arguments)
{
    SizeList sizes;
    if (read_sizes("cell", arguments, sizes) != SizesRead::done)
        return x_M_of<M<double>>();
    return Access<M<double>>::full(false, Dims(max_dims, sizes.size));
}

} // namespace

M<M<double>> cell(M<double> const& n)
{
    return empty_cells({&n});
}

M<M<double>> cell(M<double> const& m, M<double> const& n)
{
    return empty_cells({&m, &n});
}

M<M<double>> cell(M<double> const& m, M<double> const& n, M<double> const& p)
{
    return empty_cells({&m, &n, &p});
}

M<M<double>> cell(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q)
{
    return empty_cells({&m, &n, &p, &q});
}

M<M<double>> cellstr(M<double> const& S)
{
    M<double> const text = full_copy(S);
    M<M<double>> cells = Access<M<double>>::full(false, Dims(text.rows(), 1));
    for (int row = 0; row < cells.size(); ++row)
        cells.addr()[row] = row_text(text, row);
    return cells;
}

M<M<double>> cellstr(M<M<double>> const& cells)
{
    return share(cells);
}

M<double> iscellstr(M<double> const&)
{
    return truth(false);
}

M<double> iscellstr(M<M<double>> const& x)
{
    return truth(std::all_of(x.addr(), x.addr() + x.size(), [](M<double> const& element) { return element.isstr() != 0; }));
}

M<double> iscell(M<double> const&)
{
    return truth(false);
}

M<double> iscell(M<M<double>> const&)
{
    return truth(true);
}

M<double> mclass(M<double> const& x)
{
    return TM(class_of(x));
}

M<double> mclass(M<M<double>> const&)
{
    return TM("cell");
}

M<double> isa(M<double> const& x, M<double> const& name)
{
    bool const sparse_number = x.issparse() && !x.isstr();
    return truth(names(name, class_of(x)) || (sparse_number && names(name, "double")));
}

M<double> isa(M<M<double>> const&, M<double> const& name)
{
    return truth(names(name, "cell"));
}

M<double> deblank(M<double> const& S)
{
    if (!S.isstr() || S.getndims() > 2)
        return share(S);
    M<double> const text = full_copy(S);
    int const cols = columns_of_text(text);
    if (cols == text.cols())
        return share(S);
    return first_columns(text, cols);
}

M<M<double>> deblank(M<M<double>> const& cells)
{
    M<M<double>> result = Access<M<double>>::full(false, Dims(cells.getndims(), cells.getdims()));
    for (int k = 0; k < result.size(); ++k)
        result.addr()[k] = deblank(cells.addr()[k]);
    return result;
}
