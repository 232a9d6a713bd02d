// The proxies that subscript expressions yield: converting one to a value reads, assigning to one
// writes. They hold addresses only and live within one expression.
#ifndef ARRLIB_CORE_SUBSCRIPT_H
#define ARRLIB_CORE_SUBSCRIPT_H

#include "core/matrix.h"

namespace arrlib {

// Reports that a proxy of this name was made over nothing, and ends the process.
[[noreturn]] ARRLIB_API void proxy_misused(char const* message);

} // namespace arrlib

// A matrix with up to four index matrices. Built-ins return their second and further outputs
// through Mr<double>, so a whole matrix converts to one without indices.
template <class T> class ARRLIB_API Mr {
public:
    Mr() { arrlib::proxy_misused("Mr called"); }
    Mr(M<T>& target) : Mr(0, target, nullptr, nullptr, nullptr, nullptr) {}
    Mr(int count, M<T>& target, M<double> const* i, M<double> const* j, M<double> const* k, M<double> const* l)
        : count_(count), target_(&target), index_{i, j, k, l}
    {
        target.clear_scalar_variable();
    }
    Mr(Mr const&) = default;

    // The selected elements become those of `source`; an empty source deletes them.
    Mr& operator=(M<T> const& source);
    Mr& operator=(Mr const& source);

    int count() const { return count_; }
    M<T>& target() const { return *target_; }
    M<double> const& index(int k) const { return *index_[k]; }

private:
    int count_;
    M<T>* target_;
    M<double> const* index_[4];
};

// The same list for brace access to one element.
template <class T> class ARRLIB_API Ms {
public:
    Ms() : selection_(misused()) {}
    Ms(int count, M<T>& target, M<double> const* i, M<double> const* j, M<double> const* k, M<double> const* l)
        : selection_(count, target, i, j, k, l)
    {
    }
    Ms(Ms const&) = default;

    // The single element: "%s{%s} : indexed more than one element", "%s{%s,%s} : indexed more than
    // one element".
    operator T() const;
    Ms& operator=(T const& element);
    Ms& operator=(Ms const& source);

    Mr<T> const& selection() const { return selection_; }

private:
    [[noreturn]] static Mr<T> misused() { arrlib::proxy_misused("Ms called"); }

    Mr<T> selection_;
};

// A matrix with up to four numeric subscripts, kept zero-based.
template <class T> class ARRLIB_API Sr {
public:
    Sr() { arrlib::proxy_misused("Sr called"); }
    Sr(M<T>& target) : Sr(0, target) {}
    Sr(int count, M<T>& target, double i = 1, double j = 1, double k = 1, double l = 1)
        : count_(count), target_(&target), subscript_{zero_based(i), zero_based(j), zero_based(k), zero_based(l)}
    {
        target.clear_scalar_variable();
    }
    Sr(Sr const&) = default;

    Sr& operator=(M<T> const& source);
    Sr& operator=(Sr const& source);

    int count() const { return count_; }
    M<T>& target() const { return *target_; }
    int subscript(int k) const { return subscript_[k]; }

private:
    // Truncated; what no matrix can have becomes the largest or smallest integer.
    static int zero_based(double subscript)
    {
        double const from_zero = subscript - 1;
        if (from_zero > -2147483648.0 && from_zero < 2147483647.0)
            return static_cast<int>(from_zero);
        return from_zero >= 2147483647.0 ? 2147483647 : -2147483647 - 1;
    }

    int count_;
    M<T>* target_;
    int subscript_[4];
};

template <class T> inline Sr<T> M<T>::operator()(double k)
{
    return Sr<T>(1, *this, k);
}
template <class T> inline Sr<T> M<T>::operator()(double i, double j)
{
    return Sr<T>(2, *this, i, j);
}
template <class T> inline Sr<T> M<T>::operator()(double i, double j, double k)
{
    return Sr<T>(3, *this, i, j, k);
}
template <class T> inline Sr<T> M<T>::operator()(double i, double j, double k, double l)
{
    return Sr<T>(4, *this, i, j, k, l);
}
template <class T> inline Mr<T> M<T>::operator()(M<double> const& i)
{
    return Mr<T>(1, *this, &i, nullptr, nullptr, nullptr);
}
template <class T> inline Mr<T> M<T>::operator()(M<double> const& i, M<double> const& j)
{
    return Mr<T>(2, *this, &i, &j, nullptr, nullptr);
}
template <class T> inline Mr<T> M<T>::operator()(M<double> const& i, M<double> const& j, M<double> const& k)
{
    return Mr<T>(3, *this, &i, &j, &k, nullptr);
}
template <class T>
inline Mr<T> M<T>::operator()(M<double> const& i, M<double> const& j, M<double> const& k, M<double> const& l)
{
    return Mr<T>(4, *this, &i, &j, &k, &l);
}
template <class T> inline Ms<T> M<T>::br(M<double> const& i)
{
    return Ms<T>(1, *this, &i, nullptr, nullptr, nullptr);
}
template <class T> inline Ms<T> M<T>::br(M<double> const& i, M<double> const& j)
{
    return Ms<T>(2, *this, &i, &j, nullptr, nullptr);
}
template <class T> inline Ms<T> M<T>::br(M<double> const& i, M<double> const& j, M<double> const& k)
{
    return Ms<T>(3, *this, &i, &j, &k, nullptr);
}
template <class T>
inline Ms<T> M<T>::br(M<double> const& i, M<double> const& j, M<double> const& k, M<double> const& l)
{
    return Ms<T>(4, *this, &i, &j, &k, &l);
}

#endif
