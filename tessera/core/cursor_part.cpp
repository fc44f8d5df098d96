#include "tessera/core/cursor_part.h"

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"

namespace MERVO::Tessera {
namespace {

template <ContainerID CID, typename T>
Cursor MakePart(const Cursor& whole, std::uint32_t first, std::uint32_t count)
{
    const auto head = CursorAs<CID, T>(whole).mHead + first;
    return std::make_unique<Iterator<CID, T>>(head, head + count, WithLength(whole->GetAttr(), count));
}

using Maker = Cursor (*)(const Cursor&, std::uint32_t, std::uint32_t);

constexpr auto MAKERS = ForEachValueType([](auto number) {
    using T = ValueTypes::At<number()>;
    return std::array<Maker, CONTAINER_END>{&MakePart<CONTAINER_ARRAY, T>, &MakePart<CONTAINER_LIST, T>};
});

} // namespace

Cursor PartOf(const Cursor& whole, std::uint32_t first, std::uint32_t count)
{
    const std::size_t container = whole->IsMemoryContiguous() ? CONTAINER_ARRAY : CONTAINER_LIST;
    return MAKERS[static_cast<std::size_t>(whole->GetAttr().typeId)][container](whole, first, count);
}

} // namespace MERVO::Tessera
