// The data files of other writers and their content (tests/data/matfiles/README.md).
#ifndef ARRLIB_TESTS_SUPPORT_EXPECTED_FILE_H
#define ARRLIB_TESTS_SUPPORT_EXPECTED_FILE_H

#include "core/access.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace expected {

struct Variable {
    std::string name, cls;
    std::vector<int> dims;
    std::vector<std::string> flags, demand;
    bool sparse = false;
    std::vector<double> re, im;
    // Zero-based, of sparse entries.
    std::vector<int> row, col;

    bool is(char const* flag) const { return std::find(flags.begin(), flags.end(), flag) != flags.end(); }
    bool may(char const* outcome) const { return std::find(demand.begin(), demand.end(), outcome) != demand.end(); }
    int count() const
    {
        int product = 1;
        for (int size : dims)
            product *= size;
        return product;
    }
};

struct File {
    std::string layout, needs;
    std::vector<Variable> variables;
};

inline std::filesystem::path folder()
{
    char const* const elsewhere = std::getenv("ARRLIB_TEST_DATA");
    return elsewhere ? std::filesystem::path(elsewhere) : std::filesystem::path(__FILE__).parent_path().parent_path() / "data" / "matfiles";
}

inline std::vector<std::filesystem::path> files(char const* of_folder, std::string const& extension)
{
    std::vector<std::filesystem::path> found;
    for (auto const& entry : std::filesystem::directory_iterator(folder() / of_folder))
        if (entry.path().extension() == extension)
            found.push_back(entry.path());
    std::sort(found.begin(), found.end());
    EXPECT_FALSE(found.empty());
    return found;
}

inline std::string content(std::filesystem::path const& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline File read(std::filesystem::path const& path)
{
    std::ifstream in(path);
    File file;
    std::string word;
    auto const text = [&] {
        in >> word;
        return word;
    };
    auto const number = [&] { return std::strtod(text().c_str(), nullptr); };
    auto const integer = [&] { return std::stoi(text()); };
    auto const words = [&] {
        std::vector<std::string> list(static_cast<std::size_t>(integer()));
        for (std::string& one : list)
            one = text();
        return list;
    };
    for (text(), text(); in && text() != "vars";) { // exp 1, then keys with one word each
        std::string& value = word == "layout" ? file.layout : word == "needs" ? file.needs : word;
        value = text();
    }
    file.variables.resize(static_cast<std::size_t>(integer()));
    for (Variable& one : file.variables) {
        text(), one.name = text();
        text(), one.cls = text();
        text(), text();
        text();
        for (std::string const& size : words())
            one.dims.push_back(std::stoi(size));
        text(), one.flags = words();
        text(), one.demand = words();
        one.sparse = text() == "sparse";
        for (int left = integer(); left > 0; --left) {
            if (one.sparse) {
                one.row.push_back(integer());
                one.col.push_back(integer());
            }
            one.re.push_back(number());
            if (one.is("complex"))
                one.im.push_back(number());
        }
    }
    EXPECT_EQ(text(), "end") << path;
    return file;
}

inline bool same(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0 || (a != a && b != b);
}

inline bool same(double const* a, std::vector<double> const& b)
{
    return b.empty() || std::equal(b.begin(), b.end(), a, [](double x, double y) { return same(y, x); });
}

inline void expect_equal(M<double> const& value, Variable const& wanted, bool with_logical = true)
{
    std::string const about = wanted.name + " of class " + wanted.cls;
    EXPECT_EQ(value.isstr() != 0, wanted.cls == "char") << about;
    EXPECT_EQ(value.issparse() != 0, wanted.sparse) << about;
    EXPECT_EQ(value.isc() != 0, wanted.is("complex")) << about;
    EXPECT_EQ(value.islogical() != 0, with_logical && wanted.is("logical")) << about;
    ASSERT_EQ(value.size(), wanted.count()) << about;
    if (wanted.count() == 0)
        return;
    std::vector<int> dims(wanted.dims);
    dims.resize(std::max<std::size_t>(dims.size(), 4), 1);
    for (std::size_t d = 0; d < dims.size(); ++d)
        EXPECT_EQ(d < 4 ? value.getdims()[d] : 1, dims[d]) << about;
    if (!wanted.sparse) {
        EXPECT_TRUE(same(value.addr(), wanted.re) && same(value.addi(), wanted.im)) << about;
        return;
    }
    // Stored zeros do not count.
    std::map<int, std::pair<double, double>> entries, wanted_entries;
    for (int k = 0; k < value.getnnz(); ++k)
        entries[value.getindex()[k]] = {value.addr()[k], value.isc() ? value.addi()[k] : 0};
    for (std::size_t k = 0; k < wanted.re.size(); ++k)
        wanted_entries[wanted.row[k] + wanted.col[k] * wanted.dims[0]] = {wanted.re[k], wanted.im.empty() ? 0 : wanted.im[k]};
    auto const is_zero = [](auto const& entry) { return entry.second.first == 0 && entry.second.second == 0; };
    std::erase_if(entries, is_zero);
    std::erase_if(wanted_entries, is_zero);
    EXPECT_TRUE(std::equal(entries.begin(), entries.end(), wanted_entries.begin(), wanted_entries.end(), [](auto const& a, auto const& b) {
        return a.first == b.first && same(a.second.first, b.second.first) && same(a.second.second, b.second.second);
    })) << about;
}

// The variable as a value of its name.
inline M<double> value_of(Variable const& wanted)
{
    using arrlib::Access;
    arrlib::Dims const shape(static_cast<int>(wanted.dims.size()), wanted.dims.data());
    auto const stored = static_cast<int>(wanted.re.size());
    M<double> value = wanted.sparse ? Access<double>::sparse_with_room(wanted.is("complex"), shape, stored, stored + 6)
                                    : Access<double>::full(wanted.is("complex"), shape);
    std::copy(wanted.re.begin(), wanted.re.end(), value.addr());
    std::copy(wanted.im.begin(), wanted.im.end(), value.addi());
    for (std::size_t k = 0; k < wanted.row.size(); ++k)
        value.getindex()[k] = wanted.row[k] + wanted.col[k] * wanted.dims[0];
    value.setstr(wanted.cls == "char");
    value.setlogical(wanted.is("logical"));
    value.setname(wanted.name == "(none)" ? nullptr : wanted.name.c_str());
    return value;
}

} // namespace expected

#endif
