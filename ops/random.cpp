#include "ops/random.h"

#include "core/access.h"
#include "core/text.h"
#include "ops/creator.h"
#include "ops/random_generator.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/locks.h"

using namespace arrlib;

namespace {

bool is_text(M<double> const& value, char const* text)
{
    if (!value.isstr())
        return false;
    int k = 0;
    for (; k < value.size() && text[k] != '\0'; ++k)
        if (character_code(value[k + 1]) != text[k])
            return false;
    return k == value.size() && text[k] == '\0';
}

// Room for the result comes before the lock: its failure is reported.
M<double> state_vector()
{
    M<double> made = Access<double>::full(false, Dims(RandState::vector_size, 1));
    if (!made.addr())
        return x_M;
    LockGuard const guard(Lock::random);
    rand_state.store(made.addr());
    return made;
}

M<double> external_seed(RandSeed const& generator)
{
    double seed;
    {
        LockGuard const guard(Lock::random);
        seed = generator.external();
    }
    return M<double>(seed);
}

M<double> set_state(M<double> const& y)
{
    int const count = y.size();
    bool const whole = count == RandState::vector_size;
    double vector[RandState::vector_size];
    for (int k = 0; whole && k < count; ++k)
        vector[k] = y[k + 1];
    {
        LockGuard const guard(Lock::random);
        rand_uses_state = 1;
        if (whole)
            rand_state.load(vector);
        else if (count == 1)
            rand_state.seed(y[1]);
    }
    if (!whole && count != 1)
        error("rand('state',y): y must be scalar or 35-element state matrix");
    return x_M;
}

} // namespace

M<double> randM()
{
    return M<double>(draw_uniform(), in_header());
}

M<double> randM(M<double> const& x)
{
    if (is_text(x, "state"))
        return state_vector();
    if (is_text(x, "seed"))
        return external_seed(rand_seed);
    return eye01(create_uniform, {&x});
}

M<double> randM(M<double> const& x, M<double> const& y)
{
    if (is_text(x, "state"))
        return set_state(y);
    if (is_text(x, "seed")) {
        LockGuard const guard(Lock::random);
        rand_uses_state = 0;
        rand_seed.set(y[1]);
        return x_M;
    }
    return eye01(create_uniform, {&x, &y});
}

M<double> randM(M<double> const& m, M<double> const& n, M<double> const& p)
{
    return eye01(create_uniform, {&m, &n, &p});
}

M<double> randM(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q)
{
    return eye01(create_uniform, {&m, &n, &p, &q});
}

M<double> randn()
{
    return M<double>(draw_normal(), in_header());
}

M<double> randn(M<double> const& x)
{
    if (is_text(x, "state") || is_text(x, "seed"))
        return external_seed(randn_seed);
    return eye01(create_normal, {&x});
}

M<double> randn(M<double> const& x, M<double> const& y)
{
    if (is_text(x, "state") || is_text(x, "seed")) {
        LockGuard const guard(Lock::random);
        randn_seed.set(y[1]);
        return x_M;
    }
    return eye01(create_normal, {&x, &y});
}

M<double> randn(M<double> const& m, M<double> const& n, M<double> const& p)
{
    return eye01(create_normal, {&m, &n, &p});
}

M<double> randn(M<double> const& m, M<double> const& n, M<double> const& p, M<double> const& q)
{
    return eye01(create_normal, {&m, &n, &p, &q});
}
