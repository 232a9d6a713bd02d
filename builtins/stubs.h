// Built-ins that this library does not have, under their names, so that programs which mention them
// compile: calling one is reported. They take up to six arguments of any kind, outputs behind i_o among
// them; the outputs become empty.
#ifndef ARRLIB_BUILTINS_STUBS_H
#define ARRLIB_BUILTINS_STUBS_H

#include "core/output_place.h"

namespace arrlib {

// An argument of a built-in that looks at none of them.
class ARRLIB_API Any {
public:
    Any() = default;
    Any(double) {}
    Any(M<double> const&) {}
    Any(M<M<double>> const&) {}
    Any(Sr<double> const&) {}
    Any(Sr<M<double>> const&) {}
    Any(i_o_t) : separates_(true) {}
    Any(M<double>& variable) : output_(variable) {}
    Any(M<M<double>>& variable) : output_(variable) {}
    Any(Mr<double> const& selection) : output_(selection) {}
    Any(Mr<M<double>> const& selection) : output_(selection) {}
    Any(Ms<M<double>> const& cell) : output_(cell) {}

    bool separates() const { return separates_; }
    // The place that it is behind i_o; none for what can only be an input.
    OutputPlace const& output() const { return output_; }

private:
    bool separates_ = false;
    OutputPlace output_;
};

} // namespace arrlib

// Not in this library: "Stub called.".
ARRLIB_API M<double> assignin(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> doc(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> find_system(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> get_param(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> getfield(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> getline(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> getpts(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> getrect(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> helpfun(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> helpwin(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> hthelp(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> htpp(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> light(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> lightangle(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> lighting(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> loadhtml(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> material(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> setfield(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> simset(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> system_dependent(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> uirestore(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> uisuspend(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> web(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});

// Structures, which this library does not have: "%s: structures are not supported", with the name in the
// language ("struct").
ARRLIB_API M<double> structM(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> fieldnames(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> rmfield(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> cell2struct(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});
ARRLIB_API M<double> struct2cell(arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {}, arrlib::Any = {});

#endif
