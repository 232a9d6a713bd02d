// What the build needs to know about every public declaration.
#ifndef ARRLIB_CORE_API_H
#define ARRLIB_CORE_API_H

// ARRLIB_API marks what leaves the library. ARRLIB_STATIC: the user links the static archive.
#if defined(_WIN32) && !defined(ARRLIB_STATIC)
#if defined(ARRLIB_BUILDING)
#define ARRLIB_API __declspec(dllexport)
#else
#define ARRLIB_API __declspec(dllimport)
// A DLL exports no inline members of class templates: its users instantiate them themselves.
#define ARRLIB_IMPORTING
#endif
#elif defined(_WIN32)
#define ARRLIB_API
#else
#define ARRLIB_API __attribute__((visibility("default")))
#endif

// Out of the way of the fast path: reporting and growing.
#define ARRLIB_COLD __attribute__((cold, noinline))

#define ARRLIB_LIKELY(condition) __builtin_expect(!!(condition), 1)
#define ARRLIB_UNLIKELY(condition) __builtin_expect(!!(condition), 0)

template <class T> class M;
template <class T> class Mr;
template <class T> class Ms;
template <class T> class Sr;
template <class T> class Mb;
template <class T> class Mc;

// Separates a built-in's inputs from its further outputs: size(x, i_o, rows, cols).
struct i_o_t {};
// Selects the constructor that leaves the data fields of a static matrix as they are.
struct global_M_t {};

#endif
