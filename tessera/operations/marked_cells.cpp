#include "tessera/operations/marked_cells.h"

#include <algorithm>
#include <array>

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/element_walk.h"
#include "tessera/functors/gather.h"
#include "tessera/operations/marked_rows.h"

namespace MERVO::Tessera {
namespace {

void CopyInArrays(const Cursor& src, const Cursor& marks, bool wanted, const Cursor& dst)
{
    constexpr std::size_t BLOCK = 2048;
    std::array<BitWords::Word, BLOCK / BitWords::WORD_BITS> bits;
    std::array<std::uint32_t, BLOCK> buffer;
    std::uint32_t room = dst->Length();
    std::uint32_t copied = 0;
    const std::uint32_t count = std::min(src->Length(), marks->Length());
    MarkedRows walk(CursorAs<CONTAINER_ARRAY, bool>(marks).mHead, count, wanted);
    while (!walk.IsDone() && room != 0) {
        auto rows = walk.Next(bits).Positions(buffer);
        rows = rows.first(std::min<std::size_t>(rows.size(), room));
        Func::Gather(src, rows, dst);
        const auto length = static_cast<std::uint32_t>(rows.size());
        dst->Shift(length);
        room -= length;
        copied += length;
    }
    dst->Shift(-static_cast<long long>(copied));
}

template <typename T>
void CopyWalking(const Cursor& src, const Cursor& marks, bool wanted, const Cursor& dst)
{
    Func::AnyPlace<T> from(src);
    Func::AnyPlace<bool> mark(marks);
    Func::AnyPlace<T> to(dst);
    std::uint32_t room = dst->Length();
    for (std::uint32_t left = std::min(src->Length(), marks->Length()); left != 0 && room != 0; --left) {
        if (static_cast<bool>(*mark) == wanted) {
            *to = static_cast<const T&>(*from);
            ++to;
            --room;
        }
        ++from;
        ++mark;
    }
}

using Copier = void (*)(const Cursor& src, const Cursor& marks, bool wanted, const Cursor& dst);
constexpr auto COPIERS = ForEachValueType([](auto number) -> Copier { return &CopyWalking<ValueTypes::At<number()>>; });

} // namespace

void CopyMarked(const Cursor& src, const Cursor& marks, bool wanted, const Cursor& dst)
{
    if (src->IsMemoryContiguous() && marks->IsMemoryContiguous() && dst->IsMemoryContiguous()) {
        CopyInArrays(src, marks, wanted, dst);
        return;
    }
    COPIERS[static_cast<std::size_t>(src->GetAttr().typeId)](src, marks, wanted, dst);
}

} // namespace MERVO::Tessera
