#include "builtins/types.h"

#include "builtins/args.h"
#include "core/read.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

using namespace arrlib;

namespace {

#ifdef _WIN32
constexpr bool on_windows = true;
#else
constexpr bool on_windows = false;
#endif

constexpr int longest_name = 31;

constexpr std::array<std::string_view, 17> keywords{
    "break", "case", "catch", "continue", "else", "elseif", "end", "for",
    "function", "global", "if", "otherwise", "persistent", "return", "switch", "try", "while",
};

bool is_letter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool is_name(std::string_view text)
{
    auto const continues = [](char c) { return is_letter(c) || (c >= '0' && c <= '9') || c == '_'; };
    return !text.empty() && is_letter(text[0]) && std::all_of(text.begin(), text.end(), continues) &&
           std::find(keywords.begin(), keywords.end(), text) == keywords.end();
}

M<double> without_kind(M<double> const& A)
{
    M<double> numbers = share(A);
    numbers.setstr(0);
    numbers.setlogical(0);
    return numbers;
}

template <class Value> bool is_vector(Value const& A)
{
    return A.getndims() == 2 && A.size() > 0 && (A.rows() == 1 || A.cols() == 1);
}

template <class Value> bool is_square(Value const& A)
{
    return A.getndims() == 2 && A.rows() == A.cols();
}

} // namespace

M<double> doubleM(M<double> const& A)
{
    return without_kind(A);
}

M<double> doubleM(M<M<double>> const&)
{
    Arguments("double").report("cell matrix is not accepted");
    return x_M;
}

M<double> logical(M<double> const& A)
{
    Arguments const args("logical");
    if (!args.real(A))
        return x_M;
    if (std::any_of(A.addr(), A.addr() + A.getnnz(), [](double v) { return std::isnan(v); })) {
        args.report("NaN can not be converted");
        return x_M;
    }
    M<double> mask = without_kind(A);
    mask.setlogical(1);
    return mask;
}

M<double> isreal(M<double> const& A)
{
    return truth(!A.isc());
}
M<double> isreal(M<M<double>> const&)
{
    return truth(false);
}

M<double> iscomplex(M<double> const& A)
{
    return truth(A.isc());
}
M<double> iscomplex(M<M<double>> const&)
{
    return truth(false);
}

M<double> isnumeric(M<double> const& A)
{
    return truth(!A.isstr());
}
M<double> isnumeric(M<M<double>> const&)
{
    return truth(false);
}

M<double> ischar(M<double> const& A)
{
    return truth(A.isstr());
}
M<double> ischar(M<M<double>> const&)
{
    return truth(false);
}

M<double> isstr(M<double> const& A)
{
    return ischar(A);
}
M<double> isstr(M<M<double>> const& A)
{
    return ischar(A);
}

M<double> islogical(M<double> const& A)
{
    return truth(A.islogical());
}
M<double> islogical(M<M<double>> const&)
{
    return truth(false);
}

M<double> issparse(M<double> const& A)
{
    return truth(A.issparse());
}
M<double> issparse(M<M<double>> const&)
{
    return truth(false);
}

M<double> isstruct(M<double> const&)
{
    return truth(false);
}
M<double> isstruct(M<M<double>> const&)
{
    return truth(false);
}

M<double> isobject(M<double> const&)
{
    return truth(false);
}
M<double> isobject(M<M<double>> const&)
{
    return truth(false);
}

M<double> isfield(M<double> const&, M<double> const&)
{
    return truth(false);
}
M<double> isfield(M<double> const&, M<M<double>> const&)
{
    return truth(false);
}
M<double> isfield(M<M<double>> const&, M<double> const&)
{
    return truth(false);
}
M<double> isfield(M<M<double>> const&, M<M<double>> const&)
{
    return truth(false);
}

M<double> isglobal(M<double> const& x)
{
    return truth(x.is_global());
}
M<double> isglobal(M<M<double>> const& x)
{
    return truth(x.is_global());
}

M<double> isscalar(M<double> const& A)
{
    return truth(A.size() == 1);
}
M<double> isscalar(M<M<double>> const& A)
{
    return truth(A.size() == 1);
}

M<double> isvector(M<double> const& A)
{
    return truth(is_vector(A));
}
M<double> isvector(M<M<double>> const& A)
{
    return truth(is_vector(A));
}

M<double> ismatrix(M<double> const&)
{
    return truth(true);
}
M<double> ismatrix(M<M<double>> const&)
{
    return truth(false);
}

M<double> issquare(M<double> const& A)
{
    return truth(is_square(A));
}
M<double> issquare(M<M<double>> const& A)
{
    return truth(is_square(A));
}

M<double> isieee()
{
    return truth(true);
}

M<double> ispc()
{
    return truth(on_windows);
}

M<double> isunix()
{
    return truth(!on_windows);
}

M<double> isvms()
{
    return truth(false);
}

M<double> isstudent()
{
    return truth(false);
}

M<double> isvarname(M<double> const& s)
{
    bool const is_row = s.isstr() && s.getndims() == 2 && s.rows() == 1 && s.cols() <= longest_name;
    return truth(is_row && is_name(text_of(s, longest_name)));
}
M<double> isvarname(M<M<double>> const&)
{
    return truth(false);
}
