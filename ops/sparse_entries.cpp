#include "ops/sparse_entries.h"

#include "core/sparse_build.h"

#include <algorithm>
#include <utility>

namespace arrlib {

M<double> with_little_room(M<double>&& made)
{
    // Room for fewer entries than these is not worth a copy.
    constexpr int little = 512;
    int const count = made.getnnz();
    if (made.capacity() - count <= std::max(count / 2, little))
        return std::move(made);
    M<double> smaller = sparse_with_room(made.isc(), Dims(max_dims, made.getdims()), count);
    if (!has_storage(smaller))
        return smaller;
    smaller.getnnz() = count;
    std::copy_n(Access<double>::index(made), count, Access<double>::index(smaller));
    Storage<double>::copy(smaller.addr(), made.addr(), count);
    if (made.isc())
        Storage<double>::copy(smaller.addi(), made.addi(), count);
    return smaller;
}

} // namespace arrlib
