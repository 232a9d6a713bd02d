#include "ops/sparse_random.h"

#include "core/declare.h"
#include "core/sparse_build.h"
#include "ops/random_generator.h"
#include "runtime/constants.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

using namespace arrlib;

namespace {

using Draw = void (*)(double* to, int count);

// A set of positions, by open addressing in a table that is at most half full.
class PositionSet {
public:
    explicit PositionSet(int count) : table_(table_size(count)) { std::fill(table_.begin(), table_.end(), -1); }

    explicit operator bool() const { return static_cast<bool>(table_); }
    // False when it is in the set already.
    bool insert(int position)
    {
        std::size_t const mask = table_.size() - 1;
        // Spreads neighbours: the high half of a product with the golden ratio.
        std::size_t slot = static_cast<std::size_t>((static_cast<std::uint64_t>(static_cast<unsigned>(position)) * 0x9E3779B97F4A7C15u) >> 32) & mask;
        while (table_[slot] >= 0) {
            if (table_[slot] == position)
                return false;
            slot = (slot + 1) & mask;
        }
        table_[slot] = position;
        return true;
    }

private:
    static std::size_t table_size(int count)
    {
        std::size_t size = 2;
        while (size < 2 * static_cast<std::size_t>(count))
            size *= 2;
        return size;
    }

    HeapArray<int> table_;
};

// `count` different positions below `elements`, at most half of them, rising. False after a report.
bool draw_positions(int elements, HeapArray<EntryKey>& keys)
{
    auto const count = static_cast<int>(keys.size());
    PositionSet chosen(count);
    if (!chosen)
        return false;
    constexpr int batch = 256;
    double draws[batch];
    for (int n = 0; n < count;) {
        int const before = n;
        draw_uniform(draws, batch);
        int position = 0;
        for (int k = 0; k < batch && n < count; ++k) {
            double const at = draws[k] * elements;
            position = at > 0 ? static_cast<int>(std::min(at, elements - 1.0)) : 0;
            if (chosen.insert(position))
                keys.data()[n++] = entry_key(position, 0);
        }
        // A generator whose state a program has set to a constant gives nothing new.
        if (n == before) {
            while (!chosen.insert(position))
                position = (position + 1) % elements;
            keys.data()[n++] = entry_key(position, 0);
        }
    }
    return sort_keys(keys);
}

// The places of `count` entries, into a value with room for them. When most are taken, those that
// are not are drawn. False after a report.
bool place_entries(M<double>& made, int elements, int count)
{
    bool const invert = count > elements / 2;
    HeapArray<EntryKey> keys(static_cast<std::size_t>(invert ? elements - count : count));
    if (!keys || !draw_positions(elements, keys))
        return false;
    int* to = Access<double>::index(made);
    if (!invert) {
        for (EntryKey const key : keys)
            *to++ = key_position(key);
        return true;
    }
    int position = 0;
    for (EntryKey const key : keys) {
        for (; position < key_position(key); ++position)
            *to++ = position;
        ++position;
    }
    for (; position < elements; ++position)
        *to++ = position;
    return true;
}

M<double> random_entries(M<double> const& m, M<double> const& n, M<double> const& density, Draw draw)
{
    Dims shape;
    if (!sparse_shape(m, n, shape))
        return x_M;
    double const part = scalar(density);
    int const count = part > 0 ? static_cast<int>(std::lround(std::min(part, 1.0) * std::max(shape.count, 0))) : 0;
    M<double> made = sparse_with_room(false, shape, count);
    if (!has_storage(made) || !place_entries(made, shape.count, count))
        return x_M;
    draw(made.addr(), count);
    made.getnnz() = count;
    return made;
}

M<double> random_values(M<double> const& a, Draw draw)
{
    M<double> made = pattern_of(a);
    if (!has_storage(made))
        return x_M;
    draw(made.addr(), made.getnnz());
    return made;
}

} // namespace

M<double> sprand(M<double> const& a)
{
    return random_values(a, draw_uniform);
}

M<double> sprandn(M<double> const& a)
{
    return random_values(a, draw_normal);
}

M<double> sprand(M<double> const& m, M<double> const& n, M<double> const& density)
{
    return random_entries(m, n, density, draw_uniform);
}

M<double> sprandn(M<double> const& m, M<double> const& n, M<double> const& density)
{
    return random_entries(m, n, density, draw_normal);
}
