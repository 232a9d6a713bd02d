#include "core/bracket.h"

#include "core/access.h"
#include "core/blocks.h"
#include "core/read.h"
#include "platform/platform.h"
#include "runtime/constants.h"
#include "runtime/errors.h"
#include "runtime/messages.h"
#include "runtime/report.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <type_traits>

using namespace arrlib;

// --- the list of elements ------------------------------------------------------------------------

void arrlib::bracket_misused(char const* message)
{
    error(message);
    end_process();
}

BracketElements::BracketElements(BracketElements const& other) : BracketElements()
{
    if (other.capacity_ > inline_capacity && !move_to(allocate(other.capacity_), other.capacity_))
        return;
    capacity_ = other.capacity_;
    count_ = other.count_;
    std::copy_n(other.elements_, count_, elements_);
}

MObject const** BracketElements::allocate(int capacity)
{
    if (capacity > INT_MAX / 4)
        return nullptr;
    return static_cast<MObject const**>(platform::heap_allocate(static_cast<std::size_t>(capacity) * sizeof(MObject const*)));
}

// Takes the elements to another array; without one the bracket is given up.
bool BracketElements::move_to(MObject const** array, int capacity)
{
    if (array)
        std::copy_n(elements_, count_, array);
    if (elements_ != inline_)
        release();
    if (!array) {
        elements_ = inline_;
        capacity_ = count_ = 0;
        error(messages::out_of_memory);
        return false;
    }
    elements_ = array;
    capacity_ = capacity;
    return true;
}

bool BracketElements::grow()
{
    int const capacity = 2 * capacity_;
    return capacity_ > 0 && move_to(allocate(capacity), capacity);
}

void BracketElements::release()
{
    platform::heap_release(elements_);
}

namespace {

bool is_break(MObject const& element)
{
    return element.getname() == semip && semip;
}

// The index of the row break at or behind element k, or the number of elements.
int row_end(BracketElements const& elements, int k)
{
    while (k < elements.count() && !is_break(elements[k]))
        ++k;
    return k;
}

// --- elements as blocks --------------------------------------------------------------------------

// What one element other than a row break contributes.
template <class T> struct Block {
    explicit Block(MObject const& element);
    explicit Block(M<T> const& value)
        : whole(&value), re(value.addr()), im(value.addi()), dims(value.getdims()), string(value.isstr()), logical(value.islogical())
    {
    }
    bool empty() const { return dims[0] < 1; }
    int page() const { return dims[0] * dims[1]; }
    int pages() const { return dims[2] * dims[3]; }

    M<T> const* whole; // null for a value that stands for one cell
    T const* re;
    T const* im;
    int const* dims;
    bool string, logical;
};

template <> Block<double>::Block(MObject const& element) : Block(static_cast<M<double> const&>(element)) {}

constexpr int one_cell[max_dims] = {1, 1, 1, 1};
constexpr int no_cell[max_dims] = {0, 0, 0, 0};

template <> Block<M<double>>::Block(MObject const& element) : whole(dynamic_cast<M<M<double>> const*>(&element)), string(false), logical(false)
{
    if (whole) {
        *this = Block(*whole);
        return;
    }
    re = static_cast<M<double> const*>(&element);
    im = nullptr;
    dims = re->size() > 0 ? one_cell : no_cell;
}

// Size, kind and form of the value of a bracket.
template <class T> class Layout {
public:
    explicit Layout(BracketElements const& elements)
    {
        bool any_logical = false, all_logical = true;
        for (int k = 0; k < elements.count(); ++k) {
            if (is_break(elements[k])) {
                end_row();
                continue;
            }
            Block<T> const block(elements[k]);
            string |= block.string;
            any_logical |= block.logical;
            all_logical &= block.logical;
            if (!block.empty())
                add(block);
        }
        end_row();
        logical = any_logical && all_logical;
    }

    Dims shape() const
    {
        int const sizes[] = {clamped(rows_), clamped(cols_), pages[0], pages[1]};
        return Dims(max_dims, sizes);
    }
    // The elements lie one behind the other in the value.
    bool contiguous() const { return !gaps && pages[0] == 1 && pages[1] == 1 && (filled_rows_ <= 1 || cols_ == 1); }

    int blocks = 0; // elements that are not empty
    M<T> const* last = nullptr;
    bool complex = false, sparse = false, string = false, logical = false;
    bool any_real = false;
    bool gaps = false;
    bool pages_agree = true;
    int pages[2] = {1, 1};

private:
    static int clamped(std::int64_t size) { return static_cast<int>(std::min<std::int64_t>(size, INT_MAX)); }

    void add(Block<T> const& block)
    {
        if (blocks++ == 0)
            std::copy_n(block.dims + 2, 2, pages);
        pages_agree &= pages[0] == block.dims[2] && pages[1] == block.dims[3];
        gaps |= width_ > 0 && block.dims[0] != height_;
        height_ = block.dims[0];
        width_ += block.dims[1];
        last = block.whole;
        sparse |= last && last->issparse();
        (block.im ? complex : any_real) = true;
    }

    void end_row()
    {
        if (width_ == 0)
            return;
        gaps |= filled_rows_ > 0 && width_ != cols_;
        rows_ += height_;
        cols_ = std::max(cols_, width_);
        ++filled_rows_;
        height_ = 0;
        width_ = 0;
    }

    std::int64_t rows_ = 0, cols_ = 0, width_ = 0;
    int height_ = 0;
    int filled_rows_ = 0;
};

// --- full brackets -------------------------------------------------------------------------------

template <class T> void append_parts(T* to_re, T* to_im, Block<T> const& block, int count)
{
    copy_elements(to_re, block.re, count);
    if (!to_im)
        return;
    if (block.im)
        copy_elements(to_im, block.im, count);
    else
        Storage<T>::clear(to_im, count);
}

// The elements from the given one on, one behind the other.
template <class T> void append_all(T* to_re, T* to_im, BracketElements const& elements, int first)
{
    for (int k = first; k < elements.count(); ++k) {
        if (is_break(elements[k]))
            continue;
        Block<T> const block(elements[k]);
        if (block.empty())
            continue;
        int const count = block.page();
        append_parts(to_re, to_im, block, count);
        to_re += count;
        to_im = to_im ? to_im + count : nullptr;
    }
}

// Height of a row: that of its last element that is not empty.
template <class T> int row_height(BracketElements const& elements, int first, int end)
{
    while (end > first) {
        Block<T> const block(elements[--end]);
        if (!block.empty())
            return block.dims[0];
    }
    return 0;
}

// One block, of which the first `taken` rows count, into all pages of the value from its first page
// on.
template <class T> void place(M<T> const& made, std::ptrdiff_t at, Block<T> const& block, int taken)
{
    std::ptrdiff_t const page = static_cast<std::ptrdiff_t>(made.rows()) * made.cols();
    for (int p = 0; p < block.pages(); ++p) {
        std::ptrdiff_t const from = static_cast<std::ptrdiff_t>(p) * block.page();
        copy_columns(made.addr() + (p * page + at), made.rows(), block.re + from, block.dims[0], taken, block.dims[1]);
        if (block.im)
            copy_columns(made.addi() + (p * page + at), made.rows(), block.im + from, block.dims[0], taken, block.dims[1]);
    }
}

template <class T> void place_rows(M<T> const& made, BracketElements const& elements)
{
    std::ptrdiff_t row = 0;
    for (int first = 0; first < elements.count();) {
        int const end = row_end(elements, first), height = row_height<T>(elements, first, end);
        std::ptrdiff_t at = row;
        for (int k = first; k < end; ++k) {
            Block<T> const block(elements[k]);
            if (block.empty())
                continue;
            place(made, at, block, std::min(height, block.dims[0]));
            at += static_cast<std::ptrdiff_t>(made.rows()) * block.dims[1];
        }
        row += height;
        first = end + 1;
    }
}

template <class T> M<T> joined_full(BracketElements const& elements, Layout<T> const& layout)
{
    M<T> made = Access<T>::full(layout.complex, layout.shape());
    if (!made.addr())
        return made;
    if (layout.contiguous()) {
        append_all(made.addr(), made.addi(), elements, 0);
        return made;
    }
    if (layout.gaps)
        Storage<T>::clear(made.addr(), made.size());
    if (made.addi() && (layout.gaps || layout.any_real))
        Storage<T>::clear(made.addi(), made.size());
    place_rows(made, elements);
    return made;
}

// --- sparse brackets -----------------------------------------------------------------------------

// The row break of a range that is nearest to its middle, or -1.
int middle_break(BracketElements const& elements, int first, int end)
{
    for (int up = (first + end) / 2, down = up - 1; up < end || down >= first; ++up, --down) {
        if (up < end && is_break(elements[up]))
            return up;
        if (down >= first && is_break(elements[down]))
            return down;
    }
    return -1;
}

// Joined by halves, so that an entry is moved a few times only. False after a report.
bool join_range(BracketElements const& elements, int first, int end, M<double>& joined)
{
    if (end - first <= 1) {
        if (end > first && !is_break(elements[first]))
            joined = share(static_cast<M<double> const&>(elements[first]));
        return true;
    }
    int const row_break = middle_break(elements, first, end);
    int const middle = row_break < 0 ? (first + end) / 2 : row_break;
    M<double> before = Access<double>::without_storage(), behind = Access<double>::without_storage();
    return join_range(elements, first, middle, before) && join_range(elements, row_break < 0 ? middle : middle + 1, end, behind) &&
           join(row_break < 0 ? 1 : 0, before, behind, joined);
}

// --- few scalars ---------------------------------------------------------------------------------

// The most frequent bracket, a few real scalars in rows of the same length.
struct ScalarGrid {
    int rows = 0, cols = 0;

    explicit ScalarGrid(BracketElements const& elements)
    {
        int width = 0, height = 1;
        for (int k = 0; k < elements.count(); ++k) {
            if (!is_break(elements[k])) {
                if (!is_plain_scalar(static_cast<M<double> const&>(elements[k])))
                    return;
                ++width;
                continue;
            }
            if (cols > 0 && width != cols)
                return;
            cols = width;
            width = 0;
            ++height;
        }
        if (width > 0 && (cols == 0 || cols == width)) {
            cols = width;
            rows = height;
        }
    }
    bool holds() const { return rows > 0 && rows * cols <= Access<double>::most_small; }

private:
    static bool is_plain_scalar(M<double> const& element)
    {
        return element.rows() == 1 && element.cols() == 1 && element.getndims() == 2 && !element.isc() && !element.issparse() && !element.isstr() &&
               !element.islogical();
    }
};

M<double> joined_scalars(BracketElements const& elements, ScalarGrid const& grid)
{
    M<double> made = Access<double>::small(grid.rows, grid.cols);
    if (!made.addr())
        return x_M;
    double* row = made.addr();
    double* to = row;
    for (int k = 0; k < elements.count(); ++k) {
        if (is_break(elements[k])) {
            to = ++row;
        } else {
            *to = *static_cast<M<double> const&>(elements[k]).addr();
            to += grid.rows;
        }
    }
    return made;
}

// --- the value of a bracket ----------------------------------------------------------------------

template <class T> M<T> joined_blocks(BracketElements const& elements)
{
    Layout<T> const layout(elements);
    M<T> made = Access<T>::without_storage();
    if (!layout.pages_agree) {
        error(sizes_not_compatible);
        return x_M_of<T>();
    }
    if (layout.sparse) {
        if constexpr (std::is_same_v<T, double>)
            if (!join_range(elements, 0, elements.count(), made))
                return x_M_of<T>();
    } else if (layout.blocks == 1 && layout.last) {
        made = share(*layout.last);
    } else {
        made = joined_full(elements, layout);
        if (!made.addr())
            return x_M_of<T>();
    }
    made.setstr(layout.string);
    made.setlogical(layout.logical);
    return made;
}

template <class T> M<T> joined(BracketElements const& elements)
{
    if constexpr (std::is_same_v<T, double>)
        if (elements.count() < 2 * Access<double>::most_small)
            if (ScalarGrid const grid(elements); grid.holds())
                return joined_scalars(elements, grid);
    return joined_blocks<T>(elements);
}

// --- x = [x, ...] --------------------------------------------------------------------------------

// Storage for what a value of its own storage has and for as much again. False after a report.
template <class T> bool make_room(M<T> const& target, int count, M<T>& roomy)
{
    int const largest = Storage<T>::largest_count;
    int const capacity = count > largest / 2 ? largest : 2 * count + Storage<T>::spare;
    Dims const shape(target.getndims(), target.getdims());
    roomy = Access<T>::full_with_room(target.isc(), shape, capacity);
    return roomy.addr() != nullptr;
}

template <class T> void move_elements(M<T>& from, M<T>& to)
{
    if constexpr (std::is_same_v<T, double>) {
        Storage<T>::copy(to.addr(), from.addr(), from.size());
        if (from.addi())
            Storage<T>::copy(to.addi(), from.addi(), from.size());
    } else {
        std::move(from.addr(), from.addr() + from.size(), to.addr());
    }
}

template <class T> bool can_extend(M<T> const& target, BracketElements const& elements, Layout<T> const& layout)
{
    if (layout.sparse || layout.complex != (target.isc() != 0) || !layout.contiguous() || layout.shape().count < 0)
        return false;
    for (int k = 1; k < elements.count(); ++k)
        if (&elements[k] == &target)
            return false;
    return true;
}

// False when the target cannot be extended where it is.
template <class T> bool extend(M<T>& target, BracketElements const& elements)
{
    if (target.size() < 1 || target.issparse() || target.dirty())
        return false;
    Layout<T> const layout(elements);
    if (!can_extend(target, elements, layout))
        return false;
    int const old_count = target.size();
    Dims const shape = layout.shape();
    M<T> roomy = Access<T>::without_storage();
    bool const moves = shape.count > target.capacity();
    if (moves && !make_room(target, shape.count, roomy))
        return true;
    // An element may lie in the old storage, so that is emptied last.
    M<T>& grown = moves ? roomy : target;
    append_all(grown.addr() + old_count, grown.addi() ? grown.addi() + old_count : nullptr, elements, 1);
    if (moves) {
        move_elements(target, roomy);
        target = std::move(roomy);
    }
    Access<T>::grow_in_place(target, shape);
    target.setstr(layout.string);
    target.setlogical(layout.logical);
    target.clear_scalar_variable();
    return true;
}

} // namespace

template <class T> M<T>::M(Mb<T> const& bracket) : M(joined<T>(bracket.elements())) {}

template <class T> M<T>& M<T>::assign_bracket(Mb<T> const& bracket)
{
    BracketElements const& elements = bracket.elements();
    if (elements.count() > 1 && &elements[0] == this && extend(*this, elements))
        return *this;
    return *this = joined<T>(elements);
}

template M<double>::M(Mb<double> const&);
template M<M<double>>::M(Mb<M<double>> const&);
template M<double>& M<double>::assign_bracket(Mb<double> const&);
template M<M<double>>& M<M<double>>::assign_bracket(Mb<M<double>> const&);

// --- cell brackets -------------------------------------------------------------------------------

template <class T> M<T>::M(Mc<T> const& bracket) : M(unmade{}, nullptr)
{
    if constexpr (std::is_same_v<T, double>) {
        error("M(Mc) should not be called");
        end_process();
    } else {
        BracketElements const& elements = bracket.elements();
        int rows = elements.count() > 0, cols = 0, col = 0;
        for (int k = 0; k < elements.count(); ++k) {
            rows += is_break(elements[k]);
            col = is_break(elements[k]) ? 0 : col + 1;
            cols = std::max(cols, col);
        }
        make(rows, cols, false);
        if (size() < 1)
            return;
        std::ptrdiff_t row = 0, at = 0;
        for (int k = 0; k < elements.count(); ++k) {
            if (is_break(elements[k])) {
                at = ++row;
            } else {
                place_.re[at] = static_cast<M<double> const&>(elements[k]);
                at += rows;
            }
        }
    }
}

template M<double>::M(Mc<double> const&);
template M<M<double>>::M(Mc<M<double>> const&);
