#include "io/data_file.h"
#include "io/data_layout.h"
#include "io/text_argument.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/messages.h"
#include "runtime/report.h"

using namespace arrlib;

namespace {

// Reports `message` about the first matrix that the layout cannot hold; true when there is none.
bool all_fit(M<double> const* const* matrices, int count, bool (*fits)(M<double> const&), char const* message)
{
    for (int k = 0; k < count; ++k)
        if (!fits(*matrices[k])) {
            error(message, OperandName(*matrices[k]));
            return false;
        }
    return true;
}

using Write = char const* (*)(DataOutput& file, M<double> const& matrix);

void save_all(char const* filename, M<double> const* const* matrices, int count, char const* (*write_header)(DataOutput&), Write write, char const* not_kept)
{
    platform::FileWriter file;
    DataOutput output(file);
    char const* problem = file.create(filename) ? nullptr : "save: %s could not be created";
    if (!problem && write_header)
        problem = write_header(output);
    for (int k = 0; !problem && k < count; ++k)
        problem = write(output, *matrices[k]);
    if (!problem && !file.commit())
        problem = not_kept;
    if (problem) {
        file.abandon();
        error(problem, filename);
    }
}

} // namespace

M<double> save_list(M<double> const& filename, M<double> const* const* matrices, int count)
{
    FileName const name(filename);
    if (all_fit(matrices, count, fits_level5, "save: matrix '%s' has more than 2 GiB and can not be saved"))
        save_all(name, matrices, count, write_level5_header, write_level5, "savev5: could not write file '%s'.");
    return x_M;
}

M<double> saveV4_list(M<double> const& filename, M<double> const* const* matrices, int count)
{
    FileName const name(filename);
    auto const is_flat = [](M<double> const& matrix) { return matrix.getndims() == 2; };
    if (all_fit(matrices, count, is_flat, "save: matrix '%s' has more than two dimensions and can not be saved in 4.0 format"))
        save_all(name, matrices, count, nullptr, write_level4, messages::could_not_write);
    return x_M;
}
