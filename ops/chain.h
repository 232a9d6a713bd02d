// Chains of element-wise operations, such as a.*b + c - 2, computed as one at the end of their statement:
// block by block, so that what lies between stays in the nearest cache, and memory is gone through once.
#ifndef ARRLIB_OPS_CHAIN_H
#define ARRLIB_OPS_CHAIN_H

#include "core/due.h"
#include "core/matrix.h"
#include "ops/kernels/kernel.h"

#include <cstddef>

namespace arrlib {

// Fewer elements than this are not worth another thread.
inline constexpr std::ptrdiff_t least_per_thread = 16384;

// Fewest elements of a result that waits, at least two; fewer stay in the caches from one operation to the next.
extern int least_in_chain;

// A full real operand of a step: where the elements are, or the number of a scalar.
struct ChainOperand {
    double const* elements = nullptr;
    // Held until the step is done; null where that is not needed.
    StorageRecord* storage = nullptr;
    double number = 0;

    ChainOperand() = default;
    ChainOperand(M<double> const& x, bool scalar);
};

// Of the chain at hand: whether x is its result, and nobody else can see it.
bool is_chain_result(M<double> const& x);
inline bool continues_chain(M<double> const& x)
{
    return elements_due && is_chain_result(x);
}
// Begins a chain for the elements of `made`; no other may be at hand.
void start_chain(M<double> const& made);
// What is to be done next for the elements of the result, which may themselves be an operand.
void add_to_chain(RealLoop loop, ChainOperand x, ChainOperand y);

} // namespace arrlib

#endif
