#include "runtime/scope.h"

#include "platform/platform.h"
#include "runtime/console.h"
#include "runtime/constants.h"
#include "runtime/messages.h"

#include <algorithm>
#include <cstring>

using namespace arrlib;

int arrlib::variables_watched = 0;
int arrlib::variables_listed = 0;
constinit variables_scope_t variables_scope = {};

namespace {

// The values of ended globals are the scope's own, with names on the heap; every other variable
// lives elsewhere.
struct KeptValue {
    MObject* value;
    KeptValue* next;
};
constinit KeptValue* kept_values = nullptr;

// Names are few and short: two of one level with the same hash cost a comparison now and then.
std::uint32_t hash_of(char const* name)
{
    std::uint32_t hash = 2166136261u;
    for (; *name; ++name)
        hash = (hash ^ static_cast<unsigned char>(*name)) * 16777619u;
    return hash;
}

// The first position from `from` on whose hash is as wanted, or `count`.
int next_with_hash(std::uint32_t const* hashes, int from, int count, std::uint32_t wanted)
{
    // Without an exit from a group the compiler compares several at once.
    constexpr int group = 16;
    for (; from + group <= count; from += group) {
        std::uint32_t found = 0;
        for (int k = 0; k < group; ++k)
            found |= hashes[from + k] == wanted;
        if (found)
            break;
    }
    while (from < count && hashes[from] != wanted)
        ++from;
    return from;
}

} // namespace

void arrlib::follow_name(MObject* variable)
{
    variables_scope.rename(variable);
}

void variables_scope_t::begin()
{
    if (depth + 1 >= levels) {
        error("Call stack too deep");
        ++beyond;
        return;
    }
    ++depth;
}

void variables_scope_t::end()
{
    if (beyond > 0) {
        --beyond;
        return;
    }
    if (depth == 0)
        return;
    count[depth] = 0;
    --depth;
}

void variables_scope_t::reset()
{
    beyond = 0;
    while (depth > 0)
        end();
}

int variables_scope_t::find(unsigned level, char const* name) const
{
    std::uint32_t const wanted = hash_of(name);
    int const used = count[level];
    for (int k = 0; (k = next_with_hash(hashes(level), k, used, wanted)) < used; ++k)
        if (std::strcmp(variables[level][k]->getname(), name) == 0)
            return k;
    return -1;
}

variables_scope_t::Place variables_scope_t::place_of(MObject const* variable) const
{
    // Variables end in the reverse order of their construction, as a rule.
    for (unsigned level = depth + 1; level-- > 0;)
        for (int k = count[level]; k-- > 0;)
            if (variables[level][k] == variable)
                return {level, k};
    return {0, -1};
}

bool variables_scope_t::make_room(unsigned level)
{
    int const used = count[level];
    if (used < capacity[level])
        return true;
    int const larger = capacity[level] * 2 + 4;
    auto const grown = static_cast<MObject**>(platform::heap_allocate(static_cast<std::size_t>(larger) * (sizeof(MObject*) + sizeof(std::uint32_t))));
    if (!grown)
        return false;
    std::copy_n(variables[level], used, grown);
    std::copy_n(hashes(level), used, reinterpret_cast<std::uint32_t*>(grown + larger));
    platform::heap_release(variables[level]);
    variables[level] = grown;
    capacity[level] = larger;
    return true;
}

void variables_scope_t::append(unsigned level, MObject* variable)
{
    int const position = count[level]++;
    variables[level][position] = variable;
    hashes(level)[position] = hash_of(variable->getname());
    variables_listed = 1;
}

bool variables_scope_t::list(MObject* variable)
{
    if (!variable->getname() || find(variable->getname()) >= 0)
        return false;
    if (!make_room(depth)) {
        error(messages::out_of_memory);
        return false;
    }
    append(depth, variable);
    return true;
}

void variables_scope_t::Add(MObject* variable)
{
    list(variable);
}

void variables_scope_t::remove(unsigned level, int position)
{
    int const behind = --count[level] - position;
    MObject** const variable = variables[level] + position;
    std::uint32_t* const hash = hashes(level) + position;
    std::copy_n(variable + 1, behind, variable);
    std::copy_n(hash + 1, behind, hash);
}

void variables_scope_t::Delete(MObject* variable)
{
    int const position = variable->getname() ? find(variable->getname()) : -1;
    if (position >= 0)
        remove(depth, position);
}

void variables_scope_t::forget(MObject* variable)
{
    if (Place const place = place_of(variable); place.position >= 0)
        remove(place.level, place.position);
}

void variables_scope_t::rename(MObject* variable)
{
    Place const place = place_of(variable);
    if (place.position < 0)
        return;
    if (variable->getname())
        hashes(place.level)[place.position] = hash_of(variable->getname());
    else
        remove(place.level, place.position);
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
    bool const is_new = find(0, copy) < 0;
    bool const has_room = is_new && make_room(0);
    if (has_room)
        append(0, value);
    else
        discard(value);
    if (is_new && !has_room)
        error(messages::out_of_memory);
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
    while (this == &variables_scope && kept_values)
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
