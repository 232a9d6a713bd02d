// What the translator makes of sunspots.m. The data folder is the program's argument.
#include <arrlib.h>

#include <algorithm>
#include <cstdio>

static char data_file[512];

static M<double> sunspots()
{
    nx_frame frame("sunspots");
    M<double> s("s", 0, 0);
    M<double> means("means", 0, 0);
    M<double> maxima("maxima", 0, 0);
    M<double> peaks("peaks", 0, 0);
    M<double> last_ten("last_ten", 0, 0);

    frame.line(4);
    loadascii(TM(data_file), s);
    frame.line(5);
    double const n = s.size(1);
    frame.line(6);
    double const first = s.r(1, 1);
    frame.line(7);
    double const years = s.r(n, 1) - first + 1;
    frame.line(8);
    means(years, 2) = zero_M;
    for (double k = 1; k <= n; ++k) {
        frame.line(10);
        double const row = s.r(k, 1) - first + 1;
        frame.line(11);
        means.r(row, 1) = s.r(k, 1);
        frame.line(12);
        means.r(row, 2) = means.r(row, 2) + s.r(k, 3) / 12;
    }
    frame.line(14);
    maxima(1, years) = zero_M;
    for (double row = 1; row <= years; ++row) {
        frame.line(16);
        double highest = row;
        for (double near = std::max(row - 5, 1.0); near <= std::min(row + 5, years); ++near) {
            frame.line(18);
            if (means.r(near, 2) > means.r(highest, 2))
                highest = near;
        }
        frame.line(22);
        maxima.r(row) = highest == row;
    }
    frame.line(24);
    maxima.setlogical(1);
    peaks = means(maxima, c_p);
    disp_all(peaks);
    frame.line(25);
    M<double> tail(0, 1, 10);
    for (double k = 1; k <= 10; ++k)
        tail.r(k) = years - 10 + k;
    last_ten = means(tail, c_p);
    disp_all(last_ten);
    frame.line(26);
    saveascii(TM("sunspots_yearly.txt"), means);
    return x_M;
}

int main(int argc, char** argv)
{
    std::snprintf(data_file, sizeof data_file, "%s/sunspots_monthly.txt", argc > 1 ? argv[1] : ".");
    initM(ARRLIB_HEADER_VERSION);
    sunspots();
    exitM();
    return 0;
}
