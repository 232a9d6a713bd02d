#include "arrlib.h"

#include <cstdio>

// Touches each kind of thing that crosses the library's boundary: values, constants, subscripts,
// hooks, a thrown error, an extension module.
int main()
{
    initM(ARRLIB_HEADER_VERSION);
    nx_set_default_error_flags(nx_error_throw, 1);
    M<double> x("x", 2, 2);
    for (int k = 1; k <= 4; ++k)
        x.r(k) = k * 10;
    M<double> const corner = x(2.0, 1.0);
    disp(corner);
    disp(pi);
    try {
        error("on purpose");
    } catch (char* text) {
        std::printf("%s", text);
    }
    M<double>* in[] = {&pi};
    M<double>* out[64];
    call_mex("twice", 1, out, 1, in);
    disp(*out[0]);
    delete out[0];
    exitM();
}
