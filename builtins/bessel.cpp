// The Bessel functions of values: shapes, outputs, scale.
#include "builtins/bessel_value.h"
#include "builtins/element_map.h"
#include "builtins/specfun.h"
#include "runtime/errors.h"

#include <algorithm>

using namespace arrlib;

namespace {

bool is_row(M<double> const& x)
{
    return x.getndims() == 2 && x.rows() == 1 && x.cols() > 1;
}

bool is_column(M<double> const& x)
{
    return x.getndims() == 2 && x.cols() == 1 && x.rows() > 1;
}

// Orders and arguments, element by element or as a table.
class Operands {
public:
    Operands(char const* builtin, M<double> const& nu, M<double> const& z) : table_(is_row(nu) && is_column(z))
    {
        if (table_) {
            nu_ = full_form(nu);
            z_ = full_form(z);
            if (has_storage(nu_) && has_storage(z_))
                shape_ = Dims(z.rows(), nu.cols());
            return;
        }
        OperandPair const pair(builtin, nu, z);
        if (!pair)
            return;
        shape_ = pair.shape();
        nu_ = full_form(nu);
        z_ = full_form(z);
        spread_nu_ = nu.size() == 1;
        spread_z_ = z.size() == 1;
    }

    // Not empty, and nothing was reported.
    explicit operator bool() const { return shape_.count != 0; }
    Dims const& shape() const { return shape_; }
    M<double> const& z() const { return z_; }

    BesselValue value(BesselKind kind, bool scaled, int k) const
    {
        int const at_nu = table_ ? k / z_.rows() : spread_nu_ ? 0 : k, at_z = table_ ? k % z_.rows() : spread_z_ ? 0 : k;
        return bessel_value(kind, nu_.addr()[at_nu], z_.addr()[at_z], z_.isc() ? z_.addi()[at_z] : 0, scaled);
    }

private:
    bool table_, spread_nu_ = false, spread_z_ = false;
    M<double> nu_, z_;
    Dims shape_;
};

struct Outputs {
    M<double> w, ierr;
};

Outputs none()
{
    return {x_M, x_M};
}

Outputs compute(char const* builtin, BesselKind kind, M<double> const& nu, M<double> const& z, M<double> const& scale)
{
    if (!Arguments(builtin).real(nu))
        return none();
    Operands const operands(builtin, nu, z);
    if (!operands)
        return none();
    bool const hankel = kind == BesselKind::h1 || kind == BesselKind::h2, scaled = number_or(scale, 0) != 0;
    M<double> const& full = operands.z();
    bool const has_negative = std::any_of(full.addr(), full.addr() + full.getnnz(), [](double x) { return x < 0; });
    M<double> w = full_result(operands.shape(), hankel || full.isc() || has_negative);
    if (!has_storage(w))
        return none();
    M<double> ierr = full_result(operands.shape());
    if (!has_storage(ierr))
        return none();
    for_each_element(operands.shape().count, [&operands, kind, scaled, re = w.addr(), im = w.addi(), status = ierr.addr()](int k) {
        BesselValue const value = operands.value(kind, scaled, k);
        re[k] = value.re;
        if (im)
            im[k] = value.im;
        status[k] = value.status;
    });
    if (!hankel && !full.isc())
        w.getreal();
    return {w, ierr};
}

// 1 or 2, or nothing after the report.
bool hankel_kind(M<double> const& k, BesselKind& kind)
{
    double const number = number_or(k, 1);
    kind = number == 2 ? BesselKind::h2 : BesselKind::h1;
    return number == 1 || number == 2 || Arguments("besselh").report("K must be 1 or 2");
}

Outputs hankel(M<double> const& nu, M<double> const& k, M<double> const& z, M<double> const& scale)
{
    BesselKind kind;
    return hankel_kind(k, kind) ? compute("besselh", kind, nu, z, scale) : none();
}

M<double> give(Outputs const& found, Mr<double>& w, Mr<double>& ierr)
{
    w = found.w;
    ierr = found.ierr;
    return found.w;
}

M<double> give(Outputs const& found, Mr<double>& w)
{
    w = found.w;
    return found.w;
}

} // namespace

M<double> besselj(M<double> const& nu, M<double> const& z)
{
    return besselj(nu, z, nop_M);
}

M<double> besselj(M<double> const& nu, M<double> const& z, M<double> const& scale)
{
    return compute("besselj", BesselKind::j, nu, z, scale).w;
}

M<double> besselj(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w)
{
    return besselj(nu, z, nop_M, i_o, w);
}

M<double> besselj(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w, Mr<double> ierr)
{
    return besselj(nu, z, nop_M, i_o, w, ierr);
}

M<double> besselj(M<double> const& nu, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w)
{
    return give(compute("besselj", BesselKind::j, nu, z, scale), w);
}

M<double> besselj(M<double> const& nu, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w, Mr<double> ierr)
{
    return give(compute("besselj", BesselKind::j, nu, z, scale), w, ierr);
}

M<double> bessely(M<double> const& nu, M<double> const& z)
{
    return bessely(nu, z, nop_M);
}

M<double> bessely(M<double> const& nu, M<double> const& z, M<double> const& scale)
{
    return compute("bessely", BesselKind::y, nu, z, scale).w;
}

M<double> bessely(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w)
{
    return bessely(nu, z, nop_M, i_o, w);
}

M<double> bessely(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w, Mr<double> ierr)
{
    return bessely(nu, z, nop_M, i_o, w, ierr);
}

M<double> bessely(M<double> const& nu, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w)
{
    return give(compute("bessely", BesselKind::y, nu, z, scale), w);
}

M<double> bessely(M<double> const& nu, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w, Mr<double> ierr)
{
    return give(compute("bessely", BesselKind::y, nu, z, scale), w, ierr);
}

M<double> besseli(M<double> const& nu, M<double> const& z)
{
    return besseli(nu, z, nop_M);
}

M<double> besseli(M<double> const& nu, M<double> const& z, M<double> const& scale)
{
    return compute("besseli", BesselKind::i, nu, z, scale).w;
}

M<double> besseli(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w)
{
    return besseli(nu, z, nop_M, i_o, w);
}

M<double> besseli(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w, Mr<double> ierr)
{
    return besseli(nu, z, nop_M, i_o, w, ierr);
}

M<double> besseli(M<double> const& nu, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w)
{
    return give(compute("besseli", BesselKind::i, nu, z, scale), w);
}

M<double> besseli(M<double> const& nu, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w, Mr<double> ierr)
{
    return give(compute("besseli", BesselKind::i, nu, z, scale), w, ierr);
}

M<double> besselk(M<double> const& nu, M<double> const& z)
{
    return besselk(nu, z, nop_M);
}

M<double> besselk(M<double> const& nu, M<double> const& z, M<double> const& scale)
{
    return compute("besselk", BesselKind::k, nu, z, scale).w;
}

M<double> besselk(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w)
{
    return besselk(nu, z, nop_M, i_o, w);
}

M<double> besselk(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w, Mr<double> ierr)
{
    return besselk(nu, z, nop_M, i_o, w, ierr);
}

M<double> besselk(M<double> const& nu, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w)
{
    return give(compute("besselk", BesselKind::k, nu, z, scale), w);
}

M<double> besselk(M<double> const& nu, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w, Mr<double> ierr)
{
    return give(compute("besselk", BesselKind::k, nu, z, scale), w, ierr);
}

M<double> besselh(M<double> const& nu, M<double> const& z)
{
    return hankel(nu, nop_M, z, nop_M).w;
}

M<double> besselh(M<double> const& nu, M<double> const& k, M<double> const& z)
{
    return hankel(nu, k, z, nop_M).w;
}

M<double> besselh(M<double> const& nu, M<double> const& k, M<double> const& z, M<double> const& scale)
{
    return hankel(nu, k, z, scale).w;
}

M<double> besselh(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w)
{
    return give(hankel(nu, nop_M, z, nop_M), w);
}

M<double> besselh(M<double> const& nu, M<double> const& z, i_o_t, Mr<double> w, Mr<double> ierr)
{
    return give(hankel(nu, nop_M, z, nop_M), w, ierr);
}

M<double> besselh(M<double> const& nu, M<double> const& k, M<double> const& z, i_o_t, Mr<double> w)
{
    return give(hankel(nu, k, z, nop_M), w);
}

M<double> besselh(M<double> const& nu, M<double> const& k, M<double> const& z, i_o_t, Mr<double> w, Mr<double> ierr)
{
    return give(hankel(nu, k, z, nop_M), w, ierr);
}

M<double> besselh(M<double> const& nu, M<double> const& k, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w)
{
    return give(hankel(nu, k, z, scale), w);
}

M<double> besselh(M<double> const& nu, M<double> const& k, M<double> const& z, M<double> const& scale, i_o_t, Mr<double> w, Mr<double> ierr)
{
    return give(hankel(nu, k, z, scale), w, ierr);
}

M<double> bessel(M<double> const& nu, M<double> const& z)
{
    M<double> const full = full_form(z);
    bool const imaginary = full.isc() && std::all_of(full.addr(), full.addr() + full.getnnz(), [](double x) { return x == 0; });
    if (!imaginary)
        return compute("bessel", BesselKind::j, nu, full, nop_M).w;
    M<double> part = full_result(shape_of(full));
    if (!has_storage(part))
        return x_M;
    std::copy(full.addi(), full.addi() + full.getnnz(), part.addr());
    return compute("bessel", BesselKind::i, nu, part, nop_M).w;
}
