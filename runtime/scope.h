// The variables that a debugger or an interactive host can list: one level per translated call.
#ifndef ARRLIB_RUNTIME_SCOPE_H
#define ARRLIB_RUNTIME_SCOPE_H

#include "core/matrix.h"
#include "runtime/errors.h"

#include <cstdint>

// Levels 0 to 256, each with the named variables of one translated call, in the order of their
// construction. A translated function calls begin() on entry and end() on return. The search for a name
// goes through the level in that order; hashes of the names lie behind each array of variables.
struct ARRLIB_API variables_scope_t {
    static constexpr unsigned levels = 257;

    unsigned depth;
    MObject** variables[levels];
    int count[levels];
    int capacity[levels];

    // Enters a level: "Call stack too deep" for the 257th. Where the report returns, the call shares the
    // deepest level, and its end() leaves that as it is.
    void begin();
    // Leaves the level and forgets its variables; nothing at level 0.
    void end();
    // Leaves every level but 0.
    void reset();
    // Adds a named variable to the current level unless one of that name is there.
    void Add(MObject* variable);
    // Removes the variable of that name from the current level; the others keep their order.
    void Delete(MObject* variable);

    // Position of a name at the current level, or -1.
    int find(char const* name) const { return find(depth, name); }
    // Add, telling whether the variable was added: "Out of memory!".
    bool list(MObject* variable);
    // Follows a variable that has another name now, or none and leaves.
    void rename(MObject* variable);
    // Removes the variable itself, at whatever level it stands.
    void forget(MObject* variable);
    // Keeps the value of a global whose object has ended, under a copy of its name.
    void save(MObject* value, char const* name);
    // The variable of this name at the current level, taken out of it, or null.
    MObject* take_saved(char const* name);
    // Ends a value that was kept here; a variable that somebody else owns is left alone.
    void discard(MObject* value);

    ~variables_scope_t();

private:
    struct Place {
        unsigned level;
        int position;
    };

    std::uint32_t* hashes(unsigned level) const { return reinterpret_cast<std::uint32_t*>(variables[level] + capacity[level]); }
    int find(unsigned level, char const* name) const;
    // Where the variable itself stands; a position of -1 when it is not listed.
    Place place_of(MObject const* variable) const;
    bool make_room(unsigned level);
    void append(unsigned level, MObject* variable);
    void remove(unsigned level, int position);

    // Calls that found no level of their own.
    unsigned beyond;
};
ARRLIB_API extern variables_scope_t variables_scope;

// The entry points of a debugger or a host, which may look them up by name.
extern "C" {

// Turns the debugger mode on for good.
ARRLIB_API void ive_set_mode();
// Number of variables at the current level; the name of the k-th from 0, "" beyond the last.
ARRLIB_API int ive_count_vars();
ARRLIB_API char const* ive_var_name(int k);
// Shows the variable of that name as a statement without a semicolon does, or prints
// "Variable '%s' not found.". Returns 0.
ARRLIB_API int ive_print(char const* name);

}

// For a host that has caught a thrown error: reports it (error_lasterr) and resets the scope.
ARRLIB_API M<double> ive_cleanup();

namespace arrlib {

// Whether such a variable is a global, whose value outlives it.
inline bool scope_declares_globals()
{
    return variables_watched && variables_scope.depth == 0;
}

} // namespace arrlib

#endif
