#include "tessera/operations/sort_index.h"

#include <algorithm>
#include <array>
#include <bit>

#include "tessera/core/flat_call.h"
#include "tessera/functors/array_form.h"
#include "tessera/functors/gather.h"
#include "tessera/operations/radix_pairs.h"
#include "tessera/operations/row_numbers.h"
#include "tessera/operations/stable_order.h"

namespace MERVO::Tessera::Func {
namespace {

using Positions = std::vector<std::uint32_t>;

bool HasUnsortedForm(const Cursor& column)
{
    const MERVO_TESSERA_TYPEID type = column->GetAttr().typeId;
    return column->IsMemoryContiguous() && type != TESSERA_BOOL && type != TESSERA_DATETIME &&
        type != TESSERA_DATAFRAME;
}

/// Brings positions of equal elements together.
void GroupPositions(const Cursor& column, Positions& positions)
{
    constexpr unsigned int POSITION_BITS = 32;
    const auto count = static_cast<std::uint32_t>(positions.size());
    RowNumbers rows({&column, 1}, RowNumbers::Nan::NONE_EQUAL);
    std::vector<std::uint64_t> pairs(2 * positions.size());
    std::array<std::uint32_t, RowNumbers::BLOCK> numbers;
    for (std::uint32_t first = 0; first < count;) {
        const std::uint32_t length = std::min(RowNumbers::BLOCK, count - first);
        rows.Number({positions.data() + first, length}, numbers.data());
        for (std::uint32_t i = 0; i < length; ++i, ++first) {
            pairs[first] = std::uint64_t{numbers[i]} << POSITION_BITS | positions[first];
        }
    }
    const auto numberBits = static_cast<unsigned int>(std::bit_width(rows.Count()));
    SortPairs(pairs.data(), pairs.data() + count, count, POSITION_BITS, numberBits, positions.data());
}

ErrorCode OrderPositions(const Cursor& column, Positions& positions, bool ascending, bool sorted)
{
    if (column->GetAttr().typeId == TESSERA_DATAFRAME) {
        return ERROR_GENERAL;
    }
    if (!AreBelow(positions, column->Length())) {
        LogError("there exists index that exceeds length limit");
        return ERROR_OUT_OF_RANGE;
    }
    if (positions.size() < 2) {
        return ERROR_NONE;
    }
    if (!sorted && HasUnsortedForm(column)) {
        GroupPositions(column, positions);
    } else {
        const ArrayForm array(column);
        OrderStably(*KeysOf(array.Get()), ascending, positions);
    }
    return ERROR_NONE;
}

} // namespace

template <ContainerID CID>
std::string SortIndexBase<CID>::GetName() const
{
    return "SortIndex";
}

template <ContainerID CID>
SeriesAttr SortIndexBase<CID>::GetDstAttr(const Cursor& cursor) const
{
    return cursor->GetAttr();
}

template <ContainerID CID>
bool SortIndexBase<CID>::CheckParams(const Cursor&) const
{
    return true;
}

template <ContainerID CID>
template <typename T>
ErrorCode SortIndexBase<CID>::OnExecute(const Cursor& cursor) const
{
    return Guarded("SortIndex", [&] { return OrderPositions(cursor, index, ascending, sorted); });
}

template const NullaryTable<1> Nullary<SortIndexBase<CONTAINER_ARRAY>, MutableArgs::DESTINATION>::transformTable;
template class SortIndexBase<CONTAINER_ARRAY>;

} // namespace MERVO::Tessera::Func
