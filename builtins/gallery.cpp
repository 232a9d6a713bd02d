#include "builtins/gallery.h"

#include "builtins/args.h"
#include "builtins/formula.h"
#include "core/arguments.h"
#include "core/sparse.h"
#include "runtime/errors.h"
#include "runtime/report.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>

using namespace arrlib;

namespace {

constexpr Arguments args("gallery");

// The parameters behind the name of a family.
struct Parameters {
    M<double> const* given[4] = {&nop_M, &nop_M, &nop_M, &nop_M};

    M<double> const& operator[](int k) const { return *given[k]; }
    double number(int k, double otherwise) const { return number_or(*given[k], otherwise); }
};

// The order that the first parameter asks for.
class Order {
public:
    explicit Order(Parameters const& p) : ok_(!given(p[0]) || args.scalar(p[0])), n_(ok_ ? std::max(integer_argument(p[0]), 0) : 0) {}

    explicit operator bool() const { return ok_; }
    operator int() const { return n_; }

private:
    bool ok_;
    int n_;
};

template <class Element> M<double> square_by(Parameters const& p, Element element)
{
    Order const n(p);
    return n ? by_formula(n, n, [&](int i, int j) { return element(static_cast<int>(n), i, j); }) : x_M;
}

// A list of real numbers, or 1 to n for one number.
class List {
public:
    explicit List(M<double> const& x) : list_(full_form(x)), ok_(args.real(x) && has_storage(list_)), count_(list_.size() == 1 ? std::max(integer_argument(x), 0) : list_.size()) {}

    explicit operator bool() const { return ok_; }
    int count() const { return count_; }
    // Counted from 1.
    double operator()(int k) const { return list_.size() == 1 ? k : list_.addr()[k - 1]; }

private:
    M<double> list_;
    bool ok_;
    int count_;
};

// --- families ------------------------------------------------------------------------------------

M<double> cauchy(Parameters const& p)
{
    List const x(p[0]), y(given(p[1]) ? p[1] : p[0]);
    if (!x || !y)
        return x_M;
    if (x.count() != y.count()) {
        args.sizes_differ(p[0], p[1]);
        return x_M;
    }
    return by_formula(x.count(), y.count(), [&](int i, int j) { return 1 / (x(i) + y(j)); });
}

// Differences of the points come from sines: of the cosines themselves little would be left.
M<double> chebspec(Parameters const& p)
{
    Order const n(p);
    if (!n)
        return x_M;
    bool const without_first = p.number(1, 0) == 1;
    int const last = n - (without_first ? 0 : 1), skipped = without_first ? 1 : 0;
    if (last == 0)
        return by_formula(n, n, [](int, int) { return 0.0; });
    double const half_step = std::acos(-1.0) / (2.0 * last), corner = (2.0 * last * last + 1) / 6;
    return by_formula(n, n, [=](int row, int col) {
        int const i = row + skipped - 1, j = col + skipped - 1;
        if (i == j && (i == 0 || i == last))
            return i == 0 ? corner : -corner;
        if (i == j)
            return -std::cos(2 * half_step * i) / (2 * std::pow(std::sin(2 * half_step * i), 2));
        auto const weight = [=](int k) { return (k == 0 || k == last ? 2.0 : 1.0) * (k % 2 ? -1 : 1); };
        double const difference = 2 * std::sin(half_step * (i + j)) * std::sin(half_step * (j - i));
        return weight(i) / weight(j) / difference;
    });
}

M<double> circul(Parameters const& p)
{
    List const c(p[0]);
    int const n = c.count();
    return c ? by_formula(n, n, [&](int i, int j) { return c((j - i + n) % n + 1); }) : x_M;
}

M<double> clement(Parameters const& p)
{
    bool const symmetric = p.number(1, 0) == 1;
    return square_by(p, [=](int n, int i, int j) {
        if (i - j != 1 && j - i != 1)
            return 0.0;
        double const above = std::min(i, j), below = n - above;
        return symmetric ? std::sqrt(above * below) : i < j ? above : below;
    });
}

M<double> fiedler(Parameters const& p)
{
    List const c(p[0]);
    return c ? by_formula(c.count(), c.count(), [&](int i, int j) { return std::fabs(c(i) - c(j)); }) : x_M;
}

M<double> frank(Parameters const& p)
{
    bool const reflected = p.number(1, 0) == 1;
    return square_by(p, [=](int n, int i, int j) {
        int const row = reflected ? n + 1 - j : i, col = reflected ? n + 1 - i : j;
        return row > col + 1 ? 0.0 : n + 1.0 - std::max(row, col);
    });
}

M<double> jordan_block(Parameters const& p)
{
    double const lambda = p.number(1, 1);
    return square_by(p, [=](int, int i, int j) { return i == j ? lambda : j == i + 1 ? 1.0 : 0.0; });
}

// The powers of the sine scale the rows, the cosine stands above the diagonal.
M<double> kahan(Parameters const& p)
{
    int const rows = integer_argument(p[0]), cols = p[0].size() > 1 ? integer_argument(p[0][2]) : rows;
    double const theta = p.number(1, 1.2), raise = p.number(2, 25) * DBL_EPSILON;
    return by_formula(rows, cols, [=](int i, int j) {
        double const scale = std::pow(std::sin(theta), i - 1);
        return i > j ? 0.0 : i < j ? -std::cos(theta) * scale : scale + raise * (cols - i + 1);
    });
}

M<double> lehmer(Parameters const& p)
{
    return square_by(p, [](int, int i, int j) { return static_cast<double>(std::min(i, j)) / std::max(i, j); });
}

M<double> minij(Parameters const& p)
{
    return square_by(p, [](int, int i, int j) { return static_cast<double>(std::min(i, j)); });
}

M<double> moler(Parameters const& p)
{
    double const alpha = p.number(1, -1);
    return square_by(p, [=](int, int i, int j) { return i == j ? (i - 1) * alpha * alpha + 1 : (std::min(i, j) - 1) * alpha * alpha + alpha; });
}

M<double> parter(Parameters const& p)
{
    return square_by(p, [](int, int i, int j) { return 1 / (i - j + 0.5); });
}

M<double> pei(Parameters const& p)
{
    double const alpha = p.number(1, 1);
    return square_by(p, [=](int, int i, int j) { return i == j ? alpha + 1 : 1.0; });
}

M<double> ris(Parameters const& p)
{
    return square_by(p, [](int n, int i, int j) { return 0.5 / (n - i - j + 1.5); });
}

// One diagonal of a tridiagonal matrix; a number stands for all of them.
class Band {
public:
    Band(M<double> const& x, double otherwise) : list_(full_form(given(x) ? x : M<double>(otherwise))) {}

    explicit operator bool() const { return has_storage(list_); }
    bool fits(int length) const { return list_.size() == 1 || list_.size() == length; }
    double operator[](int k) const { return list_.addr()[list_.size() == 1 ? 0 : k]; }

private:
    M<double> list_;
};

M<double> tridiagonal(int n, M<double> const& c, M<double> const& d, M<double> const& e)
{
    Band const below(c, -1), on(d, 2), above(e, -1);
    if (!below || !on || !above || !args.real(c) || !args.real(d) || !args.real(e))
        return x_M;
    if (!below.fits(n - 1) || !above.fits(n - 1) || !on.fits(n)) {
        args.sizes_differ(d, below.fits(n - 1) ? e : c);
        return x_M;
    }
    M<double> made = sparse_with_room(false, Dims(n, n), n > 0 ? static_cast<int>(std::min<std::int64_t>(3 * static_cast<std::int64_t>(n) - 2, INT_MAX)) : 0);
    if (!has_storage(made))
        return x_M;
    EntryWriter writer(made);
    for (int j = 0; j < made.cols(); ++j) {
        if (j > 0)
            writer.add(j * n + j - 1, above[j - 1], 0);
        writer.add(j * n + j, on[j], 0);
        if (j < n - 1)
            writer.add(j * n + j + 1, below[j], 0);
    }
    made.getnnz() = writer.count();
    return made;
}

// An order first, or the three diagonals alone.
M<double> tridiag(Parameters const& p)
{
    if (given(p[2]) && !given(p[3]))
        return tridiagonal(p[1].size(), p[0], p[1], p[2]);
    Order const n(p);
    return n ? tridiagonal(n, p[1], p[2], p[3]) : x_M;
}

struct Family {
    char const* name;
    M<double> (*make)(Parameters const&);
};

constexpr Family families[] = {
    {"cauchy", cauchy}, {"chebspec", chebspec}, {"circul", circul}, {"clement", clement}, {"fiedler", fiedler}, {"frank", frank}, {"jordbloc", jordan_block}, {"kahan", kahan},
    {"lehmer", lehmer}, {"minij", minij},       {"moler", moler},   {"parter", parter},   {"pei", pei},         {"ris", ris},     {"tridiag", tridiag},
};

M<double> unknown_family(char const* name)
{
    error("gallery: unknown family %s", name);
    return x_M;
}

M<double> of_family(M<double> const& name, Parameters const& parameters)
{
    std::string const word = text_of(name, 30);
    for (Family const& family : families)
        if (same_word(family.name, word.c_str()))
            return family.make(parameters);
    return unknown_family(word.c_str());
}

M<double> by_number(M<double> const& number)
{
    static constexpr double three[] = {-149, 537, -27, -50, 180, -9, -154, 546, -25};
    static constexpr double five[] = {-9, 70, -575, 3891, 1024, 11, -69, 575, -3891, -1024, -21, 141, -1149, 7782, 2048, 63, -421, 3451, -23345, -6144, -252, 1684, -13801, 93365, 24572};
    double const order = number[1];
    if (number.size() != 1 || (order != 3 && order != 5))
        return unknown_family(OperandName(number));
    int const n = static_cast<int>(order);
    return by_formula(n, n, [=](int i, int j) { return (n == 3 ? three : five)[(j - 1) * n + i - 1]; });
}

} // namespace

M<double> gallery(M<double> const& name)
{
    return name.isstr() ? of_family(name, {}) : by_number(name);
}
M<double> gallery(M<double> const& name, M<double> const& p1)
{
    return of_family(name, {{&p1, &nop_M, &nop_M, &nop_M}});
}
M<double> gallery(M<double> const& name, M<double> const& p1, M<double> const& p2)
{
    return of_family(name, {{&p1, &p2, &nop_M, &nop_M}});
}
M<double> gallery(M<double> const& name, M<double> const& p1, M<double> const& p2, M<double> const& p3)
{
    return of_family(name, {{&p1, &p2, &p3, &nop_M}});
}
M<double> gallery(M<double> const& name, M<double> const& p1, M<double> const& p2, M<double> const& p3, M<double> const& p4)
{
    return of_family(name, {{&p1, &p2, &p3, &p4}});
}
