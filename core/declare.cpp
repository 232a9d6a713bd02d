#include "core/declare.h"

#include "platform/platform.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/messages.h"
#include "runtime/report.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <initializer_list>

using namespace arrlib;

namespace {

struct Property {
    char const* name;
    bool (*holds)(M<double> const& value);
};

bool all_integers(double const* parts, int count)
{
    return !parts || std::all_of(parts, parts + count, [](double part) { return std::floor(part) == part; });
}

constexpr Property integer{"integer", [](M<double> const& value) {
                               return all_integers(value.addr(), value.getnnz()) && all_integers(value.addi(), value.getnnz());
                           }};
constexpr Property real{"real", [](M<double> const& value) { return !value.isc(); }};
constexpr Property one_element{"scalar", [](M<double> const& value) { return value.size() == 1; }};
constexpr Property vector{"vector", [](M<double> const& value) { return value.size() > 0 && value.vectordim() != 0; }};

M<double> state(char const* checker, M<double> const& value, std::initializer_list<Property> properties)
{
    for (Property const& property : properties)
        if (!property.holds(value)) {
            error("%s: %s not %s", checker, OperandName(value), property.name);
            break;
        }
    return x_M;
}

template <class Value> Value* lazily_named(char const* name, void** slot)
{
    if (*slot)
        return static_cast<Value*>(*slot);
    std::size_t const size = std::strlen(name) + 1;
    char* const copy = static_cast<char*>(platform::heap_allocate(size));
    if (!copy) {
        error(messages::out_of_memory);
        return nullptr;
    }
    std::memcpy(copy, name, size);
    try {
        *slot = new Value(copy, 0, 0);
    } catch (...) {
        platform::heap_release(copy);
        throw;
    }
    if (!*slot)
        platform::heap_release(copy);
    return static_cast<Value*>(*slot);
}

} // namespace

M<double> mbint(M<double> const& value)
{
    return state("mbint", value, {integer});
}

M<double> mbintreal(M<double> const& value)
{
    return state("mbintreal", value, {integer, real});
}

M<double> mbintrealscalar(M<double> const& value)
{
    return state("mbintrealscalar", value, {integer, real, one_element});
}

M<double> mbintrealvector(M<double> const& value)
{
    return state("mbintrealvector", value, {integer, real, vector});
}

M<double> mbintscalar(M<double> const& value)
{
    return state("mbintscalar", value, {integer, one_element});
}

M<double> mbintvector(M<double> const& value)
{
    return state("mbintvector", value, {integer, vector});
}

M<double> mbscalar(M<double> const& value)
{
    return state("mbscalar", value, {one_element});
}

M<double> mbvector(M<double> const& value)
{
    return state("mbintvector", value, {vector});
}

double scalar(M<double> const& value)
{
    char const* const problem = value.size() != 1  ? "not scalar"
                                : value.isc()      ? "complex"
                                : value.isstr()    ? "string"
                                : value.issparse() ? "sparse"
                                                   : nullptr;
    if (problem)
        error("scalar: matrix %s is %s", OperandName(value), problem);
    return value[1];
}

double scalar(M<M<double>> const&)
{
    error("scalar: cell matrix is not accepted");
    return 0;
}

M<double>* void_to_M(char const* name, void** slot)
{
    return lazily_named<M<double>>(name, slot);
}

M<M<double>>* void_to_MM(char const* name, void** slot)
{
    return lazily_named<M<M<double>>>(name, slot);
}
