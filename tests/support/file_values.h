// What tests of files share: values made and shown in few words, and files that are closed at the end.
#ifndef ARRLIB_TESTS_SUPPORT_FILE_VALUES_H
#define ARRLIB_TESTS_SUPPORT_FILE_VALUES_H

#include "core/text.h"
#include "io/files.h"
#include "support/capture.h"

#include <initializer_list>
#include <string>

namespace file_values {

inline M<double> text(std::string const& characters)
{
    return TM(characters.c_str());
}

inline M<double> row(std::initializer_list<double> numbers)
{
    M<double> made(0, numbers.size() ? 1 : 0, static_cast<int>(numbers.size()));
    std::copy(numbers.begin(), numbers.end(), made.addr());
    return made;
}

// The characters of a text.
inline std::string string_of(M<double> const& value)
{
    std::string characters;
    for (int k = 1; k <= value.size(); ++k)
        characters += static_cast<char>(static_cast<int>(value[k]));
    return characters;
}

// "2x3: 1 2 3 4 5 6" in storage order; texts as "'abc'".
inline std::string shown(M<double> const& value)
{
    if (value.isstr())
        return "'" + string_of(value) + "'";
    std::string made = std::to_string(value.rows()) + "x" + std::to_string(value.cols()) + ":";
    for (int k = 1; k <= value.size(); ++k) {
        char number[64];
        std::snprintf(number, sizeof number, " %.17g", value[k]);
        made += number;
    }
    return made;
}

class FilesTest : public testing::Test {
protected:
    ~FilesTest() override { fclose(TM("all")); }

    // A new file of that content, open in the mode.
    M<double> open(std::string const& content, char const* mode = "r", char const* format = "n")
    {
        return fopen(text(folder.write("file" + std::to_string(++made_), content)), TM(mode), TM(format));
    }
    std::string content() const { return folder.read("file" + std::to_string(made_)); }

    capture::TemporaryFolder folder;

private:
    int made_ = 0;
};

} // namespace file_values

#endif
