#include "tessera/operations/unique.h"

#include <algorithm>
#include <array>

#include "tessera/core/flat_call.h"
#include "tessera/functors/array_form.h"
#include "tessera/operations/row_numbers.h"

namespace MERVO::Tessera::Func {
namespace {

constexpr std::uint32_t BOOL_VALUES = 2;

/// Appends the position of each element that is the first of its value.
void FindFirstOnes(const Cursor& column, std::vector<std::uint32_t>& index)
{
    RowNumbers rows({&column, 1}, RowNumbers::Nan::ALL_EQUAL);
    const std::uint32_t length = column->Length();
    const bool isBool = column->GetAttr().typeId == TESSERA_BOOL;
    std::array<std::uint32_t, RowNumbers::BLOCK> numbers;
    std::uint32_t found = 0;
    for (std::uint32_t first = 0; first < length && !(isBool && found == BOOL_VALUES);) {
        const std::uint32_t count = std::min(RowNumbers::BLOCK, length - first);
        rows.NumberUp(first, count, numbers.data());
        for (std::uint32_t i = 0; found != rows.Count(); ++i) {
            if (numbers[i] == found) {
                index.push_back(first + i);
                ++found;
            }
        }
        first += count;
    }
}

ErrorCode FindDistinct(const Cursor& cursor, std::vector<std::uint32_t>& index)
{
    index.clear();
    if (cursor->GetAttr().typeId == TESSERA_DATAFRAME) {
        LogError("the type doesn't support Unique functor");
        return ERROR_GENERAL;
    }
    if (cursor->Length() == 0) {
        LogError("the data pointer is nullptr");
        return ERROR_GENERAL;
    }
    const ArrayForm array(cursor);
    FindFirstOnes(array.Get(), index);
    return ERROR_NONE;
}

} // namespace

template <ContainerID CID, typename INDEX>
std::string Unique<CID, INDEX>::GetName() const
{
    return "Unique";
}

template <ContainerID CID, typename INDEX>
SeriesAttr Unique<CID, INDEX>::GetDstAttr(const Cursor& cursor) const
{
    return cursor->GetAttr();
}

template <ContainerID CID, typename INDEX>
bool Unique<CID, INDEX>::CheckParams(const Cursor&) const
{
    return true;
}

template <ContainerID CID, typename INDEX>
template <typename T>
ErrorCode Unique<CID, INDEX>::OnExecute(const Cursor& cursor) const
{
    return Guarded("Unique", [&] { return FindDistinct(cursor, index); });
}

template class Unique<CONTAINER_ARRAY, std::vector<std::uint32_t>&>;
template const NullaryTable<1>
    Nullary<Unique<CONTAINER_ARRAY, std::vector<std::uint32_t>&>, MutableArgs::SOURCE>::transformTable;

} // namespace MERVO::Tessera::Func
