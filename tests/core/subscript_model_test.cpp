// Random sequences of reads, assignments, deletions and joins, each compared with a plain model. The
// values of a sequence share storage now and then; whatever one operation does, and wherever it is
// stopped by a report, all the others must stay as they are.
#include "arrlib.h"

#include "support/capture.h"
#include "support/shapes.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <utility>

using shapes::Kind;
using shapes::Model;
using shapes::Sizes;

namespace {

using Places = std::vector<std::int64_t>;
constexpr std::int64_t out_of_reach = 1000000000;

std::int64_t place_of(double subscript)
{
    double const from_zero = subscript - 1;
    if (!(from_zero > -2147483648.0))
        return -1;
    return from_zero < 2147483647.0 ? static_cast<std::int64_t>(from_zero) : out_of_reach;
}

// What a value is to be.
struct State {
    Model model;
    Kind kind;

    int count() const { return Model::count(model.size); }
    int extent(std::size_t k, std::size_t subscripts) const { return subscripts == 1 ? count() : model.size[k]; }
    bool is_flat() const { return model.size[2] <= 1 && model.size[3] <= 1; }
    bool is_plain() const { return is_flat() && !kind.sparse; }
    // The only size above 1, counted from 0; 1 without any, -1 when there are several.
    int direction() const
    {
        int found = -2;
        for (int d = 0; d < 4; ++d)
            if (model.size[static_cast<std::size_t>(d)] > 1)
                found = found == -2 ? d : -1;
        return found == -2 ? 1 : found;
    }
};

struct Index {
    M<double> value;
    std::vector<double> subscripts; // of a logical one, where it is set
    bool colon = false, logical = false;
    bool broken = false; // sparse, with elements missing
    Sizes size{0, 0, 0, 0};

    bool is_special() const { return value.issparse() || value.getndims() > 2; }
    bool below_one() const { return std::any_of(subscripts.begin(), subscripts.end(), [](double v) { return !(v >= 1); }); }
    bool below_zero() const { return std::any_of(subscripts.begin(), subscripts.end(), [](double v) { return place_of(v) < 0; }); }
    Places places(int extent) const
    {
        Places list(colon ? static_cast<std::size_t>(extent) : subscripts.size());
        for (std::size_t k = 0; k < list.size(); ++k)
            list[k] = colon ? static_cast<std::int64_t>(k) : place_of(subscripts[k]);
        return list;
    }
};
using Indices = std::vector<Index>;

Sizes normal(Sizes size)
{
    return Model::count(size) > 0 ? size : Sizes{0, 0, 0, 0};
}

std::vector<Places> resolved(State const& a, Indices const& at)
{
    std::vector<Places> places;
    for (std::size_t k = 0; k < at.size(); ++k)
        places.push_back(at[k].places(a.extent(k, at.size())));
    return places;
}
std::int64_t selected(std::vector<Places> const& places)
{
    std::int64_t count = 1;
    for (Places const& list : places)
        count *= static_cast<std::int64_t>(list.size());
    return count;
}
template <class Of> bool any(Indices const& at, Of of)
{
    return std::any_of(at.begin(), at.end(), std::mem_fn(of));
}
std::int64_t reach(Places const& list)
{
    return list.empty() ? 0 : *std::max_element(list.begin(), list.end()) + 1;
}

// Storage position of every selected element, the first subscript fastest.
std::vector<std::size_t> enumerated(std::vector<Places> const& places, State const& a)
{
    std::vector<std::size_t> list{0};
    std::size_t stride = 1;
    for (std::size_t k = 0; k < places.size(); stride *= static_cast<std::size_t>(a.extent(k, places.size())), ++k) {
        std::vector<std::size_t> longer;
        for (std::int64_t place : places[k])
            for (std::size_t before : list)
                longer.push_back(before + static_cast<std::size_t>(place) * stride);
        list = longer;
    }
    return list;
}

Model taken(State const& a, std::vector<Places> const& places, Sizes const& size)
{
    Model result(size);
    std::vector<std::size_t> const from = enumerated(places, a);
    for (std::size_t k = 0; k < result.element.size(); ++k)
        result.element[k] = a.model.element[from[k]];
    return result;
}

// --- reading -------------------------------------------------------------------------------------

Sizes shape_of_read(State const& a, Indices const& at, std::vector<Places> const& places)
{
    Sizes size{1, 1, 1, 1};
    for (std::size_t k = 0; k < places.size(); ++k)
        size[k] = static_cast<int>(places[k].size());
    if (places.size() > 1 || at[0].colon)
        return size;
    int const n = size[0];
    bool const row = a.is_flat() && a.model.size[0] == 1 && a.model.size[1] > 1, column = a.is_flat() && a.model.size[1] == 1 && a.model.size[0] > 1;
    Sizes const& own = at[0].size;
    bool const vector = std::count_if(own.begin(), own.end(), [](int s) { return s > 1; }) <= 1;
    if (at[0].logical)
        return row || (!column && own[0] == 1 && own[2] == 1) ? Sizes{1, n, 1, 1} : Sizes{n, 1, 1, 1};
    if (vector && (row || column))
        return row ? Sizes{1, n, 1, 1} : Sizes{n, 1, 1, 1};
    return own;
}

// False when something is reported.
bool model_read(State const& a, Indices const& at, State& result)
{
    result = {Model(), a.kind};
    if (any(at, &Index::broken))
        return false;
    std::vector<Places> places = resolved(a, at);
    bool const block = at.size() == 2 && a.is_plain() && !any(at, &Index::is_special);
    bool good = !(block && any(at, &Index::below_one));
    for (std::size_t k = 0; k < places.size(); ++k)
        for (std::int64_t& place : places[k])
            if (place < 0 || place >= a.extent(k, places.size())) {
                good = good && selected(places) == 0 && !block;
                place = 0;
            }
    Sizes const size = normal(shape_of_read(a, at, places));
    if (a.count() == 0 || Model::count(size) == 0)
        return good;
    result.model = taken(a, places, size);
    result.kind.sparse = a.kind.sparse && size[2] == 1 && size[3] == 1;
    return good;
}

// --- assigning and deleting: false when something is reported -----------------------------------------

bool model_erase(State& a, Indices const& at)
{
    auto const colons = std::count_if(at.begin(), at.end(), [](Index const& i) { return i.colon; });
    if (colons == static_cast<std::ptrdiff_t>(at.size())) {
        a = {Model(), {false, a.kind.sparse, false, false}};
        return true;
    }
    if (colons + 1 < static_cast<std::ptrdiff_t>(at.size()) || any(at, &Index::broken))
        return false;
    std::size_t const k = static_cast<std::size_t>(std::find_if(at.begin(), at.end(), [](Index const& i) { return !i.colon; }) - at.begin());
    int const extent = a.extent(k, at.size());
    Places const gone = at[k].places(extent);
    if (std::any_of(gone.begin(), gone.end(), [extent](std::int64_t p) { return p < 0 || p >= extent; }))
        return false;
    if (gone.empty())
        return true;
    Sizes size = a.model.size;
    std::vector<Places> places(at.size() == 1 ? 1 : 4);
    for (std::size_t d = 0; d < places.size(); ++d)
        for (int p = 0; p < a.extent(d, places.size()); ++p)
            if (d != k || std::find(gone.begin(), gone.end(), p) == gone.end())
                places[d].push_back(p);
    int const along = a.direction();
    if (at.size() == 1)
        size = {1, 1, 1, 1};
    size[at.size() > 1 ? k : along < 0 ? 1 : static_cast<std::size_t>(along)] = static_cast<int>(places[k].size());
    a.model = taken(a, places, size);
    return true;
}

void grow(State& a, std::vector<Places> const& places)
{
    Sizes size = a.model.size;
    if (places.size() == 1) {
        auto const n = static_cast<int>(reach(places[0]));
        if (n <= a.count())
            return;
        int const along = a.direction();
        size = {1, 1, 1, 1};
        size[static_cast<std::size_t>(along > 1 ? along : a.model.size[0] > 1 ? 0 : 1)] = n;
        a.model.element.resize(static_cast<std::size_t>(n));
        a.model.size = size;
        return;
    }
    for (std::size_t d = 0; d < 4; ++d)
        size[d] = std::max(a.count() > 0 ? size[d] : 1, d < places.size() ? static_cast<int>(reach(places[d])) : 1);
    Model larger(size);
    a.model.each([&](Sizes const& s) { larger.at(s) = a.model.at(s); });
    a.model = larger;
}

bool assign_whole(State& a, State const& b)
{
    bool const fits = b.count() == 1 || b.count() == a.count();
    for (std::size_t k = 0; k < a.model.element.size(); ++k)
        if (fits)
            a.model.element[k] = b.model.element[b.count() == 1 ? 0 : k];
        else if (!b.kind.complex)
            a.model.element[k].imag(0);
    return fits;
}

bool model_assign(State& a, Indices const& at, State const& b)
{
    if (b.count() == 0)
        return model_erase(a, at);
    bool const plain = at.size() <= 2 && a.is_plain() && b.is_plain() && !any(at, &Index::is_special);
    bool const linear = at.size() == 1;
    if (plain && linear && at[0].colon)
        return assign_whole(a, b);
    if (linear && !at[0].colon && at[0].value.size() == 0)
        return true;
    std::vector<Places> places = resolved(a, at);
    std::int64_t const count = selected(places);
    bool const fits = b.count() == 1 || b.count() == count;
    if (plain ? any(at, &Index::below_one) : any(at, &Index::broken))
        return false;
    if (!plain && (any(at, &Index::below_zero) || (linear && a.direction() < 0 && reach(places[0]) > a.count())))
        return count == 0;
    if (!fits && (!plain || !linear || at[0].logical))
        return false;
    if (count == 0)
        return true;
    for (Places const& list : places)
        if (reach(list) > out_of_reach)
            return false;
    State grown = a;
    grow(grown, places);
    if (a.kind.sparse && !grown.is_flat())
        return false;
    a = grown;
    if (!fits)
        return false;
    std::vector<std::size_t> const to = enumerated(places, a);
    for (std::size_t k = 0; k < to.size(); ++k)
        a.model.element[to[k]] = b.model.element[b.count() == 1 ? 0 : k];
    return true;
}

bool model_join(std::size_t dim, State const& a, State const& b, bool bracket, State& result)
{
    bool const a_empty = a.count() == 0, b_empty = b.count() == 0;
    result = b_empty ? a : b;
    Kind const both{false, (a.kind.sparse && !a_empty) || (b.kind.sparse && !b_empty), a.kind.string || b.kind.string, a.kind.logical && b.kind.logical};
    if (bracket || (!a_empty && !b_empty))
        result.kind = both;
    if (a_empty || b_empty)
        return true;
    for (std::size_t d = 0; d < 4; ++d)
        if (d != dim && a.model.size[d] != b.model.size[d]) {
            result = {Model(), Kind()};
            return false;
        }
    Sizes size = a.model.size;
    size[dim] += b.model.size[dim];
    result.model = Model(size);
    result.model.each([&](Sizes s) {
        bool const first = s[dim] < a.model.size[dim];
        Sizes from = s;
        from[dim] -= first ? 0 : a.model.size[dim];
        result.model.at(s) = first ? a.model.at(s) : b.model.at(from);
    });
    return true;
}

// --- values against states -------------------------------------------------------------------------

State state_of(M<double> const& value)
{
    return {shapes::model_of(value), {value.isc() != 0, value.issparse() != 0, value.isstr() != 0, value.islogical() != 0}};
}
// A cell holds a number, or nothing, which stands as 0.
State state_of(M<M<double>> const& value)
{
    int const* const d = value.getdims();
    State state{Model({d[0], d[1], d[2], d[3]}), Kind()};
    for (std::size_t k = 0; k < state.model.element.size(); ++k)
        state.model.element[k] = value.addr()[k][1];
    return state;
}

template <class T> void expect_state(M<T> const& value, State const& expected)
{
    State const got = state_of(value);
    EXPECT_EQ(got.model.size, expected.model.size);
    EXPECT_EQ(got.model.element, expected.model.element);
    bool const empty = got.count() == 0;
    EXPECT_TRUE(empty || got.kind.sparse == expected.kind.sparse);
    EXPECT_TRUE(empty || (got.kind.string == expected.kind.string && got.kind.logical == expected.kind.logical));
    EXPECT_GE(value.capacity(), value.getnnz());
    EXPECT_EQ(value.getname(), nullptr);
    EXPECT_TRUE(value.issparse() || value.getnnz() == value.size());
    if constexpr (std::is_same_v<T, double>) {
        for (int k = 0; value.issparse() && k < value.getnnz(); ++k)
            EXPECT_TRUE(value.addr()[k] != 0 || (value.isc() && value.addi()[k] != 0));
    }
}

// --- the sequences ---------------------------------------------------------------------------------

template <class T> class Sequence {
public:
    explicit Sequence(shapes::Source& source) : random_(source)
    {
        for (Slot& slot : slots_)
            renew(slot);
    }
    void step()
    {
        Slot& slot = slots_[static_cast<std::size_t>(below(slots))];
        Slot& other = slots_[static_cast<std::size_t>(below(slots))];
        int const what = below(16);
        if (what < 4)
            read(slot, other);
        else if (what < 11)
            assign(slot);
        else if (what < 13)
            join(slot, other);
        else if (what < 14)
            turn(slot);
        else if (what < 15)
            slot = other;
        else
            renew(slot);
        for (Slot& each : slots_) {
            expect_state(each.value, each.state);
            if (each.state.count() > (each.state.model.size[0] > 80 ? 500 : 60))
                renew(each);
        }
    }

private:
    static constexpr int slots = 4;
    struct Slot {
        M<T> value;
        State state;
    };

    int below(int n) { return random_.below(n); }
    bool once_in(int n) { return random_.once_in(n); }

    // True when nothing is reported, or thrown.
    template <class Code> bool silent(Code&& code)
    {
        if (once_in(3))
            return capture::thrown_by(code).empty();
        capture::Reports const reports;
        code();
        return reports.all().empty();
    }

    Sizes sizes(bool flat)
    {
        Sizes size{below(5), below(5), 1, 1};
        if (once_in(3))
            size[static_cast<std::size_t>(below(2))] = 1;
        // Tall ones, of which a part is little beside a column.
        if (once_in(20))
            size = {100 + below(60), 1 + below(3), 1, 1};
        if (!flat && once_in(4))
            size[2 + static_cast<std::size_t>(below(2))] = 1 + below(3);
        return size;
    }
    void make(Kind const& kind, Sizes const& size, M<double>& value) { value = random_.value(kind, size); }
    void make(Kind const&, Sizes const& size, M<M<double>>& value)
    {
        value = arrlib::Access<M<double>>::full(false, arrlib::Dims(4, size.data()));
        for (int k = 0; k < value.size(); ++k)
            if (!once_in(4))
                value.addr()[k] = M<double>(1 + below(99));
    }
    void renew(Slot& slot)
    {
        Kind const kind = random_.kind();
        make(kind, sizes(kind.sparse), slot.value);
        slot.state = state_of(slot.value);
    }

    // --- subscripts ---
    double subscript(int extent)
    {
        static double const odd[] = {0, -1, -3.5, 0.5, 1.5, 2.99, 1e10, -1e10, std::numeric_limits<double>::quiet_NaN(),
                                     std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
        if (once_in(60))
            return odd[below(static_cast<int>(std::size(odd)))];
        return 1 + below(once_in(12) ? extent + 3 : std::max(extent, 1));
    }
    void shape(Index& index, int n)
    {
        int const form = below(8);
        index.size = form < 3 ? Sizes{n, 1, 1, 1} : form == 3 && n % 2 == 0 ? Sizes{2, n / 2, 1, 1} : form == 4 && once_in(4) ? Sizes{1, 1, n, 1} : Sizes{1, n, 1, 1};
        index.size = normal(index.size);
        index.value = arrlib::Access<double>::full(false, arrlib::Dims(4, index.size.data()));
        index.value.setname(nullptr);
    }
    Index numeric(int extent)
    {
        Index index;
        shape(index, once_in(3) ? 1 : below(5));
        bool const run = once_in(3);
        for (int k = 0; k < index.value.size(); ++k) {
            index.subscripts.push_back(run && k > 0 ? index.subscripts.back() + 1 : subscript(extent));
            index.value.addr()[k] = index.subscripts.back();
        }
        if (once_in(6) && index.size[2] < 2) {
            index.value.getsparse(0);
            index.broken = index.value.getnnz() != index.value.size();
        }
        return index;
    }
    Index logical(int extent)
    {
        Index index;
        index.logical = true;
        shape(index, once_in(6) ? extent + below(3) : std::max(extent - below(2), 0));
        for (int k = 0; k < index.value.size(); ++k) {
            bool const set = once_in(2);
            index.value.addr()[k] = set ? 1 : 0;
            if (set)
                index.subscripts.push_back(k + 1);
            else if (once_in(20))
                index.value.addr()[k] = std::numeric_limits<double>::quiet_NaN();
        }
        if (once_in(3) && index.size[2] < 2)
            index.value.getsparse(0);
        index.value.setlogical(1);
        return index;
    }
    Index colon()
    {
        Index index;
        index.colon = true;
        index.value.setname(c_pp);
        return index;
    }
    // One for a numeric subscript, which is truncated at once.
    Index number(int extent)
    {
        Index index;
        double const value = subscript(extent);
        index.value = M<double>(value);
        index.subscripts = {static_cast<double>(place_of(value) + 1)};
        index.size = {1, 1, 1, 1};
        return index;
    }
    Indices indices(State const& a, bool single)
    {
        std::size_t const count = once_in(5) ? 3 + (once_in(3) ? 1u : 0u) : 1 + static_cast<std::size_t>(below(2));
        Indices at;
        for (std::size_t k = 0; k < count; ++k) {
            int const extent = a.extent(k, count);
            int const form = single ? 6 : below(6);
            at.push_back(form == 0 && a.count() > 0 ? colon() : form < 2 ? logical(extent) : form < 6 ? numeric(extent) : number(extent));
        }
        return at;
    }

    // --- operations ---
    template <class Use, std::size_t... K> static void use_proxy(M<T>& value, Indices const& at, bool single, Use&& use, std::index_sequence<K...>)
    {
        if (single)
            use(value(at[K].value.addr()[0]...));
        else
            use(value(at[K].value...));
    }
    // Calls with the proxy that the subscripts make of a value.
    template <class Use> static void with_proxy(M<T>& value, Indices const& at, bool single, Use&& use)
    {
        if (at.size() == 1)
            use_proxy(value, at, single, use, std::make_index_sequence<1>());
        else if (at.size() == 2)
            use_proxy(value, at, single, use, std::make_index_sequence<2>());
        else if (at.size() == 3)
            use_proxy(value, at, single, use, std::make_index_sequence<3>());
        else
            use_proxy(value, at, single, use, std::make_index_sequence<4>());
    }
    // The allocation to refuse, if any; without memory for cells the process ends.
    int refused() { return std::is_same_v<T, double> && once_in(10) ? 1 + below(3) : 0; }

    void read(Slot& slot, Slot& other)
    {
        bool const single = once_in(4);
        Indices const at = indices(slot.state, single);
        State expected;
        bool const good = model_read(slot.state, at, expected);
        M<T> got;
        bool returned = false;
        capture::FailingHeap const heap(refused());
        bool const quiet = silent([&] {
            with_proxy(slot.value, at, single, [&](auto const& proxy) { got = M<T>(proxy); });
            returned = true;
        });
        if (heap.refused())
            return;
        EXPECT_EQ(quiet, good);
        if (!returned)
            return;
        if (single)
            expected.kind.sparse = got.issparse() != 0;
        expect_state(got, expected);
        if (once_in(2)) {
            other.value = got;
            other.state = state_of(got);
        }
    }

    void source_for(Indices const& at, Slot const& target, Slot& source)
    {
        if (once_in(8)) {
            source = slots_[static_cast<std::size_t>(below(slots))];
            source.state = state_of(source.value);
            return;
        }
        Sizes size{1, 1, 1, 1};
        int const form = below(8);
        std::vector<Places> const places = resolved(target.state, at);
        for (std::size_t k = 0; k < at.size() && form > 2; ++k)
            size[k] = static_cast<int>(places[k].size());
        if (form == 0)
            size = sizes(false);
        if (form == 1 && once_in(2))
            size = {0, 0, 1, 1};
        Kind kind = random_.kind();
        kind.sparse = kind.sparse && size[2] == 1 && size[3] == 1 && once_in(3);
        kind.complex = kind.complex && once_in(3);
        make(kind, size, source.value);
        source.state = state_of(source.value);
    }

    void assign(Slot& slot)
    {
        bool const single = once_in(4);
        Indices const at = indices(slot.state, single);
        Slot source;
        source_for(at, slot, source);
        // A single subscript beyond a matrix that is no vector is left to the list of cases.
        bool const beyond = at.size() == 1 && slot.state.direction() < 0 && reach(resolved(slot.state, at)[0]) > slot.state.count();
        if (single && (beyond || source.state.count() > 1))
            return;
        bool const good = model_assign(slot.state, at, source.state);
        capture::FailingHeap const heap(refused());
        bool const quiet = silent([&] { with_proxy(slot.value, at, single, [&](auto proxy) { proxy = source.value; }); });
        // How far it has come then is its own affair, as long as the value is sound.
        if (heap.refused())
            slot.state = state_of(slot.value);
        else
            EXPECT_EQ(quiet, good);
        expect_state(source.value, source.state);
    }

    void join(Slot& slot, Slot& other)
    {
        std::size_t const dim = once_in(2) ? 0 : 1;
        State expected;
        bool const good = model_join(dim, slot.state, other.state, false, expected);
        // Brackets do not mind other heights and widths.
        bool const bracket = good && once_in(2);
        if (bracket)
            model_join(dim, slot.state, other.state, true, expected);
        bool const quiet = silent([&] {
            if (!bracket)
                slot.value = dim == 0 ? vertcat(slot.value, other.value) : horzcat(slot.value, other.value);
            else if (dim == 0)
                slot.value = (BR(slot.value), semi, other.value);
            else
                slot.value = (BR(slot.value), other.value);
        });
        EXPECT_EQ(quiet, good);
        slot.state = good ? expected : state_of(slot.value);
    }

    void turn(Slot& slot)
    {
        if (!slot.state.is_flat())
            return;
        Model turned({slot.state.model.size[1], slot.state.model.size[0], slot.state.model.size[2], slot.state.model.size[3]});
        turned.each([&](Sizes const& s) { turned.at(s) = slot.state.model.at({s[1], s[0], s[2], s[3]}); });
        slot.value = transpose(slot.value);
        slot.state.model = turned;
    }

    shapes::Source& random_;
    Slot slots_[slots];
};

template <class T> void run_sequences(int sequences, int steps)
{
    shapes::Source source;
    for (int k = 0; k < sequences; ++k) {
        Sequence<T> sequence(source);
        for (int step = 0; step < steps; ++step) {
            sequence.step();
            ASSERT_FALSE(testing::Test::HasFailure()) << "sequence " << k << ", step " << step;
        }
    }
}

TEST(SubscriptModel, Numbers)
{
    run_sequences<double>(6000, 40);
}

TEST(SubscriptModel, Cells)
{
    run_sequences<M<double>>(1500, 40);
}

} // namespace
