// What the translator makes of life.m.
#include <arrlib.h>

#include <cmath>

static M<double> life()
{
    nx_frame frame("life");
    M<double> n("n", 0, 0);
    M<double> col("col", 0, 0);
    M<double> row("row", 0, 0);
    M<double> alive("alive", 0, 0);
    M<double> before("before", 0, 0);
    M<double> after("after", 0, 0);
    M<double> thirds("thirds", 0, 0);
    M<double> near("near", 0, 0);
    M<double> i("i", 0, 0);
    M<double> j("j", 0, 0);
    M<double> corner("corner", 0, 0);

    frame.line(4);
    n = 200.0;
    frame.line(5);
    meshgrid(colon(1.0, n), i_o, col, row);
    frame.line(6);
    alive = mod(times(power(row, 2.0), col) + 7.0 * power(col, 3.0), 1009.0) < 350.0;
    frame.line(7);
    before = (BR(n), colon(1.0, n - 1.0));
    frame.line(8);
    after = (BR(colon(2.0, n)), one_M);
    frame.line(9);
    printf(TM("generation %3d: %5d alive\n"), 0.0, sum(sum(alive)));
    for (double generation = 1; generation <= 500; ++generation) {
        frame.line(11);
        thirds = M<double>(alive(before, c_p)) + alive + M<double>(alive(after, c_p));
        frame.line(12);
        near = M<double>(thirds(c_p, before)) + thirds + M<double>(thirds(c_p, after));
        frame.line(13);
        alive = near == 3.0 || (alive & (near == 4.0));
        frame.line(14);
        if (std::fmod(generation, 50) == 0) {
            frame.line(15);
            printf(TM("generation %3d: %5d alive\n"), generation, sum(sum(alive)));
        }
    }
    frame.line(18);
    find(alive(colon(1.0, 20.0), colon(1.0, 20.0)), i_o, i, j);
    frame.line(19);
    corner = (BR(i), j);
    disp_all(corner);
    return x_M;
}

int main()
{
    initM(ARRLIB_HEADER_VERSION);
    life();
    exitM();
    return 0;
}
