// One value of a Bessel function, of real order and real or complex argument.
#ifndef ARRLIB_BUILTINS_BESSEL_VALUE_H
#define ARRLIB_BUILTINS_BESSEL_VALUE_H

namespace arrlib {

// h1 and h2 are J + iY and J - iY.
enum class BesselKind { j, y, i, k, h1, h2 };

// What became of a value: the numbers of the second output.
enum BesselStatus { bessel_fine = 0, bessel_bad_argument = 1, bessel_overflow = 2, bessel_less_accurate = 3, bessel_inaccurate = 4, bessel_not_converged = 5 };

struct BesselValue {
    double re = 0, im = 0;
    int status = bessel_fine;
};

// Of any order and argument. `scaled` multiplies by exp(-|im|) (j, y), exp(-|re|) (i), exp(z) (k),
// exp(-iz) (h1), exp(iz) (h2). An argument whose imaginary part is 0 is real, and lies above the cut.
BesselValue bessel_value(BesselKind kind, double nu, double re, double im, bool scaled);

// The status of a value that is finite, by the size of its order or argument.
int bessel_accuracy(double size);

// Parts of bessel_value. Of a real argument, finite or not; the status is fine or not_converged.
BesselValue bessel_of_real(BesselKind kind, double nu, double x, bool scaled);
// Of a finite argument with an imaginary part that is not 0; likewise.
BesselValue bessel_of_complex(BesselKind kind, double nu, double re, double im, bool scaled);

} // namespace arrlib

#endif
