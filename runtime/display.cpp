#include "runtime/display.h"

#include "core/heap_array.h"
#include "core/text.h"
#include "runtime/console.h"
#include "runtime/constants.h"
#include "runtime/number_text.h"
#include "runtime/text_buffer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

using namespace arrlib;

namespace {

constexpr int short_digits = 4;
constexpr int long_digits = 12;
int significant_digits = short_digits;

// Room for the text of one element, complex too.
constexpr std::size_t element_text_size = 64;

// One page of a value; all of it when it has two dimensions.
struct Page {
    double const* re;
    double const* im;
    int rows;
    int cols;
};

// The columns that the elements of a page take.
struct Widths {
    std::size_t real = 0;
    std::size_t imaginary = 1;
};

bool is_zero(double const* re, double const* im, int k)
{
    return re[k] == 0 && (!im || im[k] == 0);
}

// Of a sparse value only what is not zero counts, with both its parts.
Widths widths_of(double const* re, double const* im, int count, bool nonzero_only)
{
    char text[number_text_size];
    Widths widths;
    for (int k = 0; k < count; ++k) {
        if (nonzero_only && is_zero(re, im, k))
            continue;
        widths.real = std::max(widths.real, write_general(text, re[k], significant_digits));
        if (im)
            widths.imaginary = std::max(widths.imaginary, write_general(text, im[k], significant_digits));
    }
    widths.real += 2;
    return widths;
}

// Writes the text of one element; returns its length.
std::size_t write_element(char* out, Widths const& widths, double re, double const* im)
{
    std::size_t length = write_aligned(out, re, significant_digits, widths.real);
    if (!im)
        return length;
    std::size_t const imaginary_text = widths.imaginary + 3;
    if (*im == 0) {
        std::memset(out + length, ' ', imaginary_text);
        return length + imaginary_text;
    }
    out[length++] = ' ';
    out[length++] = *im < 0 ? '-' : '+';
    length += write_aligned(out + length, std::fabs(*im), significant_digits, widths.imaginary);
    out[length++] = 'i';
    return length;
}

void show_text_rows(Page const& page)
{
    HeapArray<char> line(static_cast<std::size_t>(page.cols) + 2);
    if (!line)
        return;
    for (int row = 0; row < page.rows; ++row) {
        char* out = line.data();
        for (int col = 0; col < page.cols; ++col)
            *out++ = character_code(page.re[static_cast<std::size_t>(col) * static_cast<std::size_t>(page.rows) + static_cast<std::size_t>(row)]);
        *out++ = '\n';
        *out = '\0';
        nx_print(line.data());
    }
}

void show_number_rows(Page const& page)
{
    auto const rows = static_cast<std::size_t>(page.rows), cols = static_cast<std::size_t>(page.cols);
    Widths const widths = widths_of(page.re, page.im, page.rows * page.cols, false);
    HeapArray<char> line(cols * element_text_size + 2);
    if (!line)
        return;
    for (std::size_t row = 0; row < rows; ++row) {
        char* out = line.data();
        for (std::size_t at = row; at < rows * cols; at += rows)
            out += write_element(out, widths, page.re[at], page.im ? page.im + at : nullptr);
        *out++ = '\n';
        *out = '\0';
        nx_print(line.data());
    }
}

void show_page(Page const& page, bool as_text)
{
    if (as_text)
        show_text_rows(page);
    else
        show_number_rows(page);
}

int decimal_digits(int number)
{
    int digits = 1;
    for (; number >= 10; number /= 10)
        ++digits;
    return digits;
}

void show_sparse(M<double> const& x)
{
    double const* const re = x.spaddr();
    double const* const im = x.isc() ? x.spaddi() : nullptr;
    int const* const index = x.getindex();
    int const stored = x.getnnz();
    int shown = 0;
    for (int k = 0; k < stored; ++k)
        shown += !is_zero(re, im, k);
    if (shown == 0) {
        nx_print("All zeros sparse\n");
        return;
    }
    Widths const widths = widths_of(re, im, stored, true);
    bool const vector = x.vectordim() != 0;
    int const digits = decimal_digits(vector ? x.size() : std::max(x.rows(), x.cols()));
    for (int k = 0; k < stored; ++k) {
        if (is_zero(re, im, k))
            continue;
        char line[element_text_size + 40];
        int const at = index[k];
        std::size_t length = static_cast<std::size_t>(vector ? std::snprintf(line, 40, "(%*d) ", digits, at + 1)
                                                             : std::snprintf(line, 40, "(%*d,%*d) ", digits, at % x.rows() + 1, digits, at / x.rows() + 1));
        length += write_element(line + length, widths, re[k], im ? im + k : nullptr);
        std::strcpy(line + length, "\n");
        nx_print(line);
    }
}

// " (2x3)=6 elements, dense real " and the class word.
class Description {
public:
    template <class T> Description(M<T> const& x, char const* class_word)
    {
        TextAppender out(text_, sizeof text_, 0);
        for (int d = 0; d < x.getndims(); ++d)
            out.text(d ? "x" : " (").decimal(x.getdims()[d]);
        out.text(")=").decimal(x.size()).text(" elements, ");
        out.text(x.isstr() ? "string" : x.issparse() ? "sparse" : "dense").put(' ');
        out.text(x.isstr() ? "" : x.isc() ? "complex" : "real").put(' ').text(class_word);
    }
    operator char const*() const { return text_; }

private:
    char text_[128];
};

template <class T> void show_heading(M<T> const& x, char const* class_word)
{
    nx_print(x.getname() ? x.getname() : "ans");
    nx_printf("%s = \n", static_cast<char const*>(Description(x, class_word)));
}

template <class T> void show_listing(M<T> const& x, char const* class_word)
{
    // The name may be of any length, so only its padding goes through a fixed buffer.
    char padding[21];
    char const* const name = x.getname() ? x.getname() : "";
    std::size_t const length = std::strlen(name);
    std::size_t const blanks = length < 20 ? 20 - length : 0;
    std::memset(padding, ' ', blanks);
    padding[blanks] = '\0';
    nx_print(name);
    nx_print(padding);
    nx_print(Description(x, class_word));
    nx_print("\n");
}

} // namespace

M<double> format()
{
    significant_digits = short_digits;
    return x_M;
}

M<double> format(M<double> mode)
{
    constexpr int mode_limit = 10;
    char text[mode_limit + 1];
    Mstr(mode, text, mode_limit);
    significant_digits = text[0] == 'l' || text[0] == 'L' ? long_digits : short_digits;
    return x_M;
}

M<double> format(M<double> mode, M<double>)
{
    return format(mode);
}

M<double> disp(M<double> const& x)
{
    if (x.size() < 1) {
        nx_print("[]\n");
    } else if (x.issparse()) {
        show_sparse(x);
    } else {
        int const* const dims = x.getdims();
        auto const page_size = static_cast<std::size_t>(dims[0]) * static_cast<std::size_t>(dims[1]);
        for (int l = 0; l < dims[3]; ++l)
            for (int k = 0; k < dims[2]; ++k) {
                if (x.getndims() == 3)
                    nx_printf("(:,:,%d)\n", k + 1);
                else if (x.getndims() == 4)
                    nx_printf("(:,:,%d,%d)\n", k + 1, l + 1);
                std::size_t const from = page_size * (static_cast<std::size_t>(l) * static_cast<std::size_t>(dims[2]) + static_cast<std::size_t>(k));
                show_page({x.addr() + from, x.isc() ? x.addi() + from : nullptr, dims[0], dims[1]}, x.isstr());
            }
    }
    return x_M;
}

M<double> disp(M<M<double>> const& x)
{
    if (x.size() < 1)
        nx_print("{}\n");
    return celldisp(x);
}

M<double> puts(M<double> const& x)
{
    return disp(x);
}

M<double> usage(M<double> const& x)
{
    nx_print("Usage: ");
    return disp(x);
}

M<double> disp_all(M<double> x)
{
    if (x.addr() == x_M.addr())
        return x_M;
    show_heading(x, "");
    return disp(x);
}

M<double> disp_all(M<M<double>> x)
{
    show_heading(x, "cell");
    return disp(x);
}

void whos_line(M<double> const& x)
{
    show_listing(x, "");
}

void whos_line(M<M<double>> const& x)
{
    show_listing(x, "cell");
}

M<double> celldisp(M<M<double>> const& c)
{
    for (int k = 0; k < c.size(); ++k) {
        nx_print(c.getname() ? c.getname() : "ans");
        nx_printf("(%d,%d)\n", k % c.rows() + 1, k / c.rows() + 1);
        disp(*c.addr(k + 1));
    }
    return x_M;
}

M<double> dump(M<double> const& x)
{
    auto const address = [](void const* p) { return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(p)); };
    nx_printf("**dump of %s\n", x.getname() ? x.getname() : "");
    if (x.issparse())
        nx_printf("pr = %x pi = %x index = %x nnz = %d\n", address(x.addr()), address(x.addi()), address(x.getindex()), x.getnnz());
    else
        nx_printf("pr = %x pi = %x\n", address(x.addr()), address(x.addi()));
    nx_printf("ndims = %d  dims = ", x.getndims());
    for (int d = 0; d < x.getndims(); ++d)
        nx_printf("%d ", x.getdims()[d]);
    nx_print("\n");
    nx_printf("str = %d sparse = %d logical = %d\n", x.isstr(), x.issparse(), x.islogical());
    return x_M;
}

template <> void M<double>::display(int)
{
    disp_all(*this);
}

template <> void M<M<double>>::display(int)
{
    disp_all(*this);
}
