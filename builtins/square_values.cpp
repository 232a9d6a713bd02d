#include "builtins/square_values.h"

#include "runtime/number_text.h"

#include <cmath>
#include <limits>

namespace arrlib {

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

M<double> filled(int n, double off, double on)
{
    M<double> made = full_result(Dims(n, n));
    if (has_storage(made)) {
        std::fill_n(made.addr(), made.size(), off);
        for (std::ptrdiff_t k = 0; k < n; ++k)
            made.addr()[k * (n + 1)] = on;
    }
    return made;
}

} // namespace

M<double> identity_matrix(int n)
{
    return filled(n, 0, 1);
}

M<double> infinite_matrix(int n)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    return filled(n, infinity, infinity);
}

double one_norm(M<double> const& x)
{
    double largest = 0;
    std::ptrdiff_t const rows = x.rows();
    for (std::ptrdiff_t j = 0; j < x.cols(); ++j) {
        double sum = 0;
        for (std::ptrdiff_t k = j * rows; k < (j + 1) * rows; ++k)
            sum += x.isc() ? std::hypot(x.addr()[k], x.addi()[k]) : std::abs(x.addr()[k]);
        // Not max(): NaN has to come through.
        largest = sum <= largest ? largest : sum;
    }
    return largest;
}

bool is_nearly_real(M<double> const& A, M<double> const& X)
{
    if (!X.isc() || A.isc())
        return false;
    double imaginary = 0;
    std::ptrdiff_t const rows = X.rows();
    for (std::ptrdiff_t j = 0; j < X.cols(); ++j) {
        double sum = 0;
        for (std::ptrdiff_t k = j * rows; k < (j + 1) * rows; ++k)
            sum += std::abs(X.addi()[k]);
        imaginary = std::max(imaginary, sum);
    }
    return imaginary <= 10 * X.rows() * epsilon * one_norm(X);
}

void warn_inaccurate(Arguments const& args, double error)
{
    if (error <= 1000 * epsilon)
        return;
    char text[number_text_size];
    args.warn(("result may be inaccurate, error = " + std::string(text, write_aligned(text, error, 6, 0))).c_str());
}

} // namespace arrlib
