// What the translator makes of module.m. The function crossings is an extension module (crossings.c),
// which the library finds beside the program.
#include <arrlib.h>

static M<double> module()
{
    nx_frame frame("module");
    M<double> t("t", 0, 0);
    M<double> y("y", 0, 0);
    M<double> at("at", 0, 0);
    M<double> rising("rising", 0, 0);

    frame.line(4);
    t(81) = zero_M;
    for (double k = 1; k <= 81; ++k)
        t.r(k) = (k - 1) / 4;
    frame.line(5);
    y = times(exp(rdivide(-t, M<double>(8))), cos(rdivide(2.0 * pi * t, M<double>(5))));
    frame.line(6);
    {
        M<double> level(0.25);
        M<double>* in[] = {&t, &y, &level};
        M<double>* out[64];
        call_mex("crossings", 2, out, 3, in);
        at = *out[0];
        rising = *out[1];
        delete out[0];
        delete out[1];
    }
    frame.line(7);
    for (double k = 1; k <= at.size(1); ++k) {
        frame.line(8);
        if (rising.r(k) != 0) {
            frame.line(9);
            printf(TM("%7.3f s up\\n"), at(k));
        } else {
            frame.line(11);
            printf(TM("%7.3f s down\\n"), at(k));
        }
    }
    return x_M;
}

int main()
{
    initM(ARRLIB_HEADER_VERSION);
    module();
    exitM();
}
