#include "ops/chain.h"

#include "core/access.h"
#include "runtime/workers.h"

#include <algorithm>

namespace arrlib {

namespace {

// Of each operand 8 KiB are at hand in the nearest cache.
constexpr std::ptrdiff_t block = 1024;
constexpr int most_steps = 8;

struct Step {
    RealLoop loop = nullptr;
    ChainOperand x, y;
};

// At most one chain is at hand: whoever begins another computes its elements first. There is none while
// several threads may use values.
struct Chain {
    double* elements = nullptr;
    StorageRecord* storage = nullptr;
    std::ptrdiff_t count = 0;
    int steps = 0;
    Step step[most_steps];
};
constinit Chain chain;
// Whether it is this thread's.
constinit thread_local bool is_ours = false;

RealOperand operand(ChainOperand const& x, std::ptrdiff_t from)
{
    return x.elements ? RealOperand{x.elements + from, 1} : RealOperand{&x.number, 0};
}

void run(std::ptrdiff_t from, std::ptrdiff_t to)
{
    std::ptrdiff_t const length = chain.steps > 1 ? block : to - from;
    for (; from < to; from += length)
        for (Step const* step = chain.step; step != chain.step + chain.steps; ++step)
            step->loop(operand(step->x, from), operand(step->y, from), chain.elements + from, std::min(length, to - from));
}

void let_go(double const* elements, StorageRecord* storage)
{
    if (storage && drop_reference(storage))
        Storage<double>::release(const_cast<double*>(elements), storage, nullptr, 0);
}

void compute_chain() noexcept
{
    // Another thread cannot see what is due here: at most it looks at values of its own.
    if (!is_ours)
        return;
    is_ours = false;
    elements_due = nullptr;
    // Nobody waits for the elements of a result that has gone.
    if (!is_only_reference(chain.storage))
        parallel_for(chain.count, least_per_thread, [](std::ptrdiff_t from, std::ptrdiff_t to) { run(from, to); });
    for (Step const* step = chain.step; step != chain.step + chain.steps; ++step) {
        let_go(step->x.elements, step->x.storage);
        let_go(step->y.elements, step->y.storage);
    }
    let_go(chain.elements, chain.storage);
}

void be_due()
{
    chain.steps = 0;
    is_ours = true;
    add_reference(chain.storage);
    elements_due = compute_chain;
}

ChainOperand held(ChainOperand x)
{
    if (x.storage == chain.storage)
        x.storage = nullptr;
    else if (x.storage)
        add_reference(x.storage);
    return x;
}

} // namespace

int least_in_chain = 4096;

ChainOperand::ChainOperand(M<double> const& x, bool scalar)
{
    if (scalar) {
        // Not through addr(), which would compute what is to go on: scalars are never due.
        number = *Access<double>::elements(x);
    } else {
        elements = Access<double>::elements(x);
        storage = Access<double>::storage(x);
    }
}

bool is_chain_result(M<double> const& x)
{
    // The value's own reference, and the chain's.
    return Access<double>::storage(x) == chain.storage && chain.storage->refs == 2;
}

void start_chain(M<double> const& made)
{
    chain.elements = Access<double>::elements(made);
    chain.storage = Access<double>::storage(made);
    chain.count = made.getnnz();
    be_due();
}

void add_to_chain(RealLoop loop, ChainOperand x, ChainOperand y)
{
    if (chain.steps == most_steps) {
        compute_chain();
        be_due();
    }
    chain.step[chain.steps++] = {loop, held(x), held(y)};
}

} // namespace arrlib
