#include "runtime/constants.h"

#include "core/subscript.h"

#include <bit>
#include <limits>

namespace arrlib {

namespace {

// A data block like those of the pool, with a reference of the library's own, so that it is never
// given back: whoever writes to a constant gets storage of its own first.
template <int elements, bool complex> struct StaticBlock {
    static constexpr int capacity = elements + Storage<double>::spare;
    double re[std::size_t{capacity}] = {};
    double im[complex ? std::size_t{capacity} : 1] = {};
    StorageRecord record{2, {0, 0}};

    constexpr explicit StaticBlock(double real = 0, double imaginary = 0)
    {
        re[0] = real;
        im[0] = imaginary;
    }
    constexpr StaticStorage<double> storage() { return {elements, capacity, &record, re, complex ? im : nullptr}; }
};

constinit StaticBlock<0, false> ans_block, x_M_block, l_M_block, nop_M_block, semi_block, c_p_block, page_block, implicit_block, list_block;
constinit StaticBlock<1, false> pi_block{3.141592653589793}, eps_block{std::numeric_limits<double>::epsilon()},
    Inf_block{std::numeric_limits<double>::infinity()}, NaN_block{std::bit_cast<double>(0x7FFFFFFFFFFFFFFFull)}, TICTOC_block, zero_block, one_block{1};
constinit StaticBlock<1, true> i_block{0, 1}, j_block{0, 1};

struct StaticCellBlock {
    StorageRecord record{2, {0, 0}};
    constexpr StaticStorage<M<double>> storage() { return {0, 0, &record, nullptr, nullptr}; }
};
constinit StaticCellBlock nop_MM_block, switchvar_block;

constexpr char semi_name[] = ";";
constexpr char x_M_name[] = "x_M";
constexpr char l_M_name[] = "l_M";
constexpr char c_p_name[] = ":";

} // namespace

} // namespace arrlib

i_o_t i_o;
global_M_t global_M;

constinit M<double> TICTOC{"TICTOC", arrlib::TICTOC_block.storage()};
constinit M<double> ans{"ans", arrlib::ans_block.storage()};
constinit M<double> i{"i", arrlib::i_block.storage()};
constinit M<double> j{"j", arrlib::j_block.storage()};
constinit M<double> NaN{"NaN", arrlib::NaN_block.storage()};
constinit M<double> Inf{"Inf", arrlib::Inf_block.storage()};
constinit M<double> pi{"pi", arrlib::pi_block.storage()};
constinit M<double> eps{"eps", arrlib::eps_block.storage()};
constinit M<double> zero_M{"0", arrlib::zero_block.storage()};
constinit M<double> one_M{"1", arrlib::one_block.storage()};
constinit M<double> x_M{arrlib::x_M_name, arrlib::x_M_block.storage()};
constinit M<double> l_M{arrlib::l_M_name, arrlib::l_M_block.storage()};
constinit M<double> nop_M{"[]", arrlib::nop_M_block.storage()};
constinit M<double> semi{arrlib::semi_name, arrlib::semi_block.storage()};
constinit M<double> c_p{arrlib::c_p_name, arrlib::c_p_block.storage()};
constinit M<M<double>> nop_MM{"{}", arrlib::nop_MM_block.storage()};
constinit M<M<double>> switchvar{"switchvar", arrlib::switchvar_block.storage()};
constinit M<double> page_screen_output{"page_screen_output", arrlib::page_block.storage()};
constinit M<double> implicit_str_to_num_ok{"implicit_str_to_num_ok", arrlib::implicit_block.storage()};
constinit M<double> empty_list_elements_ok{"empty_list_elements_ok", arrlib::list_block.storage()};

constinit char const* semip = arrlib::semi_name;
constinit char const* x_Mp = arrlib::x_M_name;
constinit char const* l_Mp = arrlib::l_M_name;
constinit char const* c_pp = arrlib::c_p_name;

double nargin_val = 0;
double nargout_val = 0;
int nargin_set = 0;
int nargout_set = 0;
int switchdepth = 0;
int switchfalse = 0;

double nargin()
{
    return nargin_val;
}

double nargout()
{
    return nargout_val;
}

M<double> argn(i_o_t, Mr<double> outputs, Mr<double> inputs)
{
    outputs = M<double>(nargout_val);
    inputs = M<double>(nargin_val);
    return x_M;
}
