#include "ops/elementwise_core.h"

#include "core/access.h"
#include "core/due.h"
#include "core/sparse.h"
#include "core/sparse_build.h"
#include "ops/chain.h"
#include "ops/complex_rule.h"
#include "ops/op_table.h"
#include "ops/sparse_elementwise.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/locks.h"
#include "runtime/workers.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <utility>

namespace arrlib {

namespace {

ComplexOperand tail(ComplexOperand x, std::ptrdiff_t from)
{
    std::ptrdiff_t const at = from * x.step;
    return {x.re + at, x.im ? x.im + at : nullptr, x.step};
}

// The loop that computes an operation of given operands.
struct Loop {
    RealLoop real = nullptr;
    ComplexLoop complex = nullptr;

    Loop(OpCode op, bool complex_operands, bool complex_result)
    {
        if (complex_result)
            complex = complex_loop_of(op);
        else if (complex_operands)
            complex = real_of_complex_loop(op);
        if (!complex)
            real = real_loop(op);
    }

    void run(ComplexOperand x, ComplexOperand y, double* re, double* im, std::ptrdiff_t n) const
    {
        if (real)
            real({x.re, x.step}, {y.re, y.step}, re, n);
        else
            complex(x, y, re, im, n);
    }
    void run_on_all_threads(ComplexOperand x, ComplexOperand y, double* re, double* im, std::ptrdiff_t n) const
    {
        if (n < 2 * least_per_thread)
            return run(x, y, re, im, n);
        parallel_for(n, least_per_thread, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
            run(tail(x, from), tail(y, from), re + from, im ? im + from : nullptr, to - from);
        });
    }
};

bool is_plain(M<double> const& x)
{
    return x.getnnz() > 0 && !x.isc() && !x.issparse();
}

bool is_real_for_real(ComplexRule rule)
{
    return rule == ComplexRule::never || rule == ComplexRule::with_x || rule == ComplexRule::with_either;
}

// Over all elements, which are not due, or over the one of a scalar.
ComplexOperand operand(M<double> const& x, bool scalar)
{
    return {Access<double>::elements(x), x.addi(), scalar ? 0 : 1};
}

// The operation on implicit zeros, beside a scalar, is an exact zero.
bool is_zero_on_zeros(OpCode op, M<double> const* x, M<double> const* y, bool complex)
{
    double const zero = 0;
    ComplexOperand const nothing{&zero, complex ? &zero : nullptr, 0};
    double re = 1, im = 0;
    bool const complex_operands = (x && x->isc()) || (y && y->isc());
    Loop(op, complex_operands, complex).run(x ? operand(*x, true) : nothing, y ? operand(*y, true) : nothing, &re, complex ? &im : nullptr, 1);
    return re == 0 && im == 0;
}

// A sparse value with the positions of `like` and uninitialised values.
M<double> same_positions(M<double> const& like, bool complex)
{
    int const stored = like.getnnz();
    M<double> made = Access<double>::sparse_with_room(complex, Dims(max_dims, like.getdims()), stored, stored);
    if (has_storage(made))
        std::copy_n(Access<double>::index(like), stored, Access<double>::index(made));
    return made;
}

M<double> without_zeros(M<double> made)
{
    if (count_nonzeros(made) != made.getnnz())
        made.resparse();
    return made;
}

// Stored entries beside a scalar; exactly one of x and y is the scalar.
M<double> of_entries(OpCode op, M<double> const& x, M<double> const& y, bool y_is_scalar, bool complex)
{
    M<double> const& sparse_one = y_is_scalar ? x : y;
    M<double> made = same_positions(sparse_one, complex);
    if (!has_storage(made))
        return made;
    Loop(op, x.isc() || y.isc(), complex).run_on_all_threads(operand(x, !y_is_scalar), operand(y, y_is_scalar), made.addr(), made.addi(), made.getnnz());
    return without_zeros(std::move(made));
}

// Computes `made` when an operation with a sparse operand has a sparse result; false when it is full.
bool has_sparse_result(M<double>& made, OpCode op, M<double> const& x, M<double> const& y, bool complex)
{
    SparseRule const rule = find_operation(op)->sparse;
    if (y.size() == 1 || x.size() == 1) {
        bool const y_scalar = y.size() == 1;
        M<double> const& sparse_one = y_scalar ? x : y;
        if (!sparse_one.issparse() || !is_zero_on_zeros(op, y_scalar ? nullptr : &x, y_scalar ? &y : nullptr, complex))
            return false;
        made = of_entries(op, x, y, y_scalar, complex);
        return true;
    }
    Loop const loop(op, x.isc() || y.isc(), complex);
    if (rule == SparseRule::product)
        made = sparse_masked(x, y, loop.real, loop.complex, complex);
    else if (x.issparse() && y.issparse() && rule != SparseRule::full)
        made = sparse_union(x, y, loop.real, loop.complex, complex);
    else
        return false;
    return true;
}

// Nobody else reads the elements, and the result has the same number of them. What lies in a header
// would not stay where it is when the value moves.
bool can_lend(M<double> const& x, int count, bool complex)
{
    return x.size() == count && !x.issparse() && !x.dirty() && !x.is_in_header() && (!complex || x.isc());
}

M<double> lent(M<double>&& x, bool complex)
{
    M<double> made = std::move(x);
    if (!complex)
        Access<double>::drop_imaginary(made);
    made.setname(nullptr);
    made.setstr(0);
    made.setlogical(0);
    return made;
}

M<double> full_result(OpCode op, M<double>&& x, M<double>&& y, bool complex)
{
    bool const x_scalar = x.size() == 1, y_scalar = y.size() == 1;
    // A scalar y follows the shape of x, and of two scalars it is x that gives the shape.
    M<double> const& like = y_scalar ? x : y;
    int const count = like.size();
    ComplexOperand const from_x = operand(x, x_scalar), from_y = operand(y, y_scalar);
    Loop const loop(op, x.isc() || y.isc(), complex);
    M<double> made = can_lend(x, count, complex)   ? lent(std::move(x), complex)
                     : can_lend(y, count, complex) ? lent(std::move(y), complex)
                                                   : Access<double>::full(complex, Dims(max_dims, like.getdims()));
    if (has_storage(made))
        loop.run_on_all_threads(from_x, from_y, made.addr(), made.addi(), count);
    return made;
}

bool either_continues_chain(M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    return ((temporaries & temporary_x) && continues_chain(x)) || ((temporaries & temporary_y) && continues_chain(y));
}

// Whether the elements of x alone may tell that the result is real: by which rule, if not `never`.
ComplexRule rule_for_x(ComplexRule rule, M<double> const& x, M<double> const& y)
{
    if (!is_plain(x) || !is_plain(y) || (y.size() != 1 && !std::equal(x.getdims(), x.getdims() + max_dims, y.getdims())))
        return ComplexRule::never;
    // A whole power is real, whatever its base.
    if (rule == ComplexRule::power)
        return y.size() == 1 && std::trunc(*y.addr()) == *y.addr() ? ComplexRule::never : ComplexRule::below_0;
    return depends_on_elements(rule) ? rule : ComplexRule::never;
}

// The real results of a full x whose elements decide whether they are real: each block is looked at just
// after it has been computed, when it lies in the nearest cache. Without storage when one of its elements may have a complex result.
M<double> real_result(OpCode op, ComplexRule rule, M<double> const& x, M<double> const& y)
{
    constexpr std::ptrdiff_t block = 1024;
    M<double> made = Access<double>::full(false, Dims(max_dims, x.getdims()));
    if (!has_storage(made))
        return made;
    Loop const loop(op, false, false);
    ComplexOperand const from_y = operand(y, y.size() == 1);
    std::atomic<bool> complex{false};
    parallel_for(x.size(), least_per_thread, [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        for (; from < to && !complex.load(std::memory_order_relaxed); from += block) {
            std::ptrdiff_t const n = std::min(block, to - from);
            loop.run({x.addr() + from, nullptr, 1}, tail(from_y, from), made.addr() + from, nullptr, n);
            if (makes_complex(rule, x.addr() + from, n))
                complex.store(true, std::memory_order_relaxed);
        }
    });
    return complex ? Access<double>::without_storage() : made;
}

// False after a report.
bool make_full(M<double>& x)
{
    if (x.issparse())
        x = full(x);
    return has_storage(x);
}

} // namespace

bool goes_straight(OpCode op, M<double> const& x, M<double> const& y)
{
    if (!is_plain(x) || !is_plain(y) || !(x.getnnz() == 1 || y.getnnz() == 1 || std::equal(x.getdims(), x.getdims() + max_dims, y.getdims())))
        return false;
    Operation const* const row = find_operation(op);
    return row && row->kernels.real && is_real_for_real(row->complex);
}

M<double> straight_elementwise(OpCode op, M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    bool const x_scalar = x.getnnz() == 1, y_scalar = y.getnnz() == 1;
    M<double> const& like = y_scalar ? x : y;
    int const count = like.getnnz();
    compute_due();
    // A temporary's elements stay where they are when its storage moves.
    ComplexOperand const from_x = operand(x, x_scalar), from_y = operand(y, y_scalar);
    M<double> made = (temporaries & temporary_x) && can_lend(x, count, false)   ? lent(std::move(const_cast<M<double>&>(x)), false)
                     : (temporaries & temporary_y) && can_lend(y, count, false) ? lent(std::move(const_cast<M<double>&>(y)), false)
                                                                                : Access<double>::full_like(like);
    // One value to return, which is then made where the caller wants it.
    if (has_storage(made)) {
        Loop(op, false, false).run_on_all_threads(from_x, from_y, Access<double>::elements(made), nullptr, count);
        if (find_operation(op)->logical)
            made.setlogical(1);
    } else {
        made = x_M;
    }
    return made;
}

bool goes_into_chain(M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    bool const goes_on = either_continues_chain(x, y, temporaries);
    bool const may_start = (temporaries & in_statement) && std::max(x.getnnz(), y.getnnz()) >= least_in_chain && !multi_threaded();
    if (!goes_on && !may_start)
        return false;
    if (!goes_on)
        compute_due();
    // A value that was sparse may still have room for positions, which would have to be given back with the rest;
    // and what another thread has begun stays.
    return !Access<double>::index(x) && !Access<double>::index(y) && (goes_on || !elements_due);
}

M<double> chained_elementwise(OpCode op, M<double> const& x, M<double> const& y, Temporaries temporaries)
{
    M<double> const& like = y.getnnz() == 1 ? x : y;
    bool const goes_on = either_continues_chain(x, y, temporaries);
    ChainOperand const from_x(x, x.getnnz() == 1), from_y(y, y.getnnz() == 1);
    auto const lends = [&](M<double> const& operand) { return goes_on ? continues_chain(operand) : can_lend(operand, like.getnnz(), false); };
    M<double> made = (temporaries & temporary_x) && lends(x)   ? lent(std::move(const_cast<M<double>&>(x)), false)
                     : (temporaries & temporary_y) && lends(y) ? lent(std::move(const_cast<M<double>&>(y)), false)
                                                               : Access<double>::full_like(like);
    if (has_storage(made)) {
        if (!goes_on)
            start_chain(made);
        add_to_chain(real_loop(op), from_x, from_y);
        if (find_operation(op)->logical)
            made.setlogical(1);
    } else {
        made = x_M;
    }
    return made;
}

M<double> elementwise(OpCode op, M<double>&& x, M<double>&& y)
{
    Operation const& row = *find_operation(op);
    compute_due();
    M<double> made = Access<double>::without_storage();
    // Where the results may not take the place of the elements, a look ahead costs as much as they do.
    ComplexRule const rule = rule_for_x(row.complex, x, y);
    if (rule != ComplexRule::never && !can_lend(x, x.size(), false)) {
        made = real_result(op, rule, x, y);
        if (has_storage(made))
            return made;
    }
    bool const complex = row.complex != ComplexRule::never && is_complex_result(row.complex, x, y);
    if (ARRLIB_UNLIKELY(x.issparse() || y.issparse())) {
        // A scalar is read as a full one.
        M<double>& scalar = y.size() == 1 ? y : x;
        if (scalar.size() == 1 && !make_full(scalar))
            return x_M;
        if (!has_sparse_result(made, op, x, y, complex)) {
            if (!make_full(x) || !make_full(y))
                return x_M;
            made = full_result(op, std::move(x), std::move(y), complex);
        }
    } else {
        made = full_result(op, std::move(x), std::move(y), complex);
    }
    if (!has_storage(made))
        return x_M;
    if (row.complex == ComplexRule::power)
        made.getreal();
    made.setlogical(row.logical);
    return made;
}

} // namespace arrlib
