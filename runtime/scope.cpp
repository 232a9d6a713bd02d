#include "runtime/scope.h"

#include "platform/platform.h"
#include "runtime/console.h"
#include "runtime/constants.h"
#include "runtime/messages.h"

#include <algorithm>
#include <cstring>

using namespace arrlib;

int arrlib::variables_watched = 0;
constinit variables_scope_t variables_scope = {};

namespace {

// The values of ended globals are the scope's own, with names on the heap; every other variable
// lives elsewhere.
struct KeptValue {
    MObject* value;
    KeptValue* next;
};
constinit KeptValue* kept_values = nullptr;

} // namespace

void variables_scope_t::begin()
{
    if (depth + 1 >= levels) {
        error("Call stack too deep");
        return;
    }
    ++depth;
}

void variables_scope_t::end()
{
    if (depth == 0)
        return;
    count[depth] = 0;
    --depth;
}

void variables_scope_t::reset()
{
    while (depth > 0)
        end();
}

int variables_scope_t::find(char const* name) const
{
    for (int k = 0; k < count[depth]; ++k)
        if (std::strcmp(variables[depth][k]->getname(), name) == 0)
            return k;
    return -1;
}

bool variables_scope_t::list(MObject* variable)
{
    if (!variable->getname() || find(variable->getname()) >= 0)
        return false;
    int& used = count[depth];
    if (used == capacity[depth]) {
        int const larger = capacity[depth] * 2 + 4;
        auto const grown = static_cast<MObject**>(platform::heap_allocate(static_cast<std::size_t>(larger) * sizeof(MObject*)));
        if (!grown) {
            error(messages::out_of_memory);
            return false;
        }
        std::copy_n(variables[depth], used, grown);
        platform::heap_release(variables[depth]);
        variables[depth] = grown;
        capacity[depth] = larger;
    }
    variables[depth][used++] = variable;
    return true;
}

void variables_scope_t::Add(MObject* variable)
{
    list(variable);
}

void variables_scope_t::remove(unsigned level, int position)
{
    MObject** const first = variables[level] + position;
    std::copy(first + 1, variables[level] + count[level], first);
    --count[level];
}

void variables_scope_t::Delete(MObject* variable)
{
    int const position = variable->getname() ? find(variable->getname()) : -1;
    if (position >= 0)
        remove(depth, position);
}

void variables_scope_t::forget(MObject* variable)
{
    for (unsigned level = depth + 1; level-- > 0;) {
        MObject** const end = variables[level] + count[level];
        MObject** const found = std::find(variables[level], end, variable);
        if (found != end)
            return remove(level, static_cast<int>(found - variables[level]));
    }
}

void variables_scope_t::save(MObject* value, char const* name)
{
    std::size_t const size = std::strlen(name) + 1;
    auto const kept = static_cast<KeptValue*>(platform::heap_allocate(sizeof(KeptValue)));
    auto const copy = static_cast<char*>(platform::heap_allocate(size));
    if (!value || !kept || !copy) {
        platform::heap_release(kept);
        platform::heap_release(copy);
        if (!value) // reported where it happened
            return;
        value->setname(nullptr);
        delete value;
        error(messages::out_of_memory);
        return;
    }
    std::memcpy(copy, name, size);
    value->setname(copy);
    *kept = {value, kept_values};
    kept_values = kept;
    // Globals live at level 0, wherever the object that held the value ended.
    unsigned const level = depth;
    depth = 0;
    bool const listed = list(value);
    depth = level;
    if (!listed)
        discard(value);
}

MObject* variables_scope_t::take_saved(char const* name)
{
    int const position = find(name);
    if (position < 0)
        return nullptr;
    MObject* const found = variables[depth][position];
    remove(depth, position);
    return found;
}

void variables_scope_t::discard(MObject* value)
{
    for (KeptValue** link = &kept_values; *link; link = &(*link)->next)
        if ((*link)->value == value) {
            KeptValue* const kept = *link;
            *link = kept->next;
            platform::heap_release(kept);
            char* const name = const_cast<char*>(value->getname());
            value->setname(nullptr);
            delete value;
            platform::heap_release(name);
            return;
        }
}

variables_scope_t::~variables_scope_t()
{
    while (kept_values)
        discard(kept_values->value);
    for (unsigned level = 0; level < levels; ++level) {
        platform::heap_release(variables[level]);
        variables[level] = nullptr;
        count[level] = capacity[level] = 0;
    }
}

void ive_set_mode()
{
    variables_watched = 1;
}

int ive_count_vars()
{
    return variables_scope.count[variables_scope.depth];
}

char const* ive_var_name(int k)
{
    unsigned const level = variables_scope.depth;
    return k >= 0 && k < variables_scope.count[level] ? variables_scope.variables[level][k]->getname() : "";
}

int ive_print(char const* name)
{
    int const position = variables_scope.find(name);
    if (position < 0)
        nx_printf("Variable '%s' not found.\n", name);
    else
        variables_scope.variables[variables_scope.depth][position]->display(1);
    return 0;
}

M<double> ive_cleanup()
{
    error_lasterr();
    variables_scope.reset();
    return x_M;
}
