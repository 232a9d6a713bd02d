// Operations on whole arrays, beside Armadillo, Eigen and plain loops.
#include "rows.h"

#include <Eigen/Dense>
#include <armadillo>
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>

namespace {

constexpr int million = 1000000;
constexpr benchmark::TimeUnit us = benchmark::kMicrosecond;

template <class Work> void row(std::string const& name, Work work, benchmark::TimeUnit unit = us)
{
    benchmark::RegisterBenchmark(name.c_str(), [work](benchmark::State& state) mutable {
        for (auto _ : state) {
            auto z = work();
            benchmark::DoNotOptimize(&z);
            benchmark::ClobberMemory();
        }
    })->Unit(unit);
}

// Uniform in (0, 1), the same for everybody.
struct Operands {
    M<double> a, b, c;
    arma::mat aa, ab, ac;
    Eigen::ArrayXXd ea, eb, ec;

    Operands(int rows, int cols) : a(rows::uniform(rows, cols)), b(rows::uniform(rows, cols)), c(rows::uniform(rows, cols))
    {
        aa = ab = ac = arma::mat(a.addr(), static_cast<arma::uword>(rows), static_cast<arma::uword>(cols));
        ea = eb = ec = Eigen::Map<Eigen::ArrayXXd>(a.addr(), rows, cols);
    }
};

void elementwise(std::string const& size, int rows, int cols)
{
    static Operands large(1000, 1000), small(1000, 1);
    Operands& x = rows * cols == million ? large : small;
    row("a+b, " + size + "/arrlib", [&x] { return x.a + x.b; });
    row("a+b, " + size + "/Armadillo", [&x] { return arma::mat(x.aa + x.ab); });
    row("a+b, " + size + "/Eigen", [&x] { return Eigen::ArrayXXd(x.ea + x.eb); });
    row("a.*b+c-2, " + size + "/arrlib", [&x] { return dot_mul(x.a, x.b) + x.c - 2; });
    row("a.*b+c-2, " + size + "/Armadillo", [&x] { return arma::mat(x.aa % x.ab + x.ac - 2); });
    row("a.*b+c-2, " + size + "/Eigen", [&x] { return Eigen::ArrayXXd(x.ea * x.eb + x.ec - 2); });
    row("sin, " + size + "/arrlib", [&x] { return sin(x.a); });
    row("sin, " + size + "/Armadillo", [&x] { return arma::mat(arma::sin(x.aa)); });
    row("sin, " + size + "/Eigen", [&x] { return Eigen::ArrayXXd(x.ea.sin()); });
    row("exp, " + size + "/arrlib", [&x] { return exp(x.a); });
    row("exp, " + size + "/Armadillo", [&x] { return arma::mat(arma::exp(x.aa)); });
    row("exp, " + size + "/Eigen", [&x] { return Eigen::ArrayXXd(x.ea.exp()); });
    row("log, " + size + "/arrlib", [&x] { return log(x.a); });
    row("log, " + size + "/Armadillo", [&x] { return arma::mat(arma::log(x.aa)); });
    row("log, " + size + "/Eigen", [&x] { return Eigen::ArrayXXd(x.ea.log()); });
}

std::size_t area(M<double> const& x)
{
    return static_cast<std::size_t>(x.size());
}

void plain_loops()
{
    static Operands x(1000, 1000);
    row("a+b, 1e6/plain loop", [] {
        M<double> z(0, 1000, 1000);
        double const *a = x.a.addr(), *b = x.b.addr();
        double* to = z.addr();
        for (std::size_t k = 0; k < area(z); ++k)
            to[k] = a[k] + b[k];
        return z;
    });
    row("a.*b+c-2, 1e6/plain loop", [] {
        M<double> z(0, 1000, 1000);
        double const *a = x.a.addr(), *b = x.b.addr(), *c = x.c.addr();
        double* to = z.addr();
        for (std::size_t k = 0; k < area(z); ++k)
            to[k] = a[k] * b[k] + c[k] - 2;
        return z;
    });
    row("pow(a,2.5), 1e6/arrlib", [] { return dot_pow(x.a, 2.5); });
    row("pow(a,2.5), 1e6/Armadillo", [] { return arma::mat(arma::pow(x.aa, 2.5)); });
    row("pow(a,2.5), 1e6/Eigen", [] { return Eigen::ArrayXXd(x.ea.pow(2.5)); });
    row("atan2, 1e6/arrlib", [] { return atan2(x.a, x.b); });
    row("atan2, 1e6/Armadillo", [] { return arma::mat(arma::atan2(x.aa, x.ab)); });
    row("cumsum, 1e6/arrlib", [] { return cumsum(x.a, one_M); });
    row("cumsum, 1e6/Armadillo", [] { return arma::mat(arma::cumsum(x.aa)); });
    row("cumsum of a vector, 1e6/arrlib", [v = reshape(x.a, 1000000, 1)] { return cumsum(v); });
    row("cumsum of a vector, 1e6/Armadillo", [v = arma::vec(arma::vectorise(x.aa))] { return arma::vec(arma::cumsum(v)); });
    row("a*b, 1000x1000/arrlib", [] { return x.a * x.b; }, benchmark::kMillisecond);
    row("a*b, 1000x1000/Armadillo", [] { return arma::mat(x.aa * x.ab); }, benchmark::kMillisecond);
    row("a*b, 1000x1000/Eigen", [] { return Eigen::MatrixXd(x.ea.matrix() * x.eb.matrix()); }, benchmark::kMillisecond);
}

void complex_values()
{
    static M<double> z = rows::uniform(1000, 1000) + dot_mul(i, rows::uniform(1000, 1000));
    static arma::cx_mat az(arma::mat(z.addr(), 1000, 1000), arma::mat(z.addi(), 1000, 1000));
    static Eigen::ArrayXXcd ez = Eigen::Map<Eigen::ArrayXXcd>(az.memptr(), 1000, 1000);
    row("exp of complex, 1e6/arrlib", [] { return exp(z); });
    row("exp of complex, 1e6/Armadillo", [] { return arma::cx_mat(arma::exp(az)); });
    row("exp of complex, 1e6/Eigen", [] { return Eigen::ArrayXXcd(ez.exp()); });
    row("z.*z, complex 1e6/arrlib", [] { return dot_mul(z, z); });
    row("z.*z, complex 1e6/Armadillo", [] { return arma::cx_mat(az % az); });
    row("z.*z, complex 1e6/Eigen", [] { return Eigen::ArrayXXcd(ez * ez); });
}

void reductions()
{
    static M<double> x = rows::uniform(2500, 4000), v = reshape(x, 10000000, 1);
    static arma::mat ax(x.addr(), 2500, 4000);
    static arma::vec av = arma::vectorise(ax);
    static Eigen::ArrayXXd ex = Eigen::Map<Eigen::ArrayXXd>(x.addr(), 2500, 4000);
    row("sum along columns, 1e7/arrlib", [] { return sum(x, 1); });
    row("sum along columns, 1e7/Armadillo", [] { return arma::mat(arma::sum(ax, 0)); });
    row("sum along columns, 1e7/Eigen", [] { return Eigen::ArrayXXd(ex.colwise().sum()); });
    row("sum along rows, 1e7/arrlib", [] { return sum(x, 2); });
    row("sum along rows, 1e7/Armadillo", [] { return arma::mat(arma::sum(ax, 1)); });
    row("sum along rows, 1e7/Eigen", [] { return Eigen::ArrayXXd(ex.rowwise().sum()); });
    row("index of the largest, 1e7/arrlib", [] {
        M<double> y, at;
        max(v, i_o, y, at);
        return at;
    });
    row("index of the largest, 1e7/Armadillo", [] { return av.index_max(); });
    row("median of columns, 1e7/arrlib", [] { return median(x, 1); }, benchmark::kMillisecond);
    row("median of columns, 1e7/Armadillo", [] { return arma::mat(arma::median(ax, 0)); }, benchmark::kMillisecond);
}

void scalars()
{
    row("1e6 times s=s+k*two-s/three, 1x1/arrlib", [] {
        M<double> s(0.0), two(2.0), three(3.0);
        for (int k = 1; k <= million; ++k)
            s = s + k * two - dot_div(s, three);
        return s;
    });
    row("1e6 times s=s+k*two-s/three, 1x1/Armadillo", [] {
        arma::mat s(1, 1, arma::fill::zeros), two(1, 1), three(1, 1);
        two(0) = 2;
        three(0) = 3;
        for (int k = 1; k <= million; ++k)
            s = s + k * two - s / three;
        return s;
    });
}

struct Registered {
    Registered()
    {
        elementwise("1e6", 1000, 1000);
        elementwise("1e3", 1000, 1);
        plain_loops();
        complex_values();
        reductions();
        scalars();
    }
} const registered;

} // namespace
