// Functions of the program that built-ins call by name.
#ifndef ARRLIB_BUILTINS_FUNCTION_ARGUMENT_H
#define ARRLIB_BUILTINS_FUNCTION_ARGUMENT_H

#include "core/matrix.h"

#include <initializer_list>

namespace arrlib {

// The function that an argument of a built-in names. False after "%s: function must be given by name":
// names are letters, digits and underscores, and start with a letter.
class FunctionArgument {
public:
    FunctionArgument(char const* builtin, M<double> const& name);

    explicit operator bool() const { return named_; }
    M<double> const& name() const { return name_; }

    // Calls the function and gives its first output, x_M when it has none: "feval was not linked with
    // the program." is one reason.
    M<double> call(std::initializer_list<M<double>> inputs) const;
    // The same for its first `count` outputs, at most six, in `outputs`.
    void call(std::initializer_list<M<double>> inputs, M<double>* outputs, int count) const;
    void call(M<double> const* inputs, int input_count, M<double>* outputs, int count) const;

private:
    M<double> name_;
    bool named_;
};

} // namespace arrlib

#endif
