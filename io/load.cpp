#include "io/data_file.h"
#include "io/data_layout.h"
#include "io/text_argument.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/text_buffer.h"

#include <algorithm>
#include <cstring>

using namespace arrlib;

namespace {

constexpr char not_read[] = "load: '%s' could not read data set";
constexpr std::size_t message_size = 2048;

// The header of level 5 begins with text; the first word of level 4 is a small number in either byte
// order. What level 5 has at its end says nothing about level 4: it may be data there.
enum class Layout { level4, level5, unknown };

Layout layout_of(FileSource& file)
{
    unsigned char first[4];
    if (!file.read(first, sizeof first) || !file.rewind())
        return Layout::unknown;
    return std::count(first, first + sizeof first, 0) > 0 ? Layout::level4 : Layout::level5;
}

void store(Variable const& variable, Mr<double>& output, char const* filename, char const* notice)
{
    output = variable.value;
    char const* const name = output.target().getname();
    if (!name || std::strcmp(name, variable.name) == 0)
        return;
    char text[message_size];
    TextAppender(text, sizeof text, 0).text(notice).text(" '").text(filename).text("': variable named '").text(variable.name).text("' loaded into '").text(name).text("'");
    warning(text);
}

// Returns how many outputs got a matrix.
template <class Reader> int load_variables(Reader& reader, char const* filename, char const* notice, Mr<double>* outputs, int count)
{
    int loaded = 0;
    while (loaded < count) {
        Variable variable;
        switch (reader.next(variable)) {
        case Found::matrix:
            store(variable, outputs[loaded++], filename, notice);
            break;
        case Found::passed_over:
            break;
        case Found::damaged:
            error(not_read, filename);
            return loaded;
        case Found::stopped:
            return loaded;
        }
    }
    return loaded;
}

int load_file(char const* filename, Mr<double>* outputs, int count)
{
    FileSource file(filename);
    if (!file.is_open()) {
        error("load: %s not found", filename);
        return 0;
    }
    Layout const layout = layout_of(file);
    if (layout == Layout::level4) {
        Level4Reader reader(file, filename);
        return load_variables(reader, filename, "load4", outputs, count);
    }
    Level5Reader reader(file, filename);
    if (layout == Layout::level5 && reader.read_header())
        return load_variables(reader, filename, "load5:", outputs, count);
    error(not_read, filename);
    return 0;
}

} // namespace

M<double> load_list(M<double> const& filename, Mr<double>* outputs, int count)
{
    FileName const name(filename);
    load_file(name, outputs, count);
    return x_M;
}

int loadif(char const* filename, Mr<double> m)
{
    return load_file(filename, &m, 1);
}
