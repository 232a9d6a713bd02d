// What the translator makes of quakes.m. The data folder is the program's argument.
#include <arrlib.h>

#include <cmath>
#include <cstdio>

static char data_file[512];

static M<double> quakes()
{
    nx_frame frame("quakes");
    M<double> events("events", 0, 0);
    M<double> strong("strong", 0, 0);
    M<double> strongest("strongest", 0, 0);
    M<double> layer("layer", 0, 0);
    M<double> bar("bar", 0, 0);
    M<M<double>> labels("labels", 0, 0);
    M<double> row("row", 0, 0);
    M<double> col("col", 0, 0);
    M<double> squares("squares", 0, 0);
    M<double> occupied("occupied", 0, 0);
    M<double> count("count", 0, 0);
    M<double> busiest("busiest", 0, 0);
    M<double> corner("corner", 0, 0);
    M<double> around("around", 0, 0);
    M<double> deep("deep", 0, 0);
    M<double> first("first", 0, 0);
    M<double> last("last", 0, 0);

    frame.line(5);
    loadascii(TM(data_file), events);
    frame.line(6);
    double const n = events.size(1);
    frame.line(7);
    strong(1.0, n) = zero_M;
    for (double k = 1; k <= n; ++k) {
        frame.line(9);
        strong.r(k) = events.r(k, 4) > 5.5;
    }
    frame.line(11);
    strong.setlogical(1);
    frame.line(12);
    strongest = events(strong, c_p);
    disp_all(strongest);

    for (double k = 1; k <= strongest.size(1); ++k) {
        frame.line(15);
        double const tenths = std::floor(strongest.r(k, 4) * 10 + 0.5);
        frame.line(16);
        double const whole = std::floor(tenths / 10);
        frame.line(17);
        if (strongest.r(k, 3) < 70)
            layer = TM("shallow");
        else if (strongest.r(k, 3) < 300)
            layer = TM("intermediate");
        else
            layer = TM("deep");
        frame.line(24);
        bar = TM("");
        for (double s = 20; s <= strongest.r(k, 5); s += 20) {
            frame.line(26);
            bar = (BR(bar), TM("*"));
        }
        frame.line(28);
        labels.br(M<double>(k), one_M) = M<double>(
            (BR(TM("M")), M<double>(whole + '0'), TM("."), M<double>(tenths - 10 * whole + '0'), TM(" "), layer, TM(" "), bar));
    }
    frame.line(30);
    disp_all(labels);

    frame.line(33);
    row(n, 1.0) = zero_M;
    frame.line(34);
    col(n, 1.0) = zero_M;
    for (double k = 1; k <= n; ++k) {
        frame.line(36);
        row.r(k) = std::floor(events.r(k, 1)) + 40;
        frame.line(37);
        col.r(k) = std::floor(events.r(k, 2)) - 164;
    }
    frame.line(39);
    squares = sparse(row, col, one_M, M<double>(29), M<double>(24));
    frame.line(40);
    whos_line(squares);
    frame.line(41);
    occupied = nnz(squares);
    disp_all(occupied);
    frame.line(42);
    find(squares, i_o, row, col, count);
    frame.line(43);
    double most = 0;
    for (double k = 1; k <= scalar(occupied); ++k) {
        frame.line(45);
        if (count.r(k) > most)
            most = count.r(k);
    }
    frame.line(49);
    busiest = M<double>();
    for (double k = 1; k <= scalar(occupied); ++k) {
        frame.line(51);
        if (count.r(k) == most) {
            frame.line(52);
            busiest = (BR(busiest), semi, M<double>(row.r(k) - 40), M<double>(col.r(k) + 164), count(k));
        }
    }
    frame.line(55);
    disp_all(busiest);
    frame.line(56);
    corner = squares(colon(1, 8), colon(12, 18));
    disp_all(corner);
    frame.line(57);
    around = full(squares(colon(18, 23), colon(13, 20)));
    disp_all(around);

    frame.line(59);
    deep(1.0, n) = zero_M;
    for (double k = 1; k <= n; ++k) {
        frame.line(61);
        deep.r(k) = events.r(k, 3) > 500;
    }
    frame.line(63);
    deep.setlogical(1);
    events(deep, c_p) = M<double>();
    frame.line(64);
    whos_line(events);
    frame.line(65);
    first = events(colon(1, 5), c_p);
    disp_all(first);
    frame.line(66);
    last = events(colon(events.size(1) - 4, events.size(1)), c_p);
    disp_all(last);
    return x_M;
}

int main(int argc, char** argv)
{
    std::snprintf(data_file, sizeof data_file, "%s/quakes.txt", argc > 1 ? argv[1] : ".");
    initM(ARRLIB_HEADER_VERSION);
    quakes();
    exitM();
    return 0;
}
