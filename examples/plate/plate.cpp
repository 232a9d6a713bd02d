// What the translator makes of plate.m.
#include <arrlib.h>

#include <cmath>

static M<double> plate()
{
    nx_frame frame("plate");
    M<double> number("number", 0, 0);
    M<double> entry("entry", 0, 0);
    M<double> warm("warm", 0, 0);
    M<double> cold("cold", 0, 0);
    M<double> colour("colour", 0, 0);
    M<double> A("A", 0, 0);
    M<double> T("T", 0, 0);
    M<double> points("points", 0, 0);
    M<double> given("given", 0, 0);
    M<double> lost("lost", 0, 0);
    M<double> balanced("balanced", 0, 0);
    M<double> across("across", 0, 0);
    M<double> X("X", 0, 0);
    M<double> R("R", 0, 0);
    M<double> modes("modes", 0, 0);
    M<double> x("x", 0, 0);
    M<double> is_largest("is_largest", 0, 0);

    frame.line(8);
    double const n = 200;
    double const radius = 20;
    double const centre = (n + 1) / 2;
    double const hot = 100;
    frame.line(12);
    number(n, n) = zero_M;
    double m = 0;
    for (double j = 1; j <= n; ++j)
        for (double i = 1; i <= n; ++i) {
            frame.line(16);
            if ((i - centre) * (i - centre) + (j - centre) * (j - centre) > radius * radius) {
                m = m + 1;
                number.r(i, j) = m;
            }
        }
    frame.line(22);
    entry(5 * m, 3) = zero_M;
    warm(m, 1) = zero_M;
    cold(m, 1) = zero_M;
    colour(m, 1) = zero_M;
    double count = 0;
    for (double j = 1; j <= n; ++j)
        for (double i = 1; i <= n; ++i) {
            frame.line(29);
            double const k = number.r(i, j);
            if (k > 0) {
                frame.line(31);
                colour.r(k) = 1 - 2 * std::fmod(i + j, 2);
                count = count + 1;
                entry.r(count, 1) = k;
                entry.r(count, 2) = k;
                entry.r(count, 3) = 4;
                for (double side = 1; side <= 4; ++side) {
                    frame.line(37);
                    double const p = i + (side == 1) - (side == 2);
                    double const q = j + (side == 3) - (side == 4);
                    if (p < 1 || p > n || q < 1 || q > n) {
                        cold.r(k) = cold.r(k) + 1;
                    } else if (number.r(p, q) == 0) {
                        warm.r(k) = warm.r(k) + 1;
                    } else {
                        frame.line(44);
                        count = count + 1;
                        entry.r(count, 1) = k;
                        entry.r(count, 2) = number.r(p, q);
                        entry.r(count, 3) = -1;
                    }
                }
            }
        }
    frame.line(53);
    M<double> surplus(0, 1, static_cast<int>(5 * m - count));
    for (double k = 1; k <= 5 * m - count; ++k)
        surplus.r(k) = count + k;
    entry(surplus, c_p) = x_M;
    frame.line(54);
    A = spconvert(entry);
    frame.line(55);
    T = mldivide(A, hot * warm);
    frame.line(56);
    points = M<double>(m);
    disp_all(points);
    frame.line(57);
    given = sum(dot_mul(warm, M<double>(hot) - T));
    disp_all(given);
    frame.line(58);
    lost = sum(dot_mul(cold, T));
    frame.line(59);
    balanced = abs(given - lost) < 1e-10 * given;
    disp_all(balanced);
    frame.line(60);
    across(1, 4) = zero_M;
    for (double k = 1; k <= 4; ++k) {
        frame.line(62);
        across.r(k) = T.r(number.r(20 * k, n / 2));
    }
    frame.line(64);
    disp_all(across);
    frame.line(65);
    X(m, 3) = zero_M;
    for (double k = 1; k <= m; ++k) {
        frame.line(67);
        X.r(k, 1) = 1;
        X.r(k, 2) = std::fmod(k, n);
        X.r(k, 3) = std::floor(k / n);
    }
    for (double step = 1; step <= 16; ++step) {
        frame.line(72);
        qr(mldivide(A, X), zero_M, i_o, X, R);
    }
    frame.line(74);
    modes(1, 3) = zero_M;
    for (double k = 1; k <= 3; ++k) {
        frame.line(76);
        modes.r(k) = 1 / std::abs(R.r(k, k));
    }
    frame.line(78);
    disp_all(modes);
    frame.line(79);
    double const largest = 8 - modes.r(1);
    frame.line(80);
    x = dot_mul(colour, X(c_p, one_M));
    frame.line(81);
    is_largest = norm(A * x - largest * x) < M<double>(1e-6);
    disp_all(is_largest);
    return x_M;
}

int main()
{
    initM(ARRLIB_HEADER_VERSION);
    plate();
    exitM();
    return 0;
}
