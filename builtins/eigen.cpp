#include "builtins/eigen.h"

#include "builtins/eigenpairs.h"
#include "builtins/results.h"

#include <cmath>

using namespace arrlib;

namespace {

// The eigenvalues of one call and, with `vectors`, their vectors; false after a report.
bool pairs_of(Arguments const& args, M<double> const& A, char balance, bool vectors, Eigenpairs& made)
{
    return is_hermitian(A) ? hermitian_pairs(args, A, vectors, made)
                           : general_pairs(args, A, balance, vectors ? Eigenvectors::right : Eigenvectors::none, made);
}

bool pairs_of(Arguments const& args, M<double> const& A, M<double> const& B, bool vectors, Eigenpairs& made)
{
    if (is_hermitian(A) && is_hermitian(B)) {
        bool definite = false;
        bool const done = definite_pairs(args, A, B, vectors, made, definite);
        if (done || definite)
            return done;
    }
    return pencil_pairs(args, A, B, vectors, made);
}

// d alone, or V and D.
Results<2> handed(Eigenpairs const& made, bool vectors)
{
    Results<2> results{vectors ? made.right : made.values, vectors ? diagonal_matrix(made.values) : M<double>()};
    return all_have_storage(results) ? results : nothing<2>();
}

Results<2> eigen(M<double> const& A, char balance, bool vectors)
{
    Arguments const args("eig");
    if (!square_and_finite(args, A))
        return nothing<2>();
    if (!given(A))
        return {};
    M<double> const full = full_form(A);
    if (!has_storage(full))
        return nothing<2>();
    Eigenpairs made;
    return pairs_of(args, full, balance, vectors, made) ? handed(made, vectors) : nothing<2>();
}

Results<2> generalised(M<double> const& A, M<double> const& B, bool vectors)
{
    Arguments const args("eig");
    if (!square_and_finite(args, A) || !square_and_finite(args, B) || !(A.rows() == B.rows() || args.sizes_differ(A, B)))
        return nothing<2>();
    if (!given(A))
        return {};
    M<double> const a = full_form(A), b = full_form(B);
    if (!has_storage(a) || !has_storage(b))
        return nothing<2>();
    Eigenpairs made;
    return pairs_of(args, a, b, vectors, made) ? handed(made, vectors) : nothing<2>();
}

// The second argument is a matrix or an option.
Results<2> eigen(M<double> const& A, M<double> const& B, bool vectors)
{
    if (!B.isstr())
        return generalised(A, B, vectors);
    std::string const option = text_of(B);
    if (same_word(option.c_str(), "nobalance"))
        return eigen(A, 'N', vectors);
    Arguments("eig").unknown_option(option.c_str());
    return nothing<2>();
}

// One over the moduli of the products of left and right vectors.
M<double> reciprocal_cosines(M<double> const& left, M<double> const& right)
{
    Packed<Complex> const l(left), r(right);
    M<double> made = full_result(Dims(right.cols(), 1));
    if (!l || !r || !has_storage(made))
        return Access<double>::without_storage();
    for (int j = 0; j < r.cols(); ++j) {
        Complex product;
        for (int i = 0; i < r.rows(); ++i)
            product += std::conj(l(i, j)) * r(i, j);
        made.addr()[j] = 1 / std::abs(product);
    }
    return made;
}

M<double> ones(int n)
{
    M<double> made = full_result(Dims(n, 1));
    if (has_storage(made))
        std::fill_n(made.addr(), n, 1.0);
    return made;
}

// V, D and s.
Results<3> conditions(M<double> const& A)
{
    Arguments const args("condeig");
    if (!square_and_finite(args, A))
        return nothing<3>();
    if (!given(A))
        return {};
    M<double> const full = full_form(A);
    if (!has_storage(full))
        return nothing<3>();
    Eigenpairs made;
    bool const hermitian = is_hermitian(full);
    if (!(hermitian ? hermitian_pairs(args, full, true, made) : general_pairs(args, full, 'B', Eigenvectors::both, made)))
        return nothing<3>();
    Results<3> results{made.right, diagonal_matrix(made.values), hermitian ? ones(full.rows()) : reciprocal_cosines(made.left, made.right)};
    return all_have_storage(results) ? results : nothing<3>();
}

} // namespace

M<double> eig(M<double> const& A)
{
    return eigen(A, 'B', false)[0];
}

M<double> eig(M<double> const& A, i_o_t, Mr<double> d)
{
    return hand_out(eigen(A, 'B', false), d);
}

M<double> eig(M<double> const& A, i_o_t, Mr<double> V, Mr<double> D)
{
    return hand_out(eigen(A, 'B', true), V, D);
}

M<double> eig(M<double> const& A, M<double> const& B)
{
    return eigen(A, B, false)[0];
}

M<double> eig(M<double> const& A, M<double> const& B, i_o_t, Mr<double> d)
{
    return hand_out(eigen(A, B, false), d);
}

M<double> eig(M<double> const& A, M<double> const& B, i_o_t, Mr<double> V, Mr<double> D)
{
    return hand_out(eigen(A, B, true), V, D);
}

M<double> condeig(M<double> const& A)
{
    return conditions(A)[2];
}

M<double> condeig(M<double> const& A, i_o_t, Mr<double> s)
{
    return hand_out(Results<1>{condeig(A)}, s);
}

M<double> condeig(M<double> const& A, i_o_t, Mr<double> V, Mr<double> D)
{
    return hand_out(conditions(A), V, D);
}

M<double> condeig(M<double> const& A, i_o_t, Mr<double> V, Mr<double> D, Mr<double> s)
{
    return hand_out(conditions(A), V, D, s);
}
